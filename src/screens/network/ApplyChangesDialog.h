#pragma once

#include <string>

#include "frames/Dialog.h"

namespace Kovo {

// "Configure Management Network: Confirm": asked when the operator leaves the network window with
// changes. Y applies them, N drops them, Esc goes back to the window; every other key is ignored.
class ApplyChangesDialog : public Dialog {
  public:
    enum Answer : int { kCancel = 0, kYes = 1, kNo = 2 };

    // `ipv6Switched`: the change switches IPv6 on or off, which takes a restart of the host.
    // `takeOver`: what the change takes over from how the host was set up otherwise ("" for nothing),
    // said under the warning so the operator reads it before Y.
    ApplyChangesDialog(Frame* parent, bool ipv6Switched, const std::string& takeOver = "");

  protected:
    bool OnKey(int key) override;
};

}  // namespace Kovo
