#pragma once

#include "system/ActionHost.h"
#include "system/PowerConfirmDialog.h"

namespace Kovo {

// Shuts the host down once the operator has chosen to (see PowerConfirmDialog).
class ShutdownConfirmDialog : public PowerConfirmDialog {
  public:
    ShutdownConfirmDialog(Frame* parent, bool keepVms, ActionHost& host = ActionHost::System());
};

}  // namespace Kovo
