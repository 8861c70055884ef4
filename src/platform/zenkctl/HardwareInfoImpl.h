#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/hostctl/HardwareInfo.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Hardware {

using HostCtl::Hardware::BiosInfo;

// The machine's identity and firmware ("/hardware"). Missing fields read as empty text.
class HardwareInfoImpl : public HostCtl::Hardware::HardwareInfo {
  public:
    explicit HardwareInfoImpl(std::shared_ptr<Store::HostStore> store);

    std::string GetVendorName() override;
    std::string GetProductName() override;
    std::string GetSerialNumber() override;
    std::string GetServiceTag() override;
    std::string GetAssetTag() override;
    std::string GetBmcVersion() override;
    BiosInfo GetBiosInfo() override;
    std::vector<std::string> GetIdentificationStrings() override;

  private:
    std::string Field(const char* key);
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Hardware
