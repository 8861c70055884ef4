#pragma once

#include "frames/Dialog.h"

namespace Kovo {

// "Configure Management Network: Confirm": asked when the operator leaves the network window with
// changes. Y applies them, N drops them, Esc goes back to the window; every other key is ignored.
class ApplyChangesDialog : public Dialog {
  public:
    enum Answer : int { kCancel = 0, kYes = 1, kNo = 2 };

    // `ipv6Switched`: the change switches IPv6 on or off, which takes a restart of the host.
    ApplyChangesDialog(Frame* parent, bool ipv6Switched);

  protected:
    bool OnKey(int key) override;
};

}  // namespace Kovo
