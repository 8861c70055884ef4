#include "system/RestoreDialog.h"

#include "frames/Footers.h"
#include "frames/Log.h"
#include "terminal/HostEvent.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

RestoreDialog::RestoreDialog(Frame* parent, HostAccess& host)
    : ConfirmProgressDialog(parent, {60, 12, 7, StringId::ResetConfigurationConfirmTitle,
                                     StringId::ResetConfigurationWarning, Footer::kF11OkCancel}),
      _host(host) {
    Progress().SetText(Strings()->GetString(StringId::ResetConfigurationQuestion));
}

bool RestoreDialog::Run() {
    LogInfo("Restoring factory defaults");
    _host.PostEvent(HostEvent::Text("obs.user.kovo.restore.factory.defaults", "Restoring factory defaults"));
    SetTitle(Strings()->GetString(StringId::ResetConfigurationTitle));
    SetText(Strings()->GetString(StringId::ResetConfigurationWait));
    if (_host.Shell("/sbin/firmwareConfig.py --reset-only > /dev/null 2>&1") != 0) return false;
    Progress().SetText("");
    SetText(Strings()->GetString(StringId::ResetConfigurationDone));
    return true;
}

// Only a restart makes the reset take effect, so Enter restarts the host and Esc is no way out.
const char* RestoreDialog::DoneFooter() const {
    return Footer::kRestartHost;
}

int RestoreDialog::Finish() {
    if (_host.Shell("reboot -f") == -1) return 0;
    for (;;) _host.SpinForHostDown();
}

}  // namespace Kovo
