#pragma once

#include "frames/Dialog.h"
#include "frames/HostAccess.h"

namespace Kovo {

class CheckItem;

// "Shut Down/Restart" from the welcome screen: F2 shuts the host down, F11 restarts it, Space chooses
// whether running virtual machines are terminated forcibly. Returns 0 on Esc; it does not return once
// the host is going down. Each F2/F11 logs and posts its event again, before anything is powered off.
class ShutdownDialog : public Dialog {
  public:
    explicit ShutdownDialog(Frame* parent, HostAccess& host);

    bool ForceTerminate() const;

  protected:
    bool OnKey(int key) override;

  private:
    void GoDown(bool restart);

    HostAccess& _host;
    CheckItem& _terminate;
};

}  // namespace Kovo
