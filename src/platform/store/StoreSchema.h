#pragma once

// JSON pointers into the host configuration store. The platform, the simulated host and its scenarios all
// use these names; docs/STORE.md describes each node.
namespace ZenkCtl::Store::Schema {

// System identity and state.
inline constexpr const char* kSystem = "/system";
inline constexpr const char* kVersion = "/system/version";          // productName, productVersion, ...
inline constexpr const char* kBootOptions = "/system/bootOptions";  // auditMode, pxeBoot
inline constexpr const char* kPreferences = "/system/preferences";
inline constexpr const char* kKeyboard = "/system/keyboard";  // layout, layouts, mappingsLoaded
inline constexpr const char* kAlerts = "/system/alerts";      // [{message, time}]

// Hardware.
inline constexpr const char* kHardware = "/hardware";
inline constexpr const char* kCpu = "/hardware/cpu";
inline constexpr const char* kMemory = "/hardware/memory";
inline constexpr const char* kStorageAdapters = "/hardware/storage/adapters";
inline constexpr const char* kSmartCardSlots = "/hardware/smartCards/slots";

// Network.
inline constexpr const char* kNetwork = "/network";
inline constexpr const char* kIpv6Enabled = "/network/ipv6Enabled";
inline constexpr const char* kNetDumper = "/network/netDumper";
inline constexpr const char* kPnics = "/network/pnics";
inline constexpr const char* kSwitches = "/network/switches";
inline constexpr const char* kDvs = "/network/dvs";
inline constexpr const char* kOpaqueNetworks = "/network/opaqueNetworks";
inline constexpr const char* kZenkNics = "/network/zenkNics";
inline constexpr const char* kRouting = "/network/routing";
inline constexpr const char* kDns = "/network/dns";
inline constexpr const char* kDhcpLeases = "/network/dhcpLeases";  // {"<zenk nic>": lease or null}

// Accounts, services, options, workloads.
inline constexpr const char* kUsers = "/users";
inline constexpr const char* kServices = "/services";
inline constexpr const char* kLockdown = "/services/lockdown";
inline constexpr const char* kAdvancedOptions = "/advancedOptions";
inline constexpr const char* kFirewallRulesets = "/firewall/rulesets";
inline constexpr const char* kVms = "/vms";
inline constexpr const char* kMarkers = "/markers";

// Single values the simulated host reads or switches.
inline constexpr const char* kHostname = "/network/dns/hostname";
inline constexpr const char* kDomain = "/network/dns/domain";
inline constexpr const char* kNameServers = "/network/dns/nameServers";
inline constexpr const char* kIpv6NameServers = "/network/dns/ipv6NameServers";
inline constexpr const char* kSearchDomains = "/network/dns/searchDomains";
inline constexpr const char* kIpv4DefaultGateway = "/network/routing/ipv4DefaultGateway";
inline constexpr const char* kIpv6DefaultGateway = "/network/routing/ipv6DefaultGateway";
inline constexpr const char* kAuditMode = "/system/bootOptions/auditMode";
inline constexpr const char* kShowKovoLogin = "/markers/showKovoLogin";
inline constexpr const char* kLockdownEnabled = "/services/lockdown/enabled";
inline constexpr const char* kLockdownPossible = "/services/lockdown/possible";
inline constexpr const char* kHostAgentRunning = "/services/hostAgent/running";

// Changes that take effect at the next boot.
inline constexpr const char* kPendingBoot = "/boot/pending";

}  // namespace ZenkCtl::Store::Schema

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace ZenkCtl::Store::Schema {

// The JSON types a node may have, as bits.
enum Type : unsigned {
    kNull = 1,
    kBool = 2,
    kInteger = 4,  // numbers written without a fraction, signed or not
    kNumber = 8,   // any number
    kText = 16,
    kList = 32,
    kObject = 64,
};

// One row of the store's schema: a JSON pointer pattern in which "*" stands for any one list index or
// member name, the types the node may have, and what a missing node reads as (JSON text; nullptr: the
// type's empty value). An open node takes any members below it unchecked (option trees, preferences).
struct Node {
    std::string pattern;
    unsigned types;
    const char* fallback = nullptr;
    bool open = false;
};

// Every node of the store, parents before their members.
const std::vector<Node>& Table();

// The faults of `value` placed at `pointer` ("" for the whole document), each as
// "<pointer>: <fault>": a member the schema does not know (a misspelt name) or a value of a type the
// schema does not allow there. Empty when the value fits.
std::vector<std::string> Check(const nlohmann::json& value, const std::string& pointer = "");
// The same against another table (a host whose store carries more than the platform's own members).
std::vector<std::string> Check(const std::vector<Node>& table, const nlohmann::json& value,
                               const std::string& pointer = "");

}  // namespace ZenkCtl::Store::Schema
