#pragma once

#include "frames/ConfirmDialog.h"

namespace Kovo {

// "xDS Uplinks: Warning": asked before the management port is restored without an uplink. Enter (1)
// goes on, Esc (0) goes back to choose some.
class DvsUplinksWarningDialog : public ConfirmDialog {
  public:
    explicit DvsUplinksWarningDialog(Frame* parent);
};

}  // namespace Kovo
