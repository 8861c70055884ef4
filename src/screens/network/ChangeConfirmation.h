#pragma once

#include <functional>

#include "frames/Frame.h"
#include "frames/HostAccess.h"
#include "platform/hostctl/NetworkInfo.h"

namespace Kovo {

// The end of a change on a host that undoes it by itself: the change put in place and tested, and kept
// by the operator within the time the host gives (KeepNetworkDialog), or restored, with a message that
// says which interfaces came back. Every failure is logged and shown on the owner.
class ChangeConfirmation {
  public:
    // How long a change waits to be kept: the tests and a decision fit in it.
    static constexpr int kRollbackSeconds = 120;

    ChangeConfirmation(Frame& owner, HostAccess& host, HostCtl::Network::NetworkChange& change);

    // Puts the change in place, calls `placed` (to show the new address), and asks the operator; true
    // when kept. A change that fails to go in place, or is not kept, is restored.
    bool PutInPlaceAndAsk(HostCtl::Network::NetworkInfo& network, const std::function<void()>& placed);
    void Restore();

  private:
    Frame& _owner;
    HostAccess& _host;
    HostCtl::Network::NetworkChange& _change;
};

}  // namespace Kovo
