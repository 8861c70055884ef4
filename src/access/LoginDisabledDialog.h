#pragma once

#include "app/Dialog.h"

namespace Kovo {

// Stands in for the login dialog while console login is switched off; closed by Enter or Esc, it
// always reports that nobody logged in (0).
class LoginDisabledDialog : public Dialog {
  public:
    explicit LoginDisabledDialog(Frame* parent);
    int HandleKey() override;
};

}  // namespace Kovo
