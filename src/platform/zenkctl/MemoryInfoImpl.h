#pragma once

#include <cstdint>
#include <memory>

#include "platform/store/HostStore.h"

namespace ZenkCtl::Hardware {

// Physical memory ("/hardware/memory": totalPages, pageSize).
class MemoryInfoImpl {
  public:
    explicit MemoryInfoImpl(std::shared_ptr<Store::HostStore> store = Store::HostStore::System());
    uint64_t GetTotalPages();
    uint64_t GetPageSize();

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Hardware
