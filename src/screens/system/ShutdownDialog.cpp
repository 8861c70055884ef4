#include "system/ShutdownDialog.h"

#include "frames/Footers.h"
#include "frames/Log.h"
#include "system/RebootConfirmDialog.h"
#include "system/ShutdownConfirmDialog.h"
#include "terminal/HostEvent.h"
#include "text/CheckItem.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

ShutdownDialog::ShutdownDialog(Frame* parent, HostAccess& host)
    : Dialog(parent, {60, 19, 13, StringId::ShutDownRestartTitle, StringId::ShutDownRestartText,
                      Footer::kShutDownRestartCancel}),
      _host(host),
      _terminate(AddCheck(Strings()->GetString(StringId::TerminateVmsCaption), false)) {
    ShowItems();
}

bool ShutdownDialog::ForceTerminate() const {
    return _terminate.IsChecked();
}

bool ShutdownDialog::OnKey(int key) {
    if (key != KEY_F(2) && key != KEY_F(11)) return false;
    GoDown(key == KEY_F(11));
    return true;
}

void ShutdownDialog::GoDown(bool restart) {
    const char* what = restart ? "Rebooting host" : "Shutting down host";
    LogInfo(what);
    _host.PostEvent(
        HostEvent::Text(restart ? "obs.user.kovo.reboot.host" : "obs.user.kovo.shutdown.host", what));
    const bool keepVms = !ForceTerminate();
    if (restart) {
        RebootConfirmDialog(this, keepVms, _host).RunModal();
    } else {
        ShutdownConfirmDialog(this, keepVms, _host).RunModal();
    }
}

}  // namespace Kovo
