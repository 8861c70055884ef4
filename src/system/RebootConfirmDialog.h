#pragma once

#include "system/ActionHost.h"
#include "system/PowerConfirmDialog.h"

namespace Kovo {

// Restarts the host once the operator has chosen to (see PowerConfirmDialog).
class RebootConfirmDialog : public PowerConfirmDialog {
  public:
    RebootConfirmDialog(Frame* parent, bool keepVms, ActionHost& host = ActionHost::System());
};

}  // namespace Kovo
