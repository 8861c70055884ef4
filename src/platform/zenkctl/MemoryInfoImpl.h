#pragma once

#include <cstdint>
#include <memory>

#include "platform/hostctl/HardwareInfo.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Hardware {

// Physical memory ("/hardware/memory": totalPages, pageSize).
class MemoryInfoImpl : public HostCtl::Hardware::MemoryInfo {
  public:
    explicit MemoryInfoImpl(std::shared_ptr<Store::HostStore> store);
    uint64_t GetTotalPages() override;
    uint64_t GetPageSize() override;

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Hardware
