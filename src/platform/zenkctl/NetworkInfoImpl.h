#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/hostctl/Pnic.h"
#include "platform/hostctl/ZenkNic.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// The host's network service: physical NICs, the management interface, the IPv6 switch and the
// whole-network operations of the factory restore.
//
// Its operations are virtual so that a caller's tests can record the calls made on it in order.
class NetworkInfoImpl {
  public:
    explicit NetworkInfoImpl(std::shared_ptr<Store::HostStore> store = Store::HostStore::System());
    virtual ~NetworkInfoImpl() = default;

    virtual std::vector<std::unique_ptr<HostCtl::Network::Pnic>> GetPnics();

    // Looks the management interface up again: the kernel interface marked "management", else the one on
    // the port group "Management Network", else the first kernel interface.
    virtual void UpdateManagementInterface();
    // The interface found by the last UpdateManagementInterface (which runs first when it never ran);
    // nullptr when the host has none.
    virtual std::unique_ptr<HostCtl::Network::ZenkNic> GetManagementInterface();
    virtual std::string GetManagementInterfaceName();

    // The state IPv6 runs in now. Setting it takes effect at the next boot ("/boot/pending/ipv6Enabled").
    virtual bool IsZenkIpv6Enabled();
    virtual void SetZenkIpv6Enabled(bool enabled);
    // The state the next boot will have.
    virtual bool GetPendingZenkIpv6Enabled();

    virtual void DisableNetDumper();
    virtual bool IsNetDumperEnabled();
    // Factory restore: forget switches, port groups, kernel interfaces, routes and DNS servers.
    virtual void ClearNetworkConfig();
    // Factory restore: a standard switch "xSwitch0" on the first physical NIC with a link (else the
    // first), the port group "Management Network" and the management interface "zk0" on DHCP.
    virtual void AutoConfigNetwork();

  private:
    std::shared_ptr<Store::HostStore> _store;
    bool _looked = false;
    std::string _management;
};

}  // namespace ZenkCtl::Network
