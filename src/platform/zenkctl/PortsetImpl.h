#pragma once

#include <memory>
#include <string>

#include "platform/hostctl/Portset.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// Existence checks on standard switches.
class PortsetImpl : public HostCtl::Network::Portset {
  public:
    explicit PortsetImpl(std::shared_ptr<Store::HostStore> store);
    // True when the host has a standard switch of that name.
    bool IsValidVirtualSwitch(const std::string& name) override;

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network
