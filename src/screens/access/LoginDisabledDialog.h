#pragma once

#include "frames/Dialog.h"

namespace Kovo {

class HostAccess;

// "Authentication Denied": stands in for the login dialog while console login is switched off; closed
// by Enter or Esc, it always reports that nobody logged in (0).
class LoginDisabledDialog : public Dialog {
  public:
    LoginDisabledDialog(Frame* parent, HostAccess& host);

  protected:
    bool OnKey(int key) override;
};

}  // namespace Kovo
