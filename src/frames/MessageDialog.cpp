#include "frames/MessageDialog.h"

#include <algorithm>

#include "frames/Footers.h"
#include "terminal/Keys.h"
#include "text/MarkupLayout.h"
#include "text/StringFactory.h"

namespace Kovo {

namespace {
constexpr int kWidth = 70, kTextWidth = kWidth - 6, kLeastRows = 3;

// Tall enough for the whole message: a report whose last lines are cut off can mislead (advice often
// comes last). Most messages take the three rows every report has.
DialogLayout Layout(unsigned titleId, const std::string& message) {
    const std::string lines = LayoutMarkup(message, kTextWidth, {});
    const int rows = std::max(kLeastRows, static_cast<int>(std::count(lines.begin(), lines.end(), '\n')) + 1);
    const int header = std::max(kLeastRows + 4, std::min(rows + 4, LINES - 3));
    return {kWidth, header + 3, header, titleId, 0, Footer::kOk};
}
}  // namespace

MessageDialog::MessageDialog(Frame* parent, unsigned titleId, unsigned messageId)
    : MessageDialog(parent, titleId, GetStringFactory("en_US")->GetString(messageId)) {}

MessageDialog::MessageDialog(Frame* parent, unsigned titleId, const std::string& message)
    : Dialog(parent, Layout(titleId, message)) {
    SetText(message);
}

bool MessageDialog::OnKey(int key) {
    // The line feed alone: a report is acknowledged with the Enter key and nothing else.
    if (key == kEnter) Close(1);
    return true;
}

}  // namespace Kovo
