#include "recovery/RestartNetworkDialog.h"

#include <exception>
#include <string>

#include "frames/Footers.h"
#include "frames/MessageDialog.h"
#include "platform/hostctl/ZenkNic.h"
#include "recovery/DoRestartNetworkDialog.h"
#include "system/MenuFacts.h"
#include "terminal/Colors.h"
#include "terminal/Keys.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

RestartNetworkDialog::RestartNetworkDialog(Frame* parent, HostCtl::Network::ZenkNic& nic, HostAccess& host)
    : Dialog(parent, {70, 12, 7, StringId::RestartNetworkConfirmTitle, StringId::RestartNetworkWarning,
                      Footer::kF11OkCancel}),
      _nic(nic),
      _host(host) {
    AddTextArea(0, 0, Content()->Width(), Content()->Height(), kBlack)
        .SetText(Strings()->GetString(StringId::RestartNetworkQuestion));
}

bool RestartNetworkDialog::OnKey(int key) {
    if (key == KEY_F(11)) {
        DoRestartNetworkDialog(this, _nic, _host).RunModal();
        Close(1);
        return true;
    }
    // Esc is the only other key that means anything.
    return key != kEsc;
}

bool RestartNetworkDialog::Offer(Frame* parent, HostAccess& host) {
    const auto nic = LookUpManagementInterface(host);
    if (!nic) {
        MessageDialog(parent, StringId::RestartNetworkErrorTitle, StringId::ManagementInterfaceNotFound)
            .RunModal();
        return false;
    }
    try {
        RestartNetworkDialog(parent, *nic, host).RunModal();
    } catch (const std::exception& e) {
        // The restart reports nothing itself; whatever step failed, the operator learns it here and the
        // console stays.
        ReportFailure(parent, std::string("Restarting the management network failed: ") + e.what(),
                      StringId::RestartNetworkErrorTitle, StringId::ManagementInterfaceFailed);
    }
    return true;
}

}  // namespace Kovo
