#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace KovoSim::Host {

// Reading the host's nodes leniently: a missing or ill-typed member reads as the given default, so a
// sparse scenario still gives a working host.
class StoreNodes {
  public:
    static bool Flag(const nlohmann::json& document, const std::string& pointer, bool fallback);
    // The member of "/users" with this name, or nullptr.
    static nlohmann::json* User(nlohmann::json& document, const std::string& name);
    static const nlohmann::json* User(const nlohmann::json& document, const std::string& name);
    // "/UserVars/KovoTimeOut" -> "/advancedOptions/UserVars/KovoTimeOut"; empty for a malformed path.
    static std::string OptionPointer(const std::string& optionPath);
};

}  // namespace KovoSim::Host
