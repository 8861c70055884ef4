#pragma once

#include "frames/Dialog.h"
#include "frames/HostAccess.h"

namespace Kovo {

// "Restore Network Factory Settings": F11 ("Yes, Reset") runs the factory restore (DoRestoreNetworkDialog)
// and returns 1; Esc returns 0 and Enter does nothing. Whatever the restore did, cancelled and failed
// included, the log line and the host event follow it; a failure then passes on to the opener.
class RestoreNetworkDialog : public Dialog {
  public:
    explicit RestoreNetworkDialog(Frame* parent, HostAccess& host);

  protected:
    bool OnKey(int key) override;

  private:
    void Restore();

    HostAccess& _host;
};

}  // namespace Kovo
