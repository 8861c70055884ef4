#pragma once

#include <cstdint>
#include <string>

#include <nlohmann/json.hpp>

namespace ZenkCtl::Util {

// The product identity as the host's version record holds it ("/system/version" in the store).
struct ProductIdentity {
    std::string productName = "KOVO Host";
    std::string productVersion = "1.0.0";
    std::string productLine = "embedded";
    std::string kernelRelease = "1.0.0";
    uint32_t buildNumber = 24680;
    std::string compilationOption = "release";
    std::string releaseDate = "2024-05-02";

    std::string BuildNumberString() const { return std::to_string(buildNumber); }

    // Fields missing from the node keep the built-in values; fields of the wrong type are a
    // HostCtlException.
    static ProductIdentity FromJson(const nlohmann::json& node);
    nlohmann::json ToJson() const;
};

}  // namespace ZenkCtl::Util
