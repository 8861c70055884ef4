#pragma once

#include <string>

#include "app/Dialog.h"

namespace Kovo {

// The standard way to report a failure or a result: title and message, closed by Enter alone.
class MessageDialog : public Dialog {
public:
    MessageDialog(Frame* parent, unsigned titleId, unsigned messageId);
    MessageDialog(Frame* parent, unsigned titleId, std::string message);

    int HandleKey() override;

private:
    unsigned _titleId;
    std::string _messageText;
};

}  // namespace Kovo
