#pragma once

#include <string>

#include "frames/Dialog.h"

namespace Kovo {

// The standard way to report a failure or a result: title and message, closed by Enter alone (1).
class MessageDialog : public Dialog {
  public:
    MessageDialog(Frame* parent, unsigned titleId, unsigned messageId);
    MessageDialog(Frame* parent, unsigned titleId, const std::string& message);

  protected:
    bool OnKey(int key) override;
};

}  // namespace Kovo
