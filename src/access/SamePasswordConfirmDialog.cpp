#include "access/SamePasswordConfirmDialog.h"

#include <curses.h>

#include "app/KeyReader.h"
#include "text/StringFactory.h"

namespace Kovo {

namespace {
constexpr int kWidth = 60, kHeight = 10, kHeaderHeight = 7;
constexpr int kEsc = 27, kEnter = 10;
constexpr unsigned kTitle = 155, kSamePassword = 159;
}  // namespace

SamePasswordConfirmDialog::SamePasswordConfirmDialog(Frame* parent)
    : Dialog(parent, kWidth, kHeight, kHeaderHeight) {
    SetTitle(Strings()->GetString(kTitle));
    SetText(Strings()->GetString(kSamePassword));
    SetFooter(
        "{color:black}<Enter>{/color} "
        "{color:dark-grey}Confirm{/color}{align:right}{color:black}<Esc>{/color} "
        "{color:dark-grey}Cancel{/color}{/align}");
}

int SamePasswordConfirmDialog::HandleKey() {
    for (;;) {
        const int key = GetKey(this, true);
        if (key == kEnter || key == KEY_ENTER) return 1;
        if (key == kEsc) return 0;
    }
}

}  // namespace Kovo
