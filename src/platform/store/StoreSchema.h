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

// The simulated host's own: platform operations made to fail, {"<operation>": "<text>"}.
inline constexpr const char* kInjectedFaults = "/simulation/faults";

// Changes that take effect at the next boot.
inline constexpr const char* kPendingBoot = "/boot/pending";

}  // namespace ZenkCtl::Store::Schema
