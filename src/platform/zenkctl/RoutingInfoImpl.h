#pragma once

#include <memory>
#include <string>

#include "platform/hostctl/Ipv4Address.h"
#include "platform/hostctl/Ipv6Address.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// Default gateways of a network stack ("/network/routing").
//
// Its operations are virtual so that a caller's tests can record the calls made on it in order.
class RoutingInfoImpl {
  public:
    explicit RoutingInfoImpl(const std::string& netstack = "defaultNetStack",
                             std::shared_ptr<Store::HostStore> store = Store::HostStore::System());
    virtual ~RoutingInfoImpl() = default;

    virtual HostCtl::Network::Ipv4Address GetZenKernelDefaultGateway();
    // persistentOnly: record the gateway for the next boot without touching the running route (the
    // host has one state, so both are the same here).
    virtual void SetZenKernelDefaultGateway(const HostCtl::Network::Ipv4Address& gateway,
                                            bool persistentOnly);
    virtual HostCtl::Network::Ipv6Address GetIpv6ZenKernelDefaultGateway();
    virtual void SetIpv6ZenKernelDefaultGateway(const HostCtl::Network::Ipv6Address& gateway);

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network
