#pragma once

#include "frames/Dialog.h"
#include "frames/HostAccess.h"

namespace HostCtl::Network {
class ZenkNic;
}

namespace Kovo {

// "Restart Management Network: Confirm": F11 restarts the management interface (DoRestartNetworkDialog)
// and returns 1 once the operator has read the result; Esc returns 0. Enter does nothing here, so a
// hurried Enter cannot take the host's network down. The host's failures pass through to the opener.
class RestartNetworkDialog : public Dialog {
  public:
    RestartNetworkDialog(Frame* parent, HostCtl::Network::ZenkNic& nic, HostAccess& host);

    // Looks the management interface up and runs the dialog for it; says so when there is none, and
    // reports (logged, then shown) whatever step of the restart failed. False when the host has none.
    static bool Offer(Frame* parent, HostAccess& host);

  protected:
    bool OnKey(int key) override;

  private:
    HostCtl::Network::ZenkNic& _nic;
    HostAccess& _host;
};

}  // namespace Kovo
