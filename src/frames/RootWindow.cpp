#include "frames/RootWindow.h"

#include "frames/Log.h"
#include "terminal/Colors.h"
#include "text/ItemList.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {

// The pane's frame: a box and a rule under its title.
void FramePane(Window* pane) {
    if (!pane->Handle()) return;
    box(pane->Handle(), 0, 0);
    mvwhline(pane->Handle(), 2, 1, ACS_HLINE, pane->Width() - 2);
}

}  // namespace

RootWindow::RootWindow(Frame* parent) : Frame(parent, 0, 0, COLS, LINES, kBlack, kWhite) {
    LogInfo("COLS=" + std::to_string(COLS) + ", LINES=" + std::to_string(LINES));
    const int half = COLS / 2;
    _main = AddChild(0, 0, COLS, LINES - 1, kLightGrey, kWhite);
    _status = new TextArea(this, 0, LINES - 1, COLS, 1, kBlack, kLightGrey);
    _left = _main->AddChild(0, 0, half, LINES - 1, kYellow, kWhite);
    _right = _main->AddChild(half, 0, half, LINES - 1, kDarkGrey, kWhite);
    FramePane(_left);
    FramePane(_right);
    _leftTitle = new TextArea(_left, 3, 1, half - 6, 1, -1, kBlack);
    // Inside the pane's frame and above its footer: the list and the details erase their whole area each
    // time they draw, so an area reaching the border column or the footer row would wipe them.
    _list = new ItemList(_left, 2, 4, half - 3, LINES - 7);
    _leftFooter = new TextArea(_left, 2, LINES - 3, half - 3, 1, -1, kBlack);
    _rightTitle = new TextArea(_right, 2, 1, half - 6, 1, -1, kWhite);
    _details = new TextArea(_right, 2, 4, half - 4, LINES - 7, -1, kLightGrey);
    _rightFooter = new TextArea(_right, 1, LINES - 3, half - 3, 1, -1, kWhite);
}

bool RootWindow::MoveSelection(int key) {
    if (key != KEY_UP && key != KEY_DOWN) return false;
    key == KEY_UP ? _list->Up() : _list->Down();
    UpdateDetails();
    return true;
}

}  // namespace Kovo
