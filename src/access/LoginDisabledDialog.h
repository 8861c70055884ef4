#pragma once

#include "app/frames/Dialog.h"

namespace Kovo {

// "Authentication Denied": stands in for the login dialog while console login is switched off; closed
// by Enter or Esc, it always reports that nobody logged in (0).
class LoginDisabledDialog : public Dialog {
  public:
    explicit LoginDisabledDialog(Frame* parent);

  protected:
    bool OnKey(int key) override;
};

}  // namespace Kovo
