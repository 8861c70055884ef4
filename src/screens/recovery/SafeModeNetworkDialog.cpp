#include "recovery/SafeModeNetworkDialog.h"

#include "frames/Footers.h"
#include "frames/Log.h"
#include "frames/MessageDialog.h"
#include "recovery/SafeModeNetwork.h"
#include "terminal/Colors.h"
#include "terminal/Keys.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

SafeModeNetworkDialog::SafeModeNetworkDialog(Frame* parent, HostCtl::Network::ZenkNic& nic, HostAccess& host)
    : Dialog(parent, {60, 12, 7, StringId::RestoreStandardSwitchTitle, StringId::RestoreStandardSwitchText,
                      Footer::kF11OkCancel}),
      _nic(nic),
      _host(host) {
    AddTextArea(0, 0, Content()->Width(), Content()->Height(), kBlack)
        .SetText(Strings()->GetString(StringId::RestoreStandardSwitchQuestion));
}

bool SafeModeNetworkDialog::OnKey(int key) {
    if (key == KEY_F(11)) {
        // A move that stopped half-way leaves interfaces down or uplinks on no switch: the operator must
        // not take the closed dialog for success.
        if (!SafeModeNetwork(_host, _nic).Run())
            MessageDialog(this, StringId::RestoreStandardSwitchTitle, StringId::ManagementInterfaceFailed)
                .RunModal();
        // Logged and 1 whatever the move came to: the menu offers it once.
        LogInfo("Enabling safe mode networking by moving all uplinks to a new management xSwitch");
        Close(1);
        return true;
    }
    // Esc is the only other key that means anything: a hurried Enter cannot move the network.
    return key != kEsc;
}

}  // namespace Kovo
