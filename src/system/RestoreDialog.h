#pragma once

#include "app/Dialog.h"
#include "system/ActionHost.h"

namespace Kovo {

class TextArea;

// "Reset System Configuration": F11 resets the host's configuration to its defaults, then Enter alone
// restarts the host. Returns 0 on Esc and, silently, when the reset fails; after a reset it does not
// return.
class RestoreDialog : public Dialog {
  public:
    explicit RestoreDialog(Frame* parent, ActionHost& host = ActionHost::System());

    int HandleKey() override;

  private:
    ActionHost& _host;
    TextArea* _question;  // owned by the window tree
};

}  // namespace Kovo
