#pragma once

#include <memory>
#include <vector>

#include "platform/hostctl/ZenkNic.h"

namespace HostCtl::Network {

// The host's kernel interfaces.
class ZenKernelNicInfo {
  public:
    virtual ~ZenKernelNicInfo() = default;
    virtual std::vector<std::unique_ptr<ZenkNic>> GetZenKernelNics() = 0;
};

}  // namespace HostCtl::Network
