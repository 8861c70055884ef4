#pragma once

#include "frames/ConfirmDialog.h"

namespace Kovo {

// "Warning: VMs running on the host": Enter (1) lets the caller power them off, Esc (0) stops it.
class RunningVMsWarningDialog : public ConfirmDialog {
  public:
    explicit RunningVMsWarningDialog(Frame* parent);
};

}  // namespace Kovo
