#include "platform/zenkctl/ProductIdentity.h"

#include "platform/hostctl/HostCtlException.h"

namespace ZenkCtl::Util {
namespace {

void Take(const nlohmann::json& node, const char* key, std::string& field) {
    if (!node.contains(key)) return;
    if (!node[key].is_string()) {
        throw HostCtl::Lib::HostCtlException(std::string("Version record field ") + key + " is not text");
    }
    field = node[key].get<std::string>();
}

}  // namespace

ProductIdentity ProductIdentity::FromJson(const nlohmann::json& node) {
    ProductIdentity id;
    if (node.is_null()) return id;
    if (!node.is_object()) throw HostCtl::Lib::HostCtlException("The version record is not an object");
    Take(node, "productName", id.productName);
    Take(node, "productVersion", id.productVersion);
    Take(node, "productLine", id.productLine);
    Take(node, "kernelRelease", id.kernelRelease);
    Take(node, "compilationOption", id.compilationOption);
    Take(node, "releaseDate", id.releaseDate);
    if (node.contains("buildNumber")) {
        const auto& build = node["buildNumber"];
        if (!build.is_number_unsigned() && !(build.is_number_integer() && build.get<int64_t>() >= 0)) {
            throw HostCtl::Lib::HostCtlException("Version record field buildNumber is not a build number");
        }
        const auto value = build.get<uint64_t>();
        if (value > UINT32_MAX)
            throw HostCtl::Lib::HostCtlException("Version record build number is too large");
        id.buildNumber = static_cast<uint32_t>(value);
    }
    return id;
}

nlohmann::json ProductIdentity::ToJson() const {
    return {{"productName", productName}, {"productVersion", productVersion},
            {"productLine", productLine}, {"kernelRelease", kernelRelease},
            {"buildNumber", buildNumber}, {"compilationOption", compilationOption},
            {"releaseDate", releaseDate}};
}

}  // namespace ZenkCtl::Util
