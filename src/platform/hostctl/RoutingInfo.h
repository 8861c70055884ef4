#pragma once

#include "platform/hostctl/Ipv4Address.h"
#include "platform/hostctl/Ipv6Address.h"

namespace HostCtl::Network {

// The default gateways of the host's kernel interfaces on one network stack.
class RoutingInfo {
  public:
    virtual ~RoutingInfo() = default;

    // 0.0.0.0 / :: when there is none.
    virtual Ipv4Address GetZenKernelDefaultGateway() = 0;
    virtual void SetZenKernelDefaultGateway(const Ipv4Address& gateway, bool persistentOnly) = 0;
    virtual Ipv6Address GetIpv6ZenKernelDefaultGateway() = 0;
    virtual void SetIpv6ZenKernelDefaultGateway(const Ipv6Address& gateway) = 0;
};

}  // namespace HostCtl::Network
