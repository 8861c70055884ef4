#pragma once

#include <memory>

#include "app/Dialog.h"
#include "system/ActionHost.h"

namespace Kovo {

class CheckItem;
class ItemList;

// "Configure Lockdown Mode": one check box, prefilled with the host's lockdown state. Enter runs the
// enter or exit command only when the box differs from that state, always as the console's own user;
// a failure is logged and the state stays as it was. Returns 1 on Enter, 0 on Esc.
class LockdownDialog : public Dialog {
  public:
    explicit LockdownDialog(Frame* parent, ActionHost& host = ActionHost::System());
    ~LockdownDialog() override;

    int HandleKey() override;
    bool LockdownEnabled() const { return _enabled; }

  private:
    void Apply();

    ActionHost& _host;
    ItemList* _list;  // owned by the window tree
    std::unique_ptr<CheckItem> _box;
    bool _enabled;
};

}  // namespace Kovo
