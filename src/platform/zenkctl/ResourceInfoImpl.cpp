#include "platform/zenkctl/ResourceInfoImpl.h"

#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"

namespace ZenkCtl::Resource {

ResourceInfoImpl::ResourceInfoImpl(std::shared_ptr<Store::HostStore> store) : _store(std::move(store)) {}

bool ResourceInfoImpl::HasRunningVirtualMachines() {
    const nlohmann::json vms = _store->Get(Store::Schema::kVms);
    if (!vms.is_array()) return false;
    for (const auto& vm : vms) {
        if (Network::Json::Text(vm, "powerState") == "poweredOn") return true;
    }
    return false;
}

}  // namespace ZenkCtl::Resource
