#pragma once

#include "frames/Dialog.h"
#include "frames/HostAccess.h"

namespace Kovo {

class CheckItem;

// "Configure Lockdown Mode": one check box, prefilled with the host's lockdown state. Enter runs the
// enter or exit command only when the box differs from that state, always as the console's own user;
// a failure is logged and the state stays as it was. Returns 1 on Enter, 0 on Esc.
class LockdownDialog : public Dialog {
  public:
    explicit LockdownDialog(Frame* parent, HostAccess& host);

    bool LockdownEnabled() const { return _enabled; }

  protected:
    void Apply() override;

  private:
    HostAccess& _host;
    CheckItem& _box;
    bool _enabled;
};

}  // namespace Kovo
