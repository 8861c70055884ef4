#include "access/WelcomeWindow.h"

#include <curses.h>

#include <string>

#include "app/Colors.h"
#include "app/KeyReader.h"
#include "platform/zenkctl/ProductState.h"

namespace Kovo {

WelcomeWindow::WelcomeWindow() : Frame(nullptr, 0, 0, COLS, LINES, kBlack, kWhite) { Build(); }

void WelcomeWindow::Build() {
    Erase();
    const std::string product = std::string(ProductState_GetName()) + " " + ProductState_GetVersion();
    Print(8, 3, product);
    Print(0, Height() - 1, "<F2> Customize System/View Logs");
    const std::string f12 = "<F12> Shut Down/Restart";
    Print(Width() - static_cast<int>(f12.size()), Height() - 1, f12);
    Refresh();
}

void WelcomeWindow::Notification() {}

int WelcomeWindow::HandleKey() {
    for (;;) {
        GetKey(this, false);
        clearok(curscr, TRUE);
        Build();
    }
}

}  // namespace Kovo
