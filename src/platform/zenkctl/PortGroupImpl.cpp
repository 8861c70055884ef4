#include "platform/zenkctl/PortGroupImpl.h"

#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"

namespace ZenkCtl::Network {

PortGroupImpl::PortGroupImpl(std::shared_ptr<Store::HostStore> store) : _store(std::move(store)) {}

bool PortGroupImpl::IsValidPortGroup(const std::string& name) {
    const nlohmann::json switches = _store->Get(Store::Schema::kSwitches);
    if (!switches.is_array()) return false;
    for (const auto& s : switches) {
        if (s.contains("portGroups") && Json::FindNamed(s["portGroups"], name) != nullptr) return true;
    }
    return false;
}

}  // namespace ZenkCtl::Network
