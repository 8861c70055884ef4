#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/Pnic.h"
#include "platform/hostctl/ZenkNic.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// The host's network service: physical NICs, the management interface, the IPv6 switch and the
// whole-network operations of the factory restore.
class NetworkInfoImpl : public HostCtl::Network::NetworkInfo {
  public:
    explicit NetworkInfoImpl(std::shared_ptr<Store::HostStore> store);
    ~NetworkInfoImpl() override = default;

    std::vector<std::unique_ptr<HostCtl::Network::Pnic>> GetPnics() override;

    // Looks the management interface up again: the kernel interface marked "management", else the one on
    // the port group "Management Network", else the first kernel interface.
    void UpdateManagementInterface() override;
    // The interface found by the last UpdateManagementInterface (which runs first when it never ran);
    // nullptr when the host has none.
    std::unique_ptr<HostCtl::Network::ZenkNic> GetManagementInterface() override;
    std::string GetManagementInterfaceName() override;

    // The state IPv6 runs in now. Setting it takes effect at the next boot ("/boot/pending/ipv6Enabled").
    bool IsZenkIpv6Enabled() override;
    void SetZenkIpv6Enabled(bool enabled) override;
    // The state the next boot will have.
    bool GetPendingZenkIpv6Enabled() override;

    void DisableNetDumper() override;
    bool IsNetDumperEnabled() override;
    // Factory restore: forget switches, port groups, kernel interfaces, routes and DNS servers.
    void ClearNetworkConfig() override;
    // Factory restore: a standard switch "xSwitch0" on the first physical NIC with a link (else the
    // first), the port group "Management Network" and the management interface "zk0" on DHCP.
    void AutoConfigNetwork() override;

  private:
    std::shared_ptr<Store::HostStore> _store;
    bool _looked = false;
    std::string _management;
};

}  // namespace ZenkCtl::Network
