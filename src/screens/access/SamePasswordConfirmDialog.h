#pragma once

#include "frames/ConfirmDialog.h"

namespace Kovo {

// "Configure Password: Warning": asks whether a new password equal to the old one is really meant;
// 1 for Enter, 0 for Esc.
class SamePasswordConfirmDialog : public ConfirmDialog {
  public:
    explicit SamePasswordConfirmDialog(Frame* parent);
};

}  // namespace Kovo
