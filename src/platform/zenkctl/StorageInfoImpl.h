#pragma once

#include <memory>
#include <string>

#include "platform/hostctl/HardwareInfo.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Hardware {

// Storage adapters ("/hardware/storage/adapters": [{name, driver, version}]).
class StorageInfoImpl : public HostCtl::Hardware::StorageInfo {
  public:
    explicit StorageInfoImpl(std::shared_ptr<Store::HostStore> store);
    // HostCtlException for an adapter the host does not have.
    std::string GetAdapterVersion(const std::string& adapter) override;
    std::string GetAdapterDriver(const std::string& adapter) override;

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Hardware
