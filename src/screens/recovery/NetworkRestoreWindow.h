#pragma once

#include <memory>
#include <vector>

#include "frames/HostAccess.h"
#include "frames/MenuWindow.h"

namespace HostCtl::Network {
class ZenkNic;
}

namespace Kovo {

// "Network Restore Options": the ways back for a host whose management network is broken. The factory
// restore is always offered; the two repairs of a distributed switch only while the management
// interface sits on one, the move to a standard switch until it has been done. Entries are known by
// the string ids of their texts (StringId::RestoreNetworkEntry, ...). Returns 1 when left with Esc.
class NetworkRestoreWindow : public MenuWindow {
  public:
    explicit NetworkRestoreWindow(Frame* parent, HostAccess& host);
    ~NetworkRestoreWindow() override;

  private:
    std::vector<Row> Rows() override;
    HostAccess& _host;
    // Found by the distributed-switch test that sets _onDistributedSwitch, so declared before it.
    std::unique_ptr<HostCtl::Network::ZenkNic> _nic;
    bool _onDistributedSwitch;
    bool _standardSwitchRestored = false;
};

}  // namespace Kovo
