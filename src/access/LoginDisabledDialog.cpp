#include "access/LoginDisabledDialog.h"

#include <curses.h>

#include <string>

#include "access/LoginDialog.h"
#include "app/KeyReader.h"
#include "text/StringFactory.h"

namespace Kovo {

namespace {
constexpr int kWidth = 60, kHeight = 9, kHeaderHeight = 6;
constexpr int kEsc = 27, kEnter = 10;
constexpr unsigned kTitle = 139, kDisabled = 140;
}  // namespace

LoginDisabledDialog::LoginDisabledDialog(Frame* parent) : Dialog(parent, kWidth, kHeight, kHeaderHeight) {
    SetTitle(Strings()->GetString(kTitle));
    SetText(std::string(Strings()->GetString(kDisabled)) + HostNameAndDomain());
    SetFooter("{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}{/align}");
}

int LoginDisabledDialog::HandleKey() {
    for (;;) {
        const int key = GetKey(this, true);
        if (key == kEnter || key == KEY_ENTER || key == kEsc) return 0;
    }
}

}  // namespace Kovo
