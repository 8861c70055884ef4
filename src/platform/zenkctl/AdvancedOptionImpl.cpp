#include "platform/zenkctl/AdvancedOptionImpl.h"

#include "platform/zenkctl/AdvancedOptionValue.h"

namespace ZenkCtl::Adv {

AdvancedOptionImpl::AdvancedOptionImpl(std::shared_ptr<Store::HostStore> store) : _store(std::move(store)) {}

std::string AdvancedOptionImpl::Normalize(const std::string& path) const {
    return !path.empty() && path[0] == '/' ? path : "/" + path;
}

std::unique_ptr<HostCtl::Adv::Option> AdvancedOptionImpl::FindOption(const std::string& path) {
    const std::string full = Normalize(path);
    if (full.size() < 2) return nullptr;
    const nlohmann::json node = _store->Get(AdvancedOptionValue::PointerOf(full));
    if (!node.is_object() || !node.contains("type")) return nullptr;
    return std::make_unique<AdvancedOptionValue>(full, _store);
}

}  // namespace ZenkCtl::Adv
