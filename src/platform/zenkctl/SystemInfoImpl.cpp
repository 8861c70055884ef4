#include "platform/zenkctl/SystemInfoImpl.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"

namespace Json = ZenkCtl::Network::Json;
using HostCtl::Lib::HostCtlException;
using nlohmann::json;

namespace ZenkCtl::System {

SystemInfoImpl::SystemInfoImpl(std::shared_ptr<Store::HostStore> store) : _store(std::move(store)) {}

std::string SystemInfoImpl::GetKeyboardLayout() {
    return Json::Text(_store->Get(Store::Schema::kKeyboard), "layout");
}

std::vector<std::string> SystemInfoImpl::GetKeyboardLayouts() {
    return Json::TextList(_store->Get(Store::Schema::kKeyboard), "layouts");
}

void SystemInfoImpl::RequireLayout(const std::string& layout) {
    const auto layouts = GetKeyboardLayouts();
    if (std::find(layouts.begin(), layouts.end(), layout) == layouts.end()) {
        throw HostCtlException("Unknown keyboard layout: " + layout);
    }
}

void SystemInfoImpl::LoadKeyboardMappings(const std::string& layout) {
    RequireLayout(layout);
    _store->Update([&](json& d) { Json::ObjectAt(d, Store::Schema::kKeyboard)["mappingsLoaded"] = layout; });
}

void SystemInfoImpl::SetKeyboardLayout(const std::string& layout) {
    RequireLayout(layout);
    _store->Update([&](json& d) { Json::ObjectAt(d, Store::Schema::kKeyboard)["layout"] = layout; });
}

void SystemInfoImpl::SetSystemAlert(const std::string& message) {
    // Raised again each time the welcome screen is drawn: one entry, and no write of the store, for an
    // alert already raised.
    const std::vector<std::string> raised = GetSystemAlerts();
    if (std::find(raised.begin(), raised.end(), message) != raised.end()) return;
    const auto now = static_cast<int64_t>(std::time(nullptr));
    _store->Update([&](json& d) {
        json& alerts = Json::ArrayAt(d, Store::Schema::kAlerts);
        for (const auto& alert : alerts)
            if (Json::Text(alert, "message") == message) return;
        alerts.push_back({{"message", message}, {"time", now}});
    });
}

std::vector<std::string> SystemInfoImpl::GetSystemAlerts() {
    std::vector<std::string> alerts;
    const json list = _store->Get(Store::Schema::kAlerts);
    if (list.is_array()) {
        for (const auto& a : list) alerts.push_back(Json::Text(a, "message"));
    }
    return alerts;
}

bool SystemInfoImpl::IsLogKept(const std::string& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && access(path.c_str(), R_OK) == 0;
}

bool SystemInfoImpl::IsConsoleLoginAllowed() {
    return access("/var/run/halvor/show-kovo-login", F_OK) == 0;
}

std::unique_ptr<HostCtl::System::FirewallRuleset> SystemInfoImpl::GetFirewallRulesetById(
    const std::string& id) {
    if (Json::FindNamed(_store->Get(Store::Schema::kFirewallRulesets), id, "id") == nullptr) {
        throw HostCtlException("Firewall ruleset " + id + " does not exist");
    }
    return std::make_unique<FirewallRulesetImpl>(id, _store);
}

}  // namespace ZenkCtl::System
