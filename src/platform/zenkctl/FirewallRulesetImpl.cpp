#include "platform/zenkctl/FirewallRulesetImpl.h"

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"

namespace Json = ZenkCtl::Network::Json;
using nlohmann::json;

namespace ZenkCtl::System {

FirewallRulesetImpl::FirewallRulesetImpl(std::string id, std::shared_ptr<Store::HostStore> store)
    : _id(std::move(id)), _store(std::move(store)) {}

bool FirewallRulesetImpl::IsEnabled() {
    const json rulesets = _store->Get(Store::Schema::kFirewallRulesets);
    const json* r = Json::FindNamed(rulesets, _id, "id");
    if (r == nullptr) throw HostCtl::Lib::HostCtlException("Firewall ruleset " + _id + " does not exist");
    return Json::Flag(*r, "enabled");
}

void FirewallRulesetImpl::Enable() {
    Set(true);
}
void FirewallRulesetImpl::Disable() {
    Set(false);
}

void FirewallRulesetImpl::Set(bool enabled) {
    _store->Update([&](json& d) {
        json* r = Json::FindNamed(Json::ArrayAt(d, Store::Schema::kFirewallRulesets), _id, "id");
        if (r == nullptr) throw HostCtl::Lib::HostCtlException("Firewall ruleset " + _id + " does not exist");
        (*r)["enabled"] = enabled;
    });
}

}  // namespace ZenkCtl::System
