#pragma once

#include <string>
#include <vector>

#include "platform/hostctl/IpConfig.h"
#include "platform/linux/KernelNetwork.h"

namespace LinuxHost {

// The management interface of a Linux host: the one of `interfaces` that holds the default IPv4 route of
// lowest metric, else the IPv6 one, else the first of `reachable` with a global address; "" when none
// has any.
std::string ChooseManagementInterface(const std::vector<std::string>& interfaces,
                                      const std::vector<std::string>& reachable,
                                      const std::vector<KernelAddress>& addresses,
                                      const std::vector<KernelRoute>& routes);

// An interface's running configuration, read from what the kernel holds. An address with a lifetime came
// from a lease (IPv4 DHCP; IPv6 DHCPv6 when it is a single address, a router advertisement otherwise);
// one without is static. An interface without an IPv4 address has IPv4 switched off.
HostCtl::Network::IpConfig RunningIpConfig(const std::string& interface,
                                           const std::vector<KernelAddress>& addresses,
                                           const std::vector<KernelRoute>& routes);

}  // namespace LinuxHost
