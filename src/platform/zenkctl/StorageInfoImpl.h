#pragma once

#include <memory>
#include <string>

#include "platform/store/HostStore.h"

namespace ZenkCtl::Hardware {

// Storage adapters ("/hardware/storage/adapters": [{name, driver, version}]).
class StorageInfoImpl {
  public:
    explicit StorageInfoImpl(std::shared_ptr<Store::HostStore> store = Store::HostStore::System());
    // HostCtlException for an adapter the host does not have.
    std::string GetAdapterVersion(const std::string& adapter);
    std::string GetAdapterDriver(const std::string& adapter);

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Hardware
