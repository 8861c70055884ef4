#pragma once

#include "app/Dialog.h"

namespace Kovo {

// Asks whether a new password equal to the old one is really meant: 1 for Enter, 0 for Esc.
class SamePasswordConfirmDialog : public Dialog {
  public:
    explicit SamePasswordConfirmDialog(Frame* parent);
    int HandleKey() override;
};

}  // namespace Kovo
