#include "HostNetwork.h"

#include <arpa/inet.h>

#include <set>

#include "host/SimulationSchema.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"

namespace KovoSim {

namespace Schema = ZenkCtl::Store::Schema;
using nlohmann::json;

std::string HostNetwork::Text(const json& node, const char* pointer) {
    const json::json_pointer where(pointer);
    if (!node.is_object() || !node.contains(where)) return {};
    const json& value = node.at(where);
    return value.is_string() ? value.get<std::string>() : std::string();
}

std::vector<std::string> HostNetwork::Texts(const json& node, const char* pointer) {
    std::vector<std::string> texts;
    const json::json_pointer where(pointer);
    if (!node.is_object() || !node.contains(where) || !node.at(where).is_array()) return texts;
    for (const auto& value : node.at(where))
        if (value.is_string()) texts.push_back(value.get<std::string>());
    return texts;
}

bool HostNetwork::IsAddress(const std::string& text) {
    unsigned char buffer[16];
    return ::inet_pton(AF_INET, text.c_str(), buffer) == 1 ||
           ::inet_pton(AF_INET6, text.c_str(), buffer) == 1;
}

bool HostNetwork::IsHostAddress(const std::string& text) {
    unsigned char bytes[16] = {};
    const bool v4 = ::inet_pton(AF_INET, text.c_str(), bytes) == 1;
    if (!v4 && ::inet_pton(AF_INET6, text.c_str(), bytes) != 1) return false;
    for (int i = 0; i < (v4 ? 4 : 16); ++i)
        if (bytes[i] != 0) return true;
    return false;  // unspecified
}

bool HostNetwork::IsIpv6(const std::string& text) {
    unsigned char buffer[16];
    return ::inet_pton(AF_INET6, text.c_str(), buffer) == 1;
}

bool HostNetwork::IsLoopback(const std::string& address) {
    unsigned char v4[4];
    if (::inet_pton(AF_INET, address.c_str(), v4) == 1) return v4[0] == 127;
    unsigned char v6[16];
    if (::inet_pton(AF_INET6, address.c_str(), v6) != 1) return false;
    for (int i = 0; i < 15; ++i)
        if (v6[i] != 0) return false;
    return v6[15] == 1;
}

std::string HostNetwork::ManagementIpv4(const json& store) {
    const json* nic = ZenkCtl::Network::Json::ManagementNic(store);
    if (!nic) return {};
    std::string address;
    if (nic->contains("running")) {
        address = Text(*nic, "/running/ipv4/address");
    } else {
        // A store made by hand may not carry the running state yet: a static address is what will run.
        const std::string mode = Text(*nic, "/ipConfig/ipv4/mode");
        if (mode.empty() || mode == "static") address = Text(*nic, "/ipConfig/ipv4/address");
    }
    return address != "0.0.0.0" && !IsIpv6(address) && IsAddress(address) ? address : std::string();
}

std::string HostNetwork::Fqdn(const json& store) {
    const std::string host = Text(store, Schema::kHostname);
    const std::string domain = Text(store, Schema::kDomain);
    return domain.empty() || host.empty() ? host : host + "." + domain;
}

std::vector<std::string> HostNetwork::SilentNameServers(const json& store) {
    std::vector<std::string> silent;
    std::set<std::string> seen;
    for (const auto& text : Texts(store, Simulation::kSilentNameServers))
        if (!text.empty() && seen.insert(text).second) silent.push_back(text);
    return silent;
}

std::vector<std::string> HostNetwork::AnsweringAddresses(const json& store, const json& scenario) {
    std::vector<std::string> candidates = {Text(store, Schema::kIpv4DefaultGateway),
                                           Text(store, Schema::kIpv6DefaultGateway), ManagementIpv4(store)};
    for (const auto& list : {Texts(store, Schema::kNameServers), Texts(store, Schema::kIpv6NameServers),
                             Texts(scenario, Simulation::kAnswering), SilentNameServers(store)})
        candidates.insert(candidates.end(), list.begin(), list.end());
    std::vector<std::string> addresses;
    std::set<std::string> seen;
    for (const auto& address : candidates)
        if (IsHostAddress(address) && seen.insert(address).second) addresses.push_back(address);
    return addresses;
}

std::vector<std::string> HostNetwork::NameServerAddresses(const json& store, const json& scenario) {
    std::set<std::string> servers;
    for (const auto& list : {Texts(store, Schema::kNameServers), Texts(store, Schema::kIpv6NameServers)})
        servers.insert(list.begin(), list.end());
    // A silent one's port is the follower's: the name server must not take it.
    for (const auto& address : SilentNameServers(store)) servers.erase(address);
    std::vector<std::string> listen;
    for (const auto& address : AnsweringAddresses(store, scenario))
        if (servers.count(address)) listen.push_back(address);
    return listen;
}

std::vector<std::pair<std::string, std::string>> HostNetwork::DnsNames(const json& store,
                                                                       const json& scenario) {
    std::vector<std::pair<std::string, std::string>> names;
    const std::string fqdn = Fqdn(store);
    const std::string address = ManagementIpv4(store);
    if (!fqdn.empty() && !address.empty()) names.emplace_back(fqdn, address);
    const json::json_pointer where(Simulation::kNames);
    if (scenario.is_object() && scenario.contains(where) && scenario.at(where).is_object()) {
        for (const auto& [name, value] : scenario.at(where).items()) {
            if (value.is_string() && IsAddress(value.get<std::string>()))
                names.emplace_back(name, value.get<std::string>());
            if (!value.is_array()) continue;
            for (const auto& one : value)
                if (one.is_string() && IsAddress(one.get<std::string>()))
                    names.emplace_back(name, one.get<std::string>());
        }
    }
    return names;
}

}  // namespace KovoSim
