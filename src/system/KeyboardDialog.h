#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/Dialog.h"
#include "system/ActionHost.h"

namespace ZenkCtl::System {
class SystemInfoImpl;
}

namespace Kovo {

class ItemList;
class RadioItem;

// "Configure Keyboard": the host's layouts in the host's order, the current one chosen. Space chooses
// the layout under the cursor; Enter loads its mappings and makes it the layout, even when it already
// was. Returns 1 on Enter, 0 on Esc. Failures of the host's keyboard operations pass to the caller as
// HostCtl::Lib::HostCtlException.
class KeyboardDialog : public Dialog {
  public:
    explicit KeyboardDialog(Frame* parent, ActionHost& host = ActionHost::System());
    ~KeyboardDialog() override;

    int HandleKey() override;
    // The chosen layout's index; -1 when the host's current layout is not among its layouts.
    int ChosenIndex() const { return _chosen; }
    const std::vector<std::string>& Layouts() const { return _layouts; }

  private:
    void Choose(int index);

    std::unique_ptr<ZenkCtl::System::SystemInfoImpl> _system;
    std::vector<std::string> _layouts;
    std::vector<std::unique_ptr<RadioItem>> _items;
    ItemList* _list;  // owned by the window tree
    int _chosen = -1;
};

}  // namespace Kovo
