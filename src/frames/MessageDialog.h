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

// A failure the operator must hear of: the line goes to the log as an error, then the message shows over
// `parent` until Enter. One path for both, so the log and the screen always tell the same failure.
void ReportFailure(Frame* parent, const std::string& logLine, unsigned titleId, unsigned messageId);
void ReportFailure(Frame* parent, const std::string& logLine, unsigned titleId, const std::string& message);

}  // namespace Kovo
