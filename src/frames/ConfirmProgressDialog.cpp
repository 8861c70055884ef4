#include "frames/ConfirmProgressDialog.h"

#include "frames/Footers.h"
#include "terminal/Colors.h"
#include "terminal/KeyReader.h"
#include "terminal/Keys.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {
// The result of the confirmation loop when F11 was pressed.
constexpr int kStart = 1;
}  // namespace

ConfirmProgressDialog::ConfirmProgressDialog(Frame* parent, const DialogLayout& layout)
    : Dialog(parent, layout) {}

bool ConfirmProgressDialog::OnKey(int key) {
    if (key != KEY_F(11)) return false;
    Close(kStart);
    return true;
}

const char* ConfirmProgressDialog::DoneFooter() const {
    return Footer::kOk;
}

TextArea& ConfirmProgressDialog::Progress() {
    if (!_progress) _progress = &AddTextArea(0, 0, Content()->Width(), Content()->Height(), kBlack);
    return *_progress;
}

void ConfirmProgressDialog::ShowProgress(const std::string& running) {
    std::string text;
    for (const std::string& line : _finished) text += "{color:dark-grey}" + line + "{/color}\n";
    if (!running.empty()) text += "{color:black}" + running + "{/color}";
    Progress().SetText(text);
}

void ConfirmProgressDialog::AddFinished(const std::string& line) {
    _finished.push_back(line);
}

int ConfirmProgressDialog::HandleKey() {
    if (Dialog::HandleKey() != kStart) return 0;
    // Nothing can be cancelled any more.
    SetFooter("");
    if (!Run()) return 0;
    SetFooter(DoneFooter());
    for (int key = 0; !IsEnter(key);) key = GetKey(this, true);
    return Finish();
}

}  // namespace Kovo
