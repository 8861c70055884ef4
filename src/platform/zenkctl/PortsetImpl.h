#pragma once

#include <memory>
#include <string>

#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// Existence checks on standard switches.
class PortsetImpl {
  public:
    explicit PortsetImpl(std::shared_ptr<Store::HostStore> store = Store::HostStore::System());
    // True when the host has a standard switch of that name.
    bool IsValidVirtualSwitch(const std::string& name);

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network
