#pragma once

#include <string>
#include <vector>

#include "frames/Dialog.h"

namespace Kovo {

// A disruptive action: the dialog asks, F11 starts the action (Esc before it leaves with 0), the
// action shows its steps as progress lines, and once it is done only Enter closes the dialog (1).
// Before F11 the dialog's own keys and the common ones apply (a check box can be toggled).
class ConfirmProgressDialog : public Dialog {
  public:
    ConfirmProgressDialog(Frame* parent, const DialogLayout& layout);

    int HandleKey() override;

  protected:
    // The action after F11. False ends the dialog at once with 0, without waiting for Enter.
    virtual bool Run() = 0;
    // The result after the closing Enter.
    virtual int Finish() { return 1; }
    // The key line shown once the action is done.
    virtual const char* DoneFooter() const;

    // The area the progress lines are shown in (made on first use): the question before F11, then the
    // lines of the action.
    TextArea& Progress();
    void SetProgressArea(TextArea& area) { _progress = &area; }
    // Shows the finished lines and, when given, the step now running.
    void ShowProgress(const std::string& running = "");
    // A step that has ended, shown as finished from now on.
    void AddFinished(const std::string& line);

    bool OnKey(int key) override;

  private:
    TextArea* _progress = nullptr;  // owned by the window tree
    std::vector<std::string> _finished;
};

}  // namespace Kovo
