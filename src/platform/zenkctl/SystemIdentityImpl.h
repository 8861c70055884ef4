#pragma once

#include <memory>

#include "platform/hostctl/SystemIdentity.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Util {

// The host's version record ("/system/version") and boot options ("/bootOptions") in the store.
class SystemIdentityImpl : public HostCtl::Util::SystemIdentity {
  public:
    explicit SystemIdentityImpl(std::shared_ptr<Store::HostStore> store);
    HostCtl::Util::SysinfoVersionRecord GetVersionRecord() override;
    HostCtl::Util::SysinfoBootOptions GetBootOptions() override;
    HostCtl::Util::ProductNames GetProductNames() override;

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Util
