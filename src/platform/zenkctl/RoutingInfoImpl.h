#pragma once

#include <memory>
#include <string>

#include "platform/hostctl/Ipv4Address.h"
#include "platform/hostctl/Ipv6Address.h"
#include "platform/hostctl/RoutingInfo.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// Default gateways of a network stack ("/network/routing").
class RoutingInfoImpl : public HostCtl::Network::RoutingInfo {
  public:
    RoutingInfoImpl(const std::string& netstack, std::shared_ptr<Store::HostStore> store);
    ~RoutingInfoImpl() override = default;

    HostCtl::Network::Ipv4Address GetZenKernelDefaultGateway() override;
    // persistentOnly: record the gateway for the next boot without touching the running route (the
    // host has one state, so both are the same here).
    void SetZenKernelDefaultGateway(const HostCtl::Network::Ipv4Address& gateway,
                                    bool persistentOnly) override;
    HostCtl::Network::Ipv6Address GetIpv6ZenKernelDefaultGateway() override;
    void SetIpv6ZenKernelDefaultGateway(const HostCtl::Network::Ipv6Address& gateway) override;

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network
