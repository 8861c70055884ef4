#pragma once

#include <memory>

#include "app/Dialog.h"
#include "system/ActionHost.h"

namespace Kovo {

class CheckItem;
class ItemList;

// "Shut Down/Restart" from the welcome screen: F2 shuts the host down, F11 restarts it, Space chooses
// whether running virtual machines are terminated forcibly. Returns 0 on Esc; it does not return once
// the host is going down. Each F2/F11 logs and posts its event again, before anything is powered off.
class ShutdownDialog : public Dialog {
  public:
    explicit ShutdownDialog(Frame* parent, ActionHost& host = ActionHost::System());
    ~ShutdownDialog() override;

    int HandleKey() override;
    bool ForceTerminate() const;

  private:
    void GoDown(bool restart);

    ActionHost& _host;
    ItemList* _list;  // owned by the window tree
    std::unique_ptr<CheckItem> _terminate;
};

}  // namespace Kovo
