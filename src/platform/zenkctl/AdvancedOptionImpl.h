#pragma once

#include <memory>
#include <string>

#include "platform/hostctl/AdvancedOption.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Adv {

// The host's advanced options, looked up by path ("/UserVars/KovoTimeOut", "/Net/Foo"). A path without
// a leading slash is taken from the root.
class AdvancedOptionImpl : public HostCtl::Adv::AdvancedOption {
  public:
    explicit AdvancedOptionImpl(std::shared_ptr<Store::HostStore> store);
    ~AdvancedOptionImpl() override = default;

    // nullptr when the host has no such option; HostCtlException when the store cannot be read.
    std::unique_ptr<HostCtl::Adv::Option> FindOption(const std::string& path) override;

  protected:
    virtual std::string Normalize(const std::string& path) const;

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Adv
