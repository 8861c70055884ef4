#pragma once

#include "frames/HostAccess.h"
#include "system/PowerConfirmDialog.h"

namespace Kovo {

// Shuts the host down once the operator has chosen to (see PowerConfirmDialog).
class ShutdownConfirmDialog : public PowerConfirmDialog {
  public:
    ShutdownConfirmDialog(Frame* parent, bool keepVms, HostAccess& host);
};

}  // namespace Kovo
