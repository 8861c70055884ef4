#include "platform/zenkctl/Preference.h"

#include <nlohmann/json.hpp>

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/HostStore.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/Log.h"

namespace {

nlohmann::json& Loaded() {
    static nlohmann::json preferences = nlohmann::json::object();
    return preferences;
}

}  // namespace

bool Preference_Init(const ZenkCtl::Store::HostStore& store) {
    try {
        nlohmann::json node = store.Get(ZenkCtl::Store::Schema::kPreferences);
        Loaded() = node.is_object() ? std::move(node) : nlohmann::json::object();
        return true;
    } catch (const HostCtl::Lib::HostCtlException& e) {
        Log_Error("Preference_Init failed: %s", e.what());
        return false;
    }
}

std::string Preference_GetString(const std::string& name, const std::string& fallback) {
    const auto it = Loaded().find(name);
    if (it == Loaded().end()) return fallback;
    return it->is_string() ? it->get<std::string>() : it->dump();
}
