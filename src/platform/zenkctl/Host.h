#pragma once

#include <memory>

#include "platform/store/HostStore.h"
#include "platform/zenkctl/HardwareInfoImpl.h"
#include "platform/zenkctl/StorageInfoImpl.h"
#include "platform/zenkctl/SystemInfoImpl.h"

namespace HostCtl {

// The host as a whole: the entry to its hardware, storage and system information. It lives with the
// implementations because it builds them over the store; the interfaces never name an implementation.
class Host {
  public:
    explicit Host(std::shared_ptr<ZenkCtl::Store::HostStore> store) : _store(std::move(store)) {}

    std::unique_ptr<ZenkCtl::Hardware::HardwareInfoImpl> GetHardwareInfo() const {
        return std::make_unique<ZenkCtl::Hardware::HardwareInfoImpl>(_store);
    }
    std::unique_ptr<ZenkCtl::Hardware::StorageInfoImpl> GetStorageInfo() const {
        return std::make_unique<ZenkCtl::Hardware::StorageInfoImpl>(_store);
    }
    std::unique_ptr<ZenkCtl::System::SystemInfoImpl> GetSystemInfo() const {
        return std::make_unique<ZenkCtl::System::SystemInfoImpl>(_store);
    }

  private:
    std::shared_ptr<ZenkCtl::Store::HostStore> _store;
};

}  // namespace HostCtl
