#pragma once

#include "frames/Dialog.h"

namespace Kovo {

// "Network Adapters: Warning": asked before NICs that other connections use are taken for the management
// network. Enter (1) takes them, Esc (0) goes back to the adapter list.
class UsedAdaptersDialog : public Dialog {
  public:
    explicit UsedAdaptersDialog(Frame* parent);
};

}  // namespace Kovo
