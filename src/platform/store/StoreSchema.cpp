#include "platform/store/StoreSchema.h"

#include <string_view>
#include <utility>

namespace ZenkCtl::Store::Schema {
namespace {

constexpr unsigned kFlag = kBool;
constexpr unsigned kCount = kInteger;

// An IP configuration, as configured ("ipConfig") and as it runs ("running").
void AddIpConfig(std::vector<Node>& table, const std::string& at) {
    const std::vector<Node> below = {
        {"", kObject},
        {"/ipv4", kObject},
        {"/ipv4/mode", kText, "\"static\""},
        {"/ipv4/address", kText, "\"0.0.0.0\""},
        {"/ipv4/netmask", kText, "\"0.0.0.0\""},
        {"/ipv4/gateway", kText, "\"0.0.0.0\""},
        {"/dnsFromDhcp", kFlag},
        {"/ipv6", kObject},
        {"/ipv6/dhcp", kFlag},
        {"/ipv6/routerAdvertised", kFlag},
        {"/ipv6/gateway", kText},
        {"/ipv6/networks", kList},
        {"/ipv6/networks/*", kObject},
        {"/ipv6/networks/*/address", kText},
        {"/ipv6/networks/*/prefixLength", kCount, "64"},
        {"/ipv6/networks/*/type", kCount},
        {"/ipv6/networks/*/scope", kCount},
    };
    for (Node node : below) {
        node.pattern = at + node.pattern;
        table.push_back(std::move(node));
    }
}

std::vector<Node> MakeTable() {
    std::vector<Node> table = {
        {"", kObject},
        // System identity and state.
        {kSystem, kObject},
        {kVersion, kObject},
        {"/system/version/productName", kText, "\"KOVO Host\""},
        {"/system/version/productVersion", kText, "\"1.0.0\""},
        {"/system/version/productLine", kText, "\"embedded\""},
        {"/system/version/kernelRelease", kText, "\"1.0.0\""},
        {"/system/version/buildNumber", kCount, "24680"},
        {"/system/version/compilationOption", kText, "\"release\""},
        {"/system/version/releaseDate", kText, "\"2024-05-02\""},
        {kBootOptions, kObject},
        {kAuditMode, kFlag},
        {"/system/bootOptions/pxeBoot", kFlag},
        {kPreferences, kObject, nullptr, true},
        {kKeyboard, kObject},
        {"/system/keyboard/layout", kText},
        {"/system/keyboard/layouts", kList},
        {"/system/keyboard/layouts/*", kText},
        {"/system/keyboard/mappingsLoaded", kFlag | kText},
        {kAlerts, kList},
        {"/system/alerts/*", kObject},
        {"/system/alerts/*/message", kText},
        {"/system/alerts/*/time", kCount},
        // Hardware.
        {kHardware, kObject},
        {"/hardware/vendor", kText},
        {"/hardware/product", kText},
        {"/hardware/serialNumber", kText},
        {"/hardware/serviceTag", kText},
        {"/hardware/assetTag", kText},
        {"/hardware/bmcVersion", kText},
        {"/hardware/bios", kObject},
        {"/hardware/bios/version", kText},
        {"/hardware/bios/majorRelease", kCount},
        {"/hardware/bios/minorRelease", kCount},
        {"/hardware/bios/releaseDate", kText},
        {"/hardware/identification", kList},
        {"/hardware/identification/*", kText},
        {kCpu, kObject},
        {"/hardware/cpu/packages", kCount},
        {"/hardware/cpu/cores", kCount},
        {"/hardware/cpu/threads", kCount},
        {"/hardware/cpu/model", kText},
        {kMemory, kObject},
        {"/hardware/memory/totalPages", kCount},
        {"/hardware/memory/pageSize", kCount, "4096"},
        {"/hardware/storage", kObject},
        {kStorageAdapters, kList},
        {"/hardware/storage/adapters/*", kObject},
        {"/hardware/storage/adapters/*/name", kText},
        {"/hardware/storage/adapters/*/driver", kText},
        {"/hardware/storage/adapters/*/version", kText},
        {"/hardware/smartCards", kObject},
        {kSmartCardSlots, kList},
        {"/hardware/smartCards/slots/*", kObject},
        {"/hardware/smartCards/slots/*/id", kCount},
        {"/hardware/smartCards/slots/*/description", kText},
        {"/hardware/smartCards/slots/*/token", kNull | kObject, "null"},
        {"/hardware/smartCards/slots/*/token/label", kText},
        {"/hardware/smartCards/slots/*/token/serialNumber", kText},
        {"/hardware/smartCards/slots/*/token/userIds", kList},
        {"/hardware/smartCards/slots/*/token/userIds/*", kText},
        // Network.
        {kNetwork, kObject},
        {kIpv6Enabled, kFlag, "true"},
        {kNetDumper, kObject},
        {"/network/netDumper/enabled", kFlag},
        {kPnics, kList},
        {"/network/pnics/*", kObject},
        {"/network/pnics/*/name", kText},
        {"/network/pnics/*/label", kText},
        {"/network/pnics/*/mac", kText},
        {"/network/pnics/*/linkUp", kFlag},
        {"/network/pnics/*/speedMbps", kCount},
        {"/network/pnics/*/driver", kText},
        {kSwitches, kList},
        {"/network/switches/*", kObject},
        {"/network/switches/*/name", kText},
        {"/network/switches/*/numPorts", kCount},
        {"/network/switches/*/mtu", kCount, "1500"},
        {"/network/switches/*/uplinks", kList},
        {"/network/switches/*/uplinks/*", kText},
        {"/network/switches/*/teaming", kObject},
        {"/network/switches/*/teaming/flags", kCount},
        {"/network/switches/*/teaming/uplinkOrder", kList},
        {"/network/switches/*/teaming/uplinkOrder/*", kText},
        {"/network/switches/*/teaming/maxActiveUplinks", kCount},
        {"/network/switches/*/teaming/loadBalancing", kText},
        {"/network/switches/*/portGroups", kList},
        {"/network/switches/*/portGroups/*", kObject},
        {"/network/switches/*/portGroups/*/name", kText},
        {"/network/switches/*/portGroups/*/vlanId", kCount},
        {kDvs, kList},
        {"/network/dvs/*", kObject},
        {"/network/dvs/*/name", kText},
        {"/network/dvs/*/vendor", kText, "\"Halvor\""},
        {"/network/dvs/*/uplinks", kList},
        {"/network/dvs/*/uplinks/*", kText},
        {"/network/dvs/*/ports", kList},
        {"/network/dvs/*/ports/*", kObject},
        {"/network/dvs/*/ports/*/key", kText},
        {"/network/dvs/*/ports/*/portGroup", kText},
        {"/network/dvs/*/ports/*/vlanId", kCount},
        {"/network/dvs/*/ports/*/name", kText},
        {"/network/dvs/*/ports/*/blocked", kFlag},
        {"/network/dvs/*/ports/*/hostLocal", kFlag},
        {"/network/dvs/*/ports/*/uplinks", kList},
        {"/network/dvs/*/ports/*/uplinks/*", kText},
        {kOpaqueNetworks, kList},
        {"/network/opaqueNetworks/*", kObject},
        {"/network/opaqueNetworks/*/id", kText},
        {"/network/opaqueNetworks/*/name", kText},
        {"/network/opaqueNetworks/*/type", kText},
        {kZenkNics, kList},
        {"/network/zenkNics/*", kObject},
        {"/network/zenkNics/*/name", kText},
        {"/network/zenkNics/*/mac", kText},
        {"/network/zenkNics/*/mtu", kCount, "1500"},
        {"/network/zenkNics/*/enabled", kFlag, "true"},
        {"/network/zenkNics/*/management", kFlag},
        {"/network/zenkNics/*/connection", kObject},
        {"/network/zenkNics/*/connection/type", kText},
        {"/network/zenkNics/*/connection/portGroup", kText},
        {"/network/zenkNics/*/connection/dvs", kText},
        {"/network/zenkNics/*/connection/port", kText},
        {"/network/zenkNics/*/connection/networkId", kText},
        {"/network/zenkNics/*/dhcpBound", kFlag},
        {"/network/zenkNics/*/leaseRenewals", kObject},
        {"/network/zenkNics/*/leaseRenewals/ipv4", kCount},
        {"/network/zenkNics/*/leaseRenewals/ipv6", kCount},
        {"/network/zenkNics/*/commits", kCount},
        {kRouting, kObject},
        {kIpv4DefaultGateway, kText},
        {kIpv6DefaultGateway, kText},
        {kDns, kObject},
        {kHostname, kText},
        {kDomain, kText},
        {kNameServers, kList},
        {"/network/dns/nameServers/*", kText},
        {kIpv6NameServers, kList},
        {"/network/dns/ipv6NameServers/*", kText},
        {kSearchDomains, kList},
        {"/network/dns/searchDomains/*", kText},
        {"/network/dns/saved", kCount},
        {kDhcpLeases, kObject},
        {"/network/dhcpLeases/*", kNull | kObject, "null"},
        {"/network/dhcpLeases/*/ipv4", kObject},
        {"/network/dhcpLeases/*/ipv4/address", kText},
        {"/network/dhcpLeases/*/ipv4/netmask", kText},
        {"/network/dhcpLeases/*/ipv4/gateway", kText},
        {"/network/dhcpLeases/*/ipv4/dns", kList},
        {"/network/dhcpLeases/*/ipv4/dns/*", kText},
        {"/network/dhcpLeases/*/ipv4/domain", kText},
        {"/network/dhcpLeases/*/ipv6", kObject},
        {"/network/dhcpLeases/*/ipv6/ra", kList},
        {"/network/dhcpLeases/*/ipv6/ra/*", kObject},
        {"/network/dhcpLeases/*/ipv6/ra/*/address", kText},
        {"/network/dhcpLeases/*/ipv6/ra/*/prefixLength", kCount, "64"},
        {"/network/dhcpLeases/*/ipv6/dhcp", kList},
        {"/network/dhcpLeases/*/ipv6/dhcp/*", kObject},
        {"/network/dhcpLeases/*/ipv6/dhcp/*/address", kText},
        {"/network/dhcpLeases/*/ipv6/dhcp/*/prefixLength", kCount, "64"},
        // Accounts, services, options, workloads, boot.
        {kUsers, kList},
        {"/users/*", kObject},
        {"/users/*/name", kText},
        {"/users/*/passwordHash", kText},
        {"/users/*/expired", kFlag},
        {"/users/*/consoleAccess", kFlag},
        {"/users/*/hclAccess", kFlag, "true"},
        {kServices, kObject},
        {"/services/QorShell", kObject},
        {"/services/QorShell/enabled", kFlag},
        {"/services/QorShell/running", kFlag},
        {"/services/SSH", kObject},
        {"/services/SSH/enabled", kFlag},
        {"/services/SSH/running", kFlag},
        {kLockdown, kObject},
        {kLockdownEnabled, kFlag},
        {kLockdownPossible, kFlag, "true"},
        {"/services/hostAgent", kObject},
        {kHostAgentRunning, kFlag, "true"},
        {kAdvancedOptions, kObject, nullptr, true},
        {"/firewall", kObject},
        {kFirewallRulesets, kList},
        {"/firewall/rulesets/*", kObject},
        {"/firewall/rulesets/*/id", kText},
        {"/firewall/rulesets/*/enabled", kFlag},
        {kVms, kList},
        {"/vms/*", kObject},
        {"/vms/*/name", kText},
        {"/vms/*/powerState", kText, "\"poweredOff\""},
        {kMarkers, kObject},
        {kShowKovoLogin, kFlag},
        {"/boot", kObject},
        {kPendingBoot, kObject},
        {"/boot/pending/ipv6Enabled", kFlag},
        {"/boot/pending/resetConfiguration", kFlag},
    };
    AddIpConfig(table, "/network/zenkNics/*/ipConfig");
    AddIpConfig(table, "/network/zenkNics/*/running");
    return table;
}

std::vector<std::string> Tokens(std::string_view pointer) {
    std::vector<std::string> tokens;
    while (!pointer.empty()) {
        pointer.remove_prefix(1);  // the "/"
        const auto slash = pointer.find('/');
        std::string token(pointer.substr(0, slash));
        // "~1" is "/" and "~0" is "~" inside a token; decoded in that order.
        for (std::size_t at; (at = token.find("~1")) != std::string::npos;) token.replace(at, 2, "/");
        for (std::size_t at; (at = token.find("~0")) != std::string::npos;) token.replace(at, 2, "~");
        tokens.push_back(std::move(token));
        pointer = slash == std::string_view::npos ? std::string_view() : pointer.substr(slash);
    }
    return tokens;
}

std::string Escaped(const std::string& token) {
    std::string out;
    for (char c : token) out += c == '~' ? "~0" : c == '/' ? "~1" : std::string(1, c);
    return out;
}

const Node* Find(const std::vector<Node>& table, const std::vector<std::string>& tokens) {
    for (const Node& node : table) {
        const auto pattern = Tokens(node.pattern);
        if (pattern.size() != tokens.size()) continue;
        bool same = true;
        for (std::size_t i = 0; same && i < tokens.size(); ++i)
            same = pattern[i] == "*" || pattern[i] == tokens[i];
        if (same) return &node;
    }
    return nullptr;
}

// The node's nearest open ancestor, if any: below it everything is accepted.
bool UnderOpenNode(const std::vector<Node>& table, const std::vector<std::string>& tokens) {
    for (std::size_t length = tokens.size(); length-- > 0;) {
        const Node* node = Find(table, {tokens.begin(), tokens.begin() + static_cast<long>(length)});
        if (node && node->open) return true;
    }
    return false;
}

unsigned TypeOf(const nlohmann::json& value) {
    if (value.is_null()) return kNull;
    if (value.is_boolean()) return kBool;
    if (value.is_number_integer() || value.is_number_unsigned()) return kInteger;
    if (value.is_number()) return kNumber;
    if (value.is_string()) return kText;
    if (value.is_array()) return kList;
    return kObject;
}

bool Allows(unsigned types, unsigned type) {
    return (types & type) || (type == kInteger && (types & kNumber));
}

std::string Describe(unsigned types) {
    static const std::pair<unsigned, const char*> names[] = {
        {kNull, "null"}, {kBool, "true or false"}, {kInteger, "a whole number"}, {kNumber, "a number"},
        {kText, "text"}, {kList, "a list"},        {kObject, "an object"}};
    std::string text;
    for (const auto& [bit, name] : names)
        if (types & bit) text += (text.empty() ? "" : " or ") + std::string(name);
    return text;
}

void CheckAt(const std::vector<Node>& table, const nlohmann::json& value, std::vector<std::string>& tokens,
             const std::string& pointer, std::vector<std::string>& faults) {
    const Node* node = Find(table, tokens);
    if (!node) {
        faults.push_back(pointer + ": not a member the host knows");
        return;
    }
    const unsigned type = TypeOf(value);
    if (!Allows(node->types, type)) {
        faults.push_back(pointer + ": is " + Describe(type) + ", must be " + Describe(node->types));
        return;
    }
    if (node->open) return;
    if (value.is_object()) {
        for (const auto& [name, member] : value.items()) {
            tokens.push_back(name);
            CheckAt(table, member, tokens, pointer + "/" + Escaped(name), faults);
            tokens.pop_back();
        }
    } else if (value.is_array()) {
        for (std::size_t i = 0; i < value.size(); ++i) {
            tokens.push_back(std::to_string(i));
            CheckAt(table, value[i], tokens, pointer + "/" + std::to_string(i), faults);
            tokens.pop_back();
        }
    }
}

}  // namespace

const std::vector<Node>& Table() {
    static const std::vector<Node> table = MakeTable();
    return table;
}

std::vector<std::string> Check(const nlohmann::json& value, const std::string& pointer) {
    return Check(Table(), value, pointer);
}

std::vector<std::string> Check(const std::vector<Node>& table, const nlohmann::json& value,
                               const std::string& pointer) {
    std::vector<std::string> faults;
    if (!pointer.empty() && pointer[0] != '/') return {pointer + ": not a JSON pointer"};
    auto tokens = Tokens(pointer);
    if (UnderOpenNode(table, tokens)) return faults;
    CheckAt(table, value, tokens, pointer, faults);
    return faults;
}

}  // namespace ZenkCtl::Store::Schema
