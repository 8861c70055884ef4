#include "platform/zenkctl/HardwareInfoImpl.h"

#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"

namespace Json = ZenkCtl::Network::Json;

namespace ZenkCtl::Hardware {

HardwareInfoImpl::HardwareInfoImpl(std::shared_ptr<Store::HostStore> store) : _store(std::move(store)) {}

std::string HardwareInfoImpl::Field(const char* key) {
    return Json::Text(_store->Get(Store::Schema::kHardware), key);
}

std::string HardwareInfoImpl::GetVendorName() {
    return Field("vendor");
}
std::string HardwareInfoImpl::GetProductName() {
    return Field("product");
}
std::string HardwareInfoImpl::GetSerialNumber() {
    return Field("serialNumber");
}
std::string HardwareInfoImpl::GetServiceTag() {
    return Field("serviceTag");
}
std::string HardwareInfoImpl::GetAssetTag() {
    return Field("assetTag");
}
std::string HardwareInfoImpl::GetBmcVersion() {
    return Field("bmcVersion");
}

BiosInfo HardwareInfoImpl::GetBiosInfo() {
    const nlohmann::json bios = _store->Get("/hardware/bios");
    return BiosInfo{Json::Text(bios, "version"), static_cast<int>(Json::Integer(bios, "majorRelease")),
                    static_cast<int>(Json::Integer(bios, "minorRelease")), Json::Text(bios, "releaseDate")};
}

std::vector<std::string> HardwareInfoImpl::GetIdentificationStrings() {
    return Json::TextList(_store->Get(Store::Schema::kHardware), "identification");
}

}  // namespace ZenkCtl::Hardware
