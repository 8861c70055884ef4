#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/hostctl/HardwareInfo.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Hardware {

// The processors ("/hardware/cpu").
class CpuInfoImpl : public HostCtl::Hardware::CpuInfo {
  public:
    explicit CpuInfoImpl(std::shared_ptr<Store::HostStore> store);
    uint32_t GetNumCpuPackages() override;
    uint32_t GetNumCpuCores() override;
    uint32_t GetNumCpuThreads() override;
    std::string GetModelName() override;

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Hardware
