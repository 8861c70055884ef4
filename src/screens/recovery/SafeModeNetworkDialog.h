#pragma once

#include "frames/Dialog.h"
#include "frames/HostAccess.h"

namespace HostCtl::Network {
class ZenkNic;
}

namespace Kovo {

// "Restore Standard Switch": moves the management network and the uplinks of its switch onto a new
// standard switch (SafeModeNetwork). Esc returns 0; F11 does the move and returns 1 however it went, the
// failures being logged; Enter does nothing.
class SafeModeNetworkDialog : public Dialog {
  public:
    SafeModeNetworkDialog(Frame* parent, HostCtl::Network::ZenkNic& nic, HostAccess& host);

  protected:
    bool OnKey(int key) override;

  private:
    HostCtl::Network::ZenkNic& _nic;
    HostAccess& _host;
};

}  // namespace Kovo
