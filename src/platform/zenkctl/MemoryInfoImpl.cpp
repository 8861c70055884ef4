#include "platform/zenkctl/MemoryInfoImpl.h"

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/StoreSchema.h"

namespace ZenkCtl::Hardware {
namespace {

uint64_t Count(const nlohmann::json& memory, const char* key, uint64_t fallback) {
    if (!memory.is_object() || !memory.contains(key)) return fallback;
    const auto& v = memory[key];
    if (v.is_number_unsigned()) return v.get<uint64_t>();
    if (v.is_number_integer() && v.get<int64_t>() >= 0) return static_cast<uint64_t>(v.get<int64_t>());
    throw HostCtl::Lib::HostCtlException(std::string("Invalid memory field ") + key);
}

}  // namespace

MemoryInfoImpl::MemoryInfoImpl(std::shared_ptr<Store::HostStore> store) : _store(std::move(store)) {}

uint64_t MemoryInfoImpl::GetTotalPages() {
    return Count(_store->Get(Store::Schema::kMemory), "totalPages", 0);
}
uint64_t MemoryInfoImpl::GetPageSize() {
    return Count(_store->Get(Store::Schema::kMemory), "pageSize", 4096);
}

}  // namespace ZenkCtl::Hardware
