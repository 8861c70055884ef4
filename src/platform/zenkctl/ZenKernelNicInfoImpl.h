#pragma once

#include <memory>
#include <vector>

#include "platform/hostctl/ZenkNic.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// All kernel network interfaces of the host, in store order.
class ZenKernelNicInfoImpl {
  public:
    explicit ZenKernelNicInfoImpl(std::shared_ptr<Store::HostStore> store = Store::HostStore::System());
    std::vector<std::unique_ptr<HostCtl::Network::ZenkNic>> GetZenKernelNics();

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network
