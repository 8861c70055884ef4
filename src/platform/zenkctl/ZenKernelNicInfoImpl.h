#pragma once

#include <memory>
#include <vector>

#include "platform/hostctl/ZenKernelNicInfo.h"
#include "platform/hostctl/ZenkNic.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// All kernel network interfaces of the host, in store order.
class ZenKernelNicInfoImpl : public HostCtl::Network::ZenKernelNicInfo {
  public:
    explicit ZenKernelNicInfoImpl(std::shared_ptr<Store::HostStore> store);
    std::vector<std::unique_ptr<HostCtl::Network::ZenkNic>> GetZenKernelNics() override;

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network
