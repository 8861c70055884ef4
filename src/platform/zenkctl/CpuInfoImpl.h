#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/store/HostStore.h"

namespace ZenkCtl::Hardware {

// The processors ("/hardware/cpu").
class CpuInfoImpl {
  public:
    explicit CpuInfoImpl(std::shared_ptr<Store::HostStore> store = Store::HostStore::System());
    uint32_t GetNumCpuPackages();
    uint32_t GetNumCpuCores();
    uint32_t GetNumCpuThreads();
    std::string GetModelName();

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Hardware
