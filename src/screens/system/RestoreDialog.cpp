#include "system/RestoreDialog.h"

#include "frames/Footers.h"
#include "frames/Log.h"
#include "terminal/HostEvent.h"
#include "text/StringFactory.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {
constexpr unsigned kConfirmTitle = 170, kWarning = 171, kQuestion = 172, kTitle = 173, kWait = 174,
                   kDone = 175;
}  // namespace

RestoreDialog::RestoreDialog(Frame* parent, HostAccess& host)
    : ConfirmProgressDialog(parent, {60, 12, 7, kConfirmTitle, kWarning, Footer::kF11OkCancel}), _host(host) {
    Progress().SetText(Strings()->GetString(kQuestion));
}

bool RestoreDialog::Run() {
    LogInfo("Restoring factory defaults");
    _host.PostEvent(HostEvent::Text("obs.user.kovo.restore.factory.defaults", "Restoring factory defaults"));
    SetTitle(Strings()->GetString(kTitle));
    SetText(Strings()->GetString(kWait));
    if (_host.Shell("/sbin/firmwareConfig.py --reset-only > /dev/null 2>&1") != 0) return false;
    Progress().SetText("");
    SetText(Strings()->GetString(kDone));
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
