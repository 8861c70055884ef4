#pragma once

#include <memory>
#include <string>

#include "platform/hostctl/VirtualSwitchInfo.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// Existence checks on port groups of standard switches.
class PortGroupImpl : public HostCtl::Network::PortGroup {
  public:
    explicit PortGroupImpl(std::shared_ptr<Store::HostStore> store);
    // True when any standard switch of the host has a port group of that name.
    bool IsValidPortGroup(const std::string& name) override;

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network
