#include "system/RestoreDialog.h"

#include <curses.h>
#include <syslog.h>

#include "app/Colors.h"
#include "app/KeyReader.h"
#include "app/HostEvent.h"
#include "text/StringFactory.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {

constexpr int kWidth = 60, kHeight = 12, kHeaderHeight = 7;
constexpr int kEsc = 27, kEnter = 10;
constexpr unsigned kConfirmTitle = 170, kWarning = 171, kQuestion = 172, kTitle = 173, kWait = 174,
                   kDone = 175;
constexpr const char* kConfirmFooter =
    "{align:right}{color:black}<F11>{/color} {color:dark-grey}OK{/color}  {color:black}<Esc>{/color} "
    "{color:dark-grey}Cancel{/color}{/align}";
constexpr const char* kRestartFooter =
    "{align:right}{color:black}<Enter>{/color} {color:dark-grey}Restart Host{/color}{/align}";

}  // namespace

RestoreDialog::RestoreDialog(Frame* parent, ActionHost& host)
    : Dialog(parent, kWidth, kHeight, kHeaderHeight),
      _host(host),
      _question(new TextArea(Content(), 0, 0, Content()->Width(), Content()->Height(), -1, kBlack)) {}

int RestoreDialog::HandleKey() {
    SetTitle(Strings()->GetString(kConfirmTitle));
    SetText(Strings()->GetString(kWarning));
    _question->SetText(Strings()->GetString(kQuestion));
    SetFooter(kConfirmFooter);
    for (int key = 0; key != KEY_F(11);) {
        key = GetKey(this, true);
        if (key == kEsc) return 0;
    }

    syslog(LOG_INFO, "%s", "Restoring factory defaults");
    _host.PostEvent(HostEvent::Text("obs.user.kovo.restore.factory.defaults", "Restoring factory defaults"));
    SetTitle(Strings()->GetString(kTitle));
    SetText(Strings()->GetString(kWait));
    SetFooter("");  // nothing can be cancelled any more
    if (_host.Shell("/sbin/firmwareConfig.py --reset-only > /dev/null 2>&1") != 0) return 0;

    _question->SetText("");
    SetFooter(kRestartFooter);
    SetText(Strings()->GetString(kDone));
    // Only a restart makes the reset take effect, so Esc is no way out now.
    for (int key = 0; key != kEnter && key != KEY_ENTER;) key = GetKey(this, true);

    if (_host.Shell("reboot -f") == -1) return 0;
    for (;;) _host.SpinForHostDown();
}

}  // namespace Kovo
