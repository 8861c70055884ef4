// Feeds arbitrary bytes to the store's document loader and to the readers of the network nodes: a
// malformed host configuration must come back as HostCtlException, never as a crash or another exception.
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/NetworkJson.h"
#include "platform/zenkctl/ProductIdentity.h"
#include "platform/zenkctl/ZenkNicRuntime.h"

using nlohmann::json;
namespace Json = ZenkCtl::Network::Json;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    json document;
    try {
        document = ZenkCtl::Store::HostStore::Parse(text, "fuzz input");
    } catch (const HostCtl::Lib::HostCtlException&) {
        return 0;
    }
    try {
        (void)ZenkCtl::Util::ProductIdentity::FromJson(Json::At(document, "/system/version"));
    } catch (const HostCtl::Lib::HostCtlException&) {
    }
    try {
        const json& nics = Json::At(document, "/network/zenkNics");
        if (nics.is_array()) {
            for (const auto& nic : nics) {
                if (!nic.is_object()) continue;
                (void)Json::ToIpConfig(nic.value("ipConfig", json::object()));
                ZenkCtl::Network::ZenkNicRuntime::Apply(document, Json::Text(nic, "name"));
            }
        }
    } catch (const HostCtl::Lib::HostCtlException&) {
    }
    try {
        const json& switches = Json::At(document, "/network/switches");
        if (switches.is_array()) {
            for (const auto& s : switches) {
                if (s.is_object()) (void)Json::ToTeaming(s.value("teaming", json::object()));
            }
        }
    } catch (const HostCtl::Lib::HostCtlException&) {
    }
    return 0;
}
