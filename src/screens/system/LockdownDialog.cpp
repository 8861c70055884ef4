#include "system/LockdownDialog.h"

#include <string>

#include "frames/Footers.h"
#include "frames/Log.h"
#include "terminal/Session.h"
#include "text/CheckItem.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

namespace {
constexpr int kCapture = 255;
constexpr const char* kEnabledQuery = "hclsvc/auth/lockdown_is_enabled";
}  // namespace

LockdownDialog::LockdownDialog(Frame* parent, HostAccess& host)
    : Dialog(parent, {70, 11, 6, StringId::ConfigureLockdownTitle, StringId::ConfigureLockdownText,
                      Footer::kToggleOkCancel}),
      _host(host),
      _box(AddCheck(Strings()->GetString(StringId::EnableLockdownCaption), host.Query(kEnabledQuery))),
      _enabled(_box.IsChecked()) {
    ShowItems();
}

void LockdownDialog::Apply() {
    const bool enter = _box.IsChecked();
    if (enter == _enabled) return;
    std::string output, error;
    const int status =
        _host.RunCaptured("/bin/hcl-cmd",
                          {"hcl-cmd", "-U", KOVO_USER,
                           enter ? "hclsvc/auth/lockdown_mode_enter" : "hclsvc/auth/lockdown_mode_exit"},
                          output, error, kCapture);
    if (status != 0) {
        LogError(std::string(enter ? "Enabling" : "Disabling") +
                 " lockdown mode failed with error: " + error);
        return;
    }
    LogInfo(enter ? "Lockdown mode enabled" : "Lockdown mode disabled");
    _enabled = enter;
}

}  // namespace Kovo
