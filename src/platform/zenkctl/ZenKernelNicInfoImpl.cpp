#include "platform/zenkctl/ZenKernelNicInfoImpl.h"

#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"
#include "platform/zenkctl/ZenkNicImpl.h"

namespace ZenkCtl::Network {

ZenKernelNicInfoImpl::ZenKernelNicInfoImpl(std::shared_ptr<Store::HostStore> store)
    : _store(std::move(store)) {}

std::vector<std::unique_ptr<HostCtl::Network::ZenkNic>> ZenKernelNicInfoImpl::GetZenKernelNics() {
    std::vector<std::unique_ptr<HostCtl::Network::ZenkNic>> nics;
    const nlohmann::json list = _store->Get(Store::Schema::kZenkNics);
    if (!list.is_array()) return nics;
    for (const auto& nic : list)
        nics.push_back(std::make_unique<ZenkNicImpl>(Json::Text(nic, "name"), _store));
    return nics;
}

}  // namespace ZenkCtl::Network
