#include "StoreNodes.h"
#include "platform/store/StoreSchema.h"

namespace KovoSim::Host {

namespace Schema = ZenkCtl::Store::Schema;

bool StoreNodes::Flag(const nlohmann::json& document, const std::string& pointer, bool fallback) {
    const nlohmann::json::json_pointer where(pointer);
    if (!document.contains(where)) return fallback;
    const auto& value = document.at(where);
    return value.is_boolean() ? value.get<bool>() : fallback;
}

const nlohmann::json* StoreNodes::User(const nlohmann::json& document, const std::string& name) {
    const auto users = document.find("users");
    if (users == document.end() || !users->is_array()) return nullptr;
    for (const auto& user : *users) {
        if (user.is_object() && user.value("name", std::string()) == name) return &user;
    }
    return nullptr;
}

nlohmann::json* StoreNodes::User(nlohmann::json& document, const std::string& name) {
    return const_cast<nlohmann::json*>(User(static_cast<const nlohmann::json&>(document), name));
}

std::string StoreNodes::OptionPointer(const std::string& optionPath) {
    if (optionPath.size() < 2 || optionPath[0] != '/' || optionPath.back() == '/') return {};
    for (size_t i = 1; i < optionPath.size(); ++i) {
        const char c = optionPath[i];
        if (c == '~' || (c == '/' && optionPath[i - 1] == '/')) return {};
    }
    return Schema::kAdvancedOptions + optionPath;
}

}  // namespace KovoSim::Host
