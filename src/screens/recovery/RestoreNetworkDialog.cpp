#include "recovery/RestoreNetworkDialog.h"

#include <exception>

#include "frames/Log.h"
#include "recovery/DoRestoreNetworkDialog.h"
#include "terminal/Colors.h"
#include "terminal/HostEvent.h"
#include "terminal/Keys.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {

constexpr const char* kFooter =
    "{color:black}<F11>{/color} {color:dark-grey}Yes, Reset{/color}{align:right}{color:black}<Esc>{/color} "
    "{color:dark-grey}Cancel{/color}{/align}";
constexpr const char* kRestored = "Restoring factory network settings";

}  // namespace

RestoreNetworkDialog::RestoreNetworkDialog(Frame* parent, HostAccess& host)
    : Dialog(parent, {70, 12, 6, StringId::RestoreFactoryNetworkTitle, StringId::RestoreFactoryNetworkWarning,
                      kFooter}),
      _host(host) {
    AddTextArea(0, 0, Content()->Width(), Content()->Height(), kBlack)
        .SetText(Strings()->GetString(StringId::RestoreFactoryNetworkQuestion));
}

void RestoreNetworkDialog::Restore() {
    // The record follows the restore whichever way it ended, a failure included (an idle log-out is no
    // ending of the restore: it passes without one).
    auto announce = [this] {
        LogInfo(kRestored);
        _host.PostEvent(HostEvent::Text("obs.user.kovo.factory.network.restored", kRestored));
    };
    try {
        DoRestoreNetworkDialog(this, _host).RunModal();
    } catch (const std::exception&) {
        announce();
        throw;
    }
    announce();
}

bool RestoreNetworkDialog::OnKey(int key) {
    if (key == KEY_F(11)) {
        Restore();
        Close(1);
        return true;
    }
    // Esc is the only other key that means anything: a hurried Enter cannot reset the network.
    return key != kEsc;
}

}  // namespace Kovo
