#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/store/HostStore.h"

namespace ZenkCtl::Hardware {

struct BiosInfo {
    std::string version;
    int majorRelease = 0;
    int minorRelease = 0;
    std::string releaseDate;
};

// The machine's identity and firmware ("/hardware"). Missing fields read as empty text.
class HardwareInfoImpl {
  public:
    explicit HardwareInfoImpl(std::shared_ptr<Store::HostStore> store = Store::HostStore::System());

    std::string GetVendorName();
    std::string GetProductName();
    std::string GetSerialNumber();
    std::string GetServiceTag();
    std::string GetAssetTag();
    std::string GetBmcVersion();
    BiosInfo GetBiosInfo();
    std::vector<std::string> GetIdentificationStrings();

  private:
    std::string Field(const char* key);
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Hardware
