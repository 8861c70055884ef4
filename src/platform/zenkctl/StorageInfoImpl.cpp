#include "platform/zenkctl/StorageInfoImpl.h"

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"

namespace Json = ZenkCtl::Network::Json;

namespace ZenkCtl::Hardware {
namespace {

nlohmann::json Adapter(const Store::HostStore& store, const std::string& name) {
    const nlohmann::json list = store.Get(Store::Schema::kStorageAdapters);
    const nlohmann::json* adapter = Json::FindNamed(list, name);
    if (adapter == nullptr)
        throw HostCtl::Lib::HostCtlException("Storage adapter " + name + " does not exist");
    return *adapter;
}

}  // namespace

StorageInfoImpl::StorageInfoImpl(std::shared_ptr<Store::HostStore> store) : _store(std::move(store)) {}

std::string StorageInfoImpl::GetAdapterVersion(const std::string& adapter) {
    return Json::Text(Adapter(*_store, adapter), "version");
}

std::string StorageInfoImpl::GetAdapterDriver(const std::string& adapter) {
    return Json::Text(Adapter(*_store, adapter), "driver");
}

}  // namespace ZenkCtl::Hardware
