#include "platform/zenkctl/CpuInfoImpl.h"

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"

namespace Json = ZenkCtl::Network::Json;

namespace ZenkCtl::Hardware {
namespace {

uint32_t Count(const nlohmann::json& cpu, const char* key) {
    const int64_t value = Json::Integer(cpu, key, 0);
    if (value < 0 || value > UINT32_MAX)
        throw HostCtl::Lib::HostCtlException(std::string("Invalid CPU ") + key);
    return static_cast<uint32_t>(value);
}

}  // namespace

CpuInfoImpl::CpuInfoImpl(std::shared_ptr<Store::HostStore> store) : _store(std::move(store)) {}

uint32_t CpuInfoImpl::GetNumCpuPackages() {
    return Count(_store->Get(Store::Schema::kCpu), "packages");
}
uint32_t CpuInfoImpl::GetNumCpuCores() {
    return Count(_store->Get(Store::Schema::kCpu), "cores");
}
uint32_t CpuInfoImpl::GetNumCpuThreads() {
    return Count(_store->Get(Store::Schema::kCpu), "threads");
}
std::string CpuInfoImpl::GetModelName() {
    return Json::Text(_store->Get(Store::Schema::kCpu), "model");
}

}  // namespace ZenkCtl::Hardware
