#include "platform/zenkctl/NetworkJson.h"

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/StoreSchema.h"

using HostCtl::Lib::HostCtlException;
using nlohmann::json;
using namespace HostCtl::Network;

namespace ZenkCtl::Network::Json {
namespace {

[[noreturn]] void Bad(const char* key, const char* what) {
    throw HostCtlException(std::string("Host configuration field \"") + key + "\" " + what);
}

Ipv4Address V4(const json& node, const char* key) {
    const std::string text = Text(node, key);
    if (text.empty()) return Ipv4Address();
    if (!Ipv4Address::IsValidAddress(text)) Bad(key, "is not an IPv4 address");
    return Ipv4Address(text);
}

Ipv6Address V6(const json& node, const char* key) {
    const std::string text = Text(node, key);
    if (text.empty()) return Ipv6Address();
    if (!Ipv6Address::IsValidAddress(text)) Bad(key, "is not an IPv6 address");
    return Ipv6Address(text);
}

const json& Object(const json& node, const char* key) {
    static const json empty = json::object();
    if (!node.is_object() || !node.contains(key) || node[key].is_null()) return empty;
    if (!node[key].is_object()) Bad(key, "is not an object");
    return node[key];
}

}  // namespace

std::string Text(const json& node, const char* key, const std::string& fallback) {
    if (!node.is_object() || !node.contains(key) || node[key].is_null()) return fallback;
    if (!node[key].is_string()) Bad(key, "is not text");
    return node[key].get<std::string>();
}

bool Flag(const json& node, const char* key, bool fallback) {
    if (!node.is_object() || !node.contains(key) || node[key].is_null()) return fallback;
    if (!node[key].is_boolean()) Bad(key, "is not true or false");
    return node[key].get<bool>();
}

int64_t Integer(const json& node, const char* key, int64_t fallback) {
    if (!node.is_object() || !node.contains(key) || node[key].is_null()) return fallback;
    if (!node[key].is_number_integer()) Bad(key, "is not a whole number");
    return node[key].get<int64_t>();
}

std::vector<std::string> TextList(const json& node, const char* key) {
    std::vector<std::string> list;
    if (!node.is_object() || !node.contains(key) || node[key].is_null()) return list;
    if (!node[key].is_array()) Bad(key, "is not a list");
    for (const auto& item : node[key]) {
        if (!item.is_string()) Bad(key, "holds an entry that is not text");
        list.push_back(item.get<std::string>());
    }
    return list;
}

json* FindNamed(json& array, const std::string& name, const char* key) {
    if (!array.is_array()) return nullptr;
    for (auto& item : array) {
        if (item.is_object() && item.contains(key) && item[key].is_string() && item[key] == name)
            return &item;
    }
    return nullptr;
}

const json* FindNamed(const json& array, const std::string& name, const char* key) {
    return FindNamed(const_cast<json&>(array), name, key);
}

json& ArrayAt(json& document, const char* pointer) {
    json& node = document[json::json_pointer(pointer)];
    if (node.is_null()) node = json::array();
    if (!node.is_array())
        throw HostCtlException(std::string("Host configuration ") + pointer + " is not a list");
    return node;
}

json& ObjectAt(json& document, const char* pointer) {
    json& node = document[json::json_pointer(pointer)];
    if (node.is_null()) node = json::object();
    if (!node.is_object())
        throw HostCtlException(std::string("Host configuration ") + pointer + " is not an object");
    return node;
}

const json& At(const json& document, const char* pointer) {
    static const json null;
    const json::json_pointer ptr(pointer);
    return document.contains(ptr) ? document.at(ptr) : null;
}

const json* ManagementNic(const json& document) {
    if (!document.is_object()) return nullptr;
    const json& nics = At(document, Store::Schema::kZenkNics);
    if (!nics.is_array() || nics.empty()) return nullptr;
    for (const auto& nic : nics)
        if (nic.is_object() && nic.value("management", json()) == json(true)) return &nic;
    for (const auto& nic : nics) {
        if (!nic.is_object()) continue;
        const json connection = nic.value("connection", json::object());
        if (connection.is_object() && connection.value("portGroup", json()) == json("Management Network"))
            return &nic;
    }
    return nics[0].is_object() ? &nics[0] : nullptr;
}

json FromIpConfig(const IpConfig& config) {
    json networks = json::array();
    for (const auto& n : config.GetIpv6Network()) {
        networks.push_back({{"address", n.GetStringAddress()},
                            {"prefixLength", n.GetPrefixLength()},
                            {"type", n.GetIpv6AddressType()},
                            {"scope", n.GetIpv6Scope()}});
    }
    const char* mode = config.GetUseDhcp() ? "dhcp" : config.GetIpv4UseNone() ? "none" : "static";
    return {{"ipv4",
             {{"mode", mode},
              {"address", config.GetIpv4Address().GetStringAddress()},
              {"netmask", config.GetIpv4Netmask().GetStringAddress()},
              {"gateway", config.GetIpv4Gateway().GetStringAddress()}}},
            {"dnsFromDhcp", config.GetDnsFromDhcp()},
            {"ipv6",
             {{"dhcp", config.GetUseIpv6Dhcp()},
              {"routerAdvertised", config.GetUseIpv6RouterAdvertised()},
              {"gateway", config.GetIpv6Gateway().IsUnspecified() && config.GetIpv6Gateway().GetZone().empty()
                              ? ""
                              : config.GetIpv6Gateway().GetScopedStringAddress()},
              {"networks", networks}}}};
}

IpConfig ToIpConfig(const json& node) {
    IpConfig config;
    const json& v4 = Object(node, "ipv4");
    const std::string mode = Text(v4, "mode", "static");
    if (mode != "static" && mode != "dhcp" && mode != "none") Bad("mode", "is not static, dhcp or none");
    config.SetUseDhcp(mode == "dhcp", mode == "none");
    config.SetIpv4Address(V4(v4, "address"));
    config.SetIpv4Netmask(V4(v4, "netmask"));
    config.SetIpv4Gateway(V4(v4, "gateway"));
    config.SetDnsFromDhcp(Flag(node, "dnsFromDhcp"));
    const json& v6 = Object(node, "ipv6");
    config.SetUseIpv6Dhcp(Flag(v6, "dhcp"));
    config.SetUseIpv6RouterAdvertised(Flag(v6, "routerAdvertised"));
    config.SetIpv6Gateway(V6(v6, "gateway"));
    if (v6.contains("networks") && !v6["networks"].is_null()) {
        if (!v6["networks"].is_array()) Bad("networks", "is not a list");
        for (const auto& n : v6["networks"]) {
            const int64_t prefix = Integer(n, "prefixLength", 64);
            if (prefix < 0 || prefix > 128) Bad("prefixLength", "is not 0 to 128");
            const std::string address = Text(n, "address");
            if (!Ipv6Address::IsValidAddress(address)) Bad("address", "is not an IPv6 address");
            Ipv6Network network(Ipv6Address(address), static_cast<int>(prefix));
            network.SetIpv6AddressType(static_cast<int>(Integer(n, "type", IPV6_ADDRESS_STATIC)));
            network.SetIpv6Scope(static_cast<int>(Integer(n, "scope", network.GetIpv6Scope())));
            config.AddIpv6Network(network);
        }
    }
    return config;
}

json FromTeaming(const NicTeamingPolicy& policy) {
    return {{"flags", policy.GetFlags()},
            {"uplinkOrder", policy.GetUplinkOrder()},
            {"maxActiveUplinks", policy.GetMaxActiveUplinks()},
            {"loadBalancing", policy.GetLoadBalancing()}};
}

NicTeamingPolicy ToTeaming(const json& node) {
    NicTeamingPolicy policy;
    policy.SetUplinkOrder(TextList(node, "uplinkOrder"));
    const int64_t max = Integer(node, "maxActiveUplinks", 0);
    if (max < 0 || max > UINT32_MAX) Bad("maxActiveUplinks", "is out of range");
    policy.SetMaxActiveUplinks(static_cast<uint32_t>(max));
    const int64_t flags = Integer(node, "flags", 0);
    if (flags < 0 || flags > UINT32_MAX) Bad("flags", "is out of range");
    policy.SetFlags(static_cast<uint32_t>(flags));  // after the setters, which set flags of their own
    policy.SetLoadBalancing(Text(node, "loadBalancing", policy.GetLoadBalancing()));
    return policy;
}

}  // namespace ZenkCtl::Network::Json
