#include "platform/zenkctl/PortsetImpl.h"

#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"

namespace ZenkCtl::Network {

PortsetImpl::PortsetImpl(std::shared_ptr<Store::HostStore> store) : _store(std::move(store)) {}

bool PortsetImpl::IsValidVirtualSwitch(const std::string& name) {
    return Json::FindNamed(_store->Get(Store::Schema::kSwitches), name) != nullptr;
}

}  // namespace ZenkCtl::Network
