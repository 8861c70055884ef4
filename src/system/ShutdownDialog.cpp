#include "system/ShutdownDialog.h"

#include <curses.h>
#include <syslog.h>

#include "app/KeyReader.h"
#include "app/HostEvent.h"
#include "system/RebootConfirmDialog.h"
#include "system/ShutdownConfirmDialog.h"
#include "text/CheckItem.h"
#include "text/ItemList.h"
#include "text/StringFactory.h"

namespace Kovo {

namespace {

constexpr int kWidth = 60, kHeight = 19, kHeaderHeight = 13;
constexpr int kEsc = 27, kSpace = ' ';
constexpr unsigned kTitle = 161, kBody = 162, kTerminateLabel = 163;
constexpr const char* kFooter =
    "{color:black}<F2>{/color} {color:dark-grey}Shut Down{/color}  {color:black}<F11>{/color} "
    "{color:dark-grey}Restart{/color}{align:right}{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}"
    "{/align}";

}  // namespace

ShutdownDialog::ShutdownDialog(Frame* parent, ActionHost& host)
    : Dialog(parent, kWidth, kHeight, kHeaderHeight),
      _host(host),
      _list(new ItemList(Content(), 0, 0, Content()->Width(), Content()->Height())),
      _terminate(std::make_unique<CheckItem>(Strings()->GetString(kTerminateLabel), false)) {
    _list->SetItems({_terminate.get()});
}

ShutdownDialog::~ShutdownDialog() = default;

bool ShutdownDialog::ForceTerminate() const {
    return _terminate->IsChecked();
}

void ShutdownDialog::GoDown(bool restart) {
    const char* what = restart ? "Rebooting host" : "Shutting down host";
    syslog(LOG_INFO, "%s", what);
    _host.PostEvent(
        HostEvent::Text(restart ? "obs.user.kovo.reboot.host" : "obs.user.kovo.shutdown.host", what));
    const bool keepVms = !ForceTerminate();
    if (restart) {
        RebootConfirmDialog(this, keepVms, _host).RunModal();
    } else {
        ShutdownConfirmDialog(this, keepVms, _host).RunModal();
    }
}

int ShutdownDialog::HandleKey() {
    SetTitle(Strings()->GetString(kTitle));
    SetText(Strings()->GetString(kBody));
    _list->Draw();
    SetFooter(kFooter);
    for (;;) {
        switch (const int key = GetKey(this, true)) {
            case kEsc:
                return 0;
            case kSpace:
                _terminate->SetChecked(!_terminate->IsChecked());
                _list->Draw();
                break;
            case KEY_F(2):
            case KEY_F(11):
                GoDown(key == KEY_F(11));
                break;
            default:
                break;
        }
    }
}

}  // namespace Kovo
