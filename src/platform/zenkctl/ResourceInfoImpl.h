#pragma once

#include <memory>

#include "platform/store/HostStore.h"

namespace ZenkCtl::Resource {

// The host's virtual machines ("/vms": [{name, powerState}]).
class ResourceInfoImpl {
  public:
    explicit ResourceInfoImpl(std::shared_ptr<Store::HostStore> store = Store::HostStore::System());
    // True when any machine's powerState is "poweredOn".
    bool HasRunningVirtualMachines();

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Resource
