#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace LinuxHost {

// An address on one of the kernel's interfaces, as netlink reports it.
struct KernelAddress {
    std::string interface;
    int family = 0;  // AF_INET or AF_INET6
    std::string address;
    int prefixLength = 0;
    uint32_t flags = 0;                    // IFA_F_*
    uint32_t validLifetime = 0xFFFFFFFFu;  // seconds; 0xFFFFFFFF is forever
    bool Forever() const { return validLifetime == 0xFFFFFFFFu; }
};

// A default route of the main table.
struct KernelRoute {
    std::string interface;
    int family = 0;
    std::string gateway;  // "" for a route without a gateway
    uint32_t metric = 0;
};

// What the kernel says of the host's addresses and default routes right now.
class KernelNetwork {
  public:
    virtual ~KernelNetwork() = default;
    // Both throw HostCtl::Lib::HostCtlException when the kernel cannot be asked.
    virtual std::vector<KernelAddress> Addresses() const = 0;
    virtual std::vector<KernelRoute> DefaultRoutes() const = 0;
};

// The kernel of the network namespace the console runs in, over rtnetlink.
class NetlinkNetwork : public KernelNetwork {
  public:
    std::vector<KernelAddress> Addresses() const override;
    std::vector<KernelRoute> DefaultRoutes() const override;
};

}  // namespace LinuxHost
