#pragma once

#include <memory>
#include <string>

#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// Existence checks on port groups of standard switches.
class PortGroupImpl {
  public:
    explicit PortGroupImpl(std::shared_ptr<Store::HostStore> store = Store::HostStore::System());
    // True when any standard switch of the host has a port group of that name.
    bool IsValidPortGroup(const std::string& name);

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network
