#pragma once

#include "frames/HostAccess.h"
#include "system/PowerConfirmDialog.h"

namespace Kovo {

// Restarts the host once the operator has chosen to (see PowerConfirmDialog).
class RebootConfirmDialog : public PowerConfirmDialog {
  public:
    RebootConfirmDialog(Frame* parent, bool keepVms, HostAccess& host);
};

}  // namespace Kovo
