#include "frames/MessageDialog.h"

#include "frames/Footers.h"
#include "frames/Log.h"
#include "terminal/Keys.h"
#include "text/StringFactory.h"

namespace Kovo {

namespace {
// Three rows for the message however short it is; a longer one makes the dialog taller.
constexpr DialogLayout kLayout{70, 10, 7, kNoTextId, kNoTextId, Footer::kOk};
}  // namespace

MessageDialog::MessageDialog(Frame* parent, unsigned titleId, unsigned messageId)
    : MessageDialog(parent, titleId, GetStringFactory("en_US")->GetString(messageId)) {}

MessageDialog::MessageDialog(Frame* parent, unsigned titleId, const std::string& message)
    : Dialog(parent,
             {kLayout.width, kLayout.height, kLayout.headerHeight, titleId, kNoTextId, kLayout.footer},
             message) {}

bool MessageDialog::OnKey(int key) {
    // The line feed alone: a report is acknowledged with the Enter key and nothing else.
    if (key == kEnter) Close(1);
    return true;
}

void ReportFailure(Frame* parent, const std::string& logLine, unsigned titleId, unsigned messageId) {
    LogError(logLine);
    MessageDialog(parent, titleId, messageId).RunModal();
}

void ReportFailure(Frame* parent, const std::string& logLine, unsigned titleId, const std::string& message) {
    LogError(logLine);
    MessageDialog(parent, titleId, message).RunModal();
}

}  // namespace Kovo
