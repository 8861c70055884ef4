#pragma once

#include "frames/Dialog.h"

namespace Kovo {

// A question the operator confirms with Enter (result 1) or declines with Esc (result 0); every other
// key is ignored. Subclasses give only their layout.
class ConfirmDialog : public Dialog {
  public:
    ConfirmDialog(Frame* parent, const DialogLayout& layout) : Dialog(parent, layout) {}

  protected:
    bool OnKey(int key) override;
};

}  // namespace Kovo
