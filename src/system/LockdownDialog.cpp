#include "system/LockdownDialog.h"

#include <curses.h>
#include <syslog.h>

#include <string>

#include "app/KeyReader.h"
#include "app/Startup.h"
#include "text/CheckItem.h"
#include "text/ItemList.h"
#include "text/StringFactory.h"

namespace Kovo {

namespace {

constexpr int kWidth = 70, kHeight = 11, kHeaderHeight = 6;
constexpr int kEsc = 27, kSpace = ' ', kEnter = 10;
constexpr int kCapture = 255;
constexpr unsigned kTitle = 245, kBody = 246, kBoxLabel = 247;
constexpr const char* kFooter =
    "{color:black}<Space>{/color} {color:dark-grey}Toggle "
    "Selected{/color}{align:right}{color:black}<Enter>{/color} "
    "{color:dark-grey}OK{/color}  {color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";

}  // namespace

LockdownDialog::LockdownDialog(Frame* parent, ActionHost& host)
    : Dialog(parent, kWidth, kHeight, kHeaderHeight),
      _host(host),
      _list(new ItemList(Content(), 0, 0, Content()->Width(), Content()->Height())),
      _enabled(host.Query("hclsvc/auth/lockdown_is_enabled")) {
    _box = std::make_unique<CheckItem>(Strings()->GetString(kBoxLabel), _enabled);
    _list->SetItems({_box.get()});
}

LockdownDialog::~LockdownDialog() = default;

void LockdownDialog::Apply() {
    const bool enter = _box->IsChecked();
    if (enter == _enabled) return;
    std::string output, error;
    const int status =
        _host.RunCaptured("/bin/hcl-cmd",
                          {"hcl-cmd", "-U", KOVO_USER,
                           enter ? "hclsvc/auth/lockdown_mode_enter" : "hclsvc/auth/lockdown_mode_exit"},
                          output, error, kCapture);
    if (status != 0) {
        syslog(LOG_ERR,
               enter ? "Enabling lockdown mode failed with error: %s"
                     : "Disabling lockdown mode failed with error: %s",
               error.c_str());
        return;
    }
    syslog(LOG_INFO, "%s", enter ? "Lockdown mode enabled" : "Lockdown mode disabled");
    _enabled = enter;
}

int LockdownDialog::HandleKey() {
    SetTitle(Strings()->GetString(kTitle));
    SetText(Strings()->GetString(kBody));
    SetFooter(kFooter);
    _list->Draw();
    for (;;) {
        switch (GetKey(this, true)) {
            case kEsc:
                return 0;
            case kEnter:
            case KEY_ENTER:
                Apply();
                return 1;
            case KEY_DOWN:
                _list->Down();
                break;
            case KEY_UP:
                _list->Up();
                break;
            case kSpace:
                _box->SetChecked(!_box->IsChecked());
                _list->Draw();
                break;
            default:
                break;
        }
    }
}

}  // namespace Kovo
