#pragma once

#include <memory>

#include "platform/hostctl/ResourceInfo.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Resource {

// The host's virtual machines ("/vms": [{name, powerState}]).
class ResourceInfoImpl : public HostCtl::Resource::ResourceInfo {
  public:
    explicit ResourceInfoImpl(std::shared_ptr<Store::HostStore> store);
    // True when any machine's powerState is "poweredOn".
    bool HasRunningVirtualMachines() override;

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Resource
