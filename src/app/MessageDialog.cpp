#include "app/MessageDialog.h"

#include "app/KeyReader.h"
#include "text/StringFactory.h"

namespace Kovo {

namespace {
constexpr int kWidth = 70, kHeight = 10, kHeaderHeight = 7;
constexpr int kEnter = 10;
}  // namespace

MessageDialog::MessageDialog(Frame* parent, unsigned titleId, unsigned messageId)
    : MessageDialog(parent, titleId, std::string()) {
    _messageText = Strings() ? Strings()->GetString(messageId) : "";
}

MessageDialog::MessageDialog(Frame* parent, unsigned titleId, std::string message)
    : Dialog(parent, kWidth, kHeight, kHeaderHeight), _titleId(titleId), _messageText(std::move(message)) {}

int MessageDialog::HandleKey() {
    SetTitle(Strings() ? Strings()->GetString(_titleId) : "");
    SetText(_messageText);
    SetFooter("{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}{/align}");
    while (GetKey(this, true) != kEnter) {
    }
    return 1;
}

}  // namespace Kovo
