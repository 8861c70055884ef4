#include "app/frames/MessageDialog.h"

#include "app/frames/Footers.h"
#include "app/terminal/Keys.h"

namespace Kovo {

namespace {
DialogLayout Layout(unsigned titleId, unsigned messageId) {
    return {70, 10, 7, titleId, messageId, Footer::kOk};
}
}  // namespace

MessageDialog::MessageDialog(Frame* parent, unsigned titleId, unsigned messageId)
    : Dialog(parent, Layout(titleId, messageId)) {}

MessageDialog::MessageDialog(Frame* parent, unsigned titleId, const std::string& message)
    : Dialog(parent, Layout(titleId, 0)) {
    SetText(message);
}

bool MessageDialog::OnKey(int key) {
    // The line feed alone: a report is acknowledged with the Enter key and nothing else.
    if (key == kEnter) Close(1);
    return true;
}

}  // namespace Kovo
