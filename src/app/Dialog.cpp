#include "app/Dialog.h"

#include "app/Colors.h"
#include "text/TextArea.h"

namespace Kovo {

Dialog::Dialog(Frame* parent, int width, int height, int headerHeight)
    : Frame(parent, (COLS - width) / 2, (LINES - height) / 2, width, height, kBlack, kWhite) {
    Erase();
    const int bodyHeight = height - headerHeight;
    _header = AddChild(0, 0, width, headerHeight, kDarkGrey, kWhite);
    _body = AddChild(0, headerHeight, width, bodyHeight, kYellow, kWhite);
    if (Handle()) box(Handle(), 0, 0);
    _title = new TextArea(_header, 3, 1, width - 6, 1, -1, kWhite);
    _message = new TextArea(_header, 3, 3, width - 6, headerHeight - 4, -1, kLightGrey);
    _footer = new TextArea(_body, 2, bodyHeight - 2, width - 4, 1, -1, kBlack);
    if (bodyHeight - 4 >= 1) _content = _body->AddChild(2, 1, width - 4, bodyHeight - 4, kYellow, kDarkGrey);
}

void Dialog::SetActive(bool active) {
    if (active && ParentFrame()) ParentFrame()->Refresh();
    Window::SetActive(active);
}

void Dialog::SetTitle(const std::string& text) { _title->SetText(text); }
void Dialog::SetText(const std::string& text) { _message->SetText(text); }
void Dialog::SetFooter(const std::string& text) { _footer->SetText(text); }

}  // namespace Kovo
