#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/hostctl/DnsConfig.h"
#include "platform/hostctl/IpAddress.h"
#include "platform/hostctl/IpConfig.h"
#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/RoutingInfo.h"
#include "platform/hostctl/ZenkNic.h"

namespace Kovo {

class HostAccess;

// The management network as the network window edits it: the host objects it was read from and every
// value the operator may change. Nothing here reaches the host until the change application writes it.
struct PendingNetwork {
    std::unique_ptr<HostCtl::Network::NetworkInfo> networkInfo;
    std::unique_ptr<HostCtl::Network::RoutingInfo> routing;
    std::unique_ptr<HostCtl::Network::DnsConfig> dns;
    // Null when the host has no management interface.
    std::unique_ptr<HostCtl::Network::ZenkNic> managementInterface;

    // What is finally written to the interface.
    HostCtl::Network::IpConfig applied;
    // The operator's choices: DHCP, DNS from DHCP, DHCPv6, router advertisement.
    HostCtl::Network::IpConfig modes;
    // Uplinks in the order the operator chose them; the first gives the interface its MAC address.
    std::vector<std::string> adapters;
    int16_t vlan = 0;  // 0: none
    // False when the host could not tell its uplinks or VLAN at entry: an empty list or 0 would then
    // say "remove them all", so the application leaves what it does not know alone.
    bool adaptersKnown = false;
    bool vlanKnown = false;
    std::string hostname;  // a plain host name, or a fully qualified name
    std::unique_ptr<HostCtl::Network::IpAddress> primaryDns, alternateDns;
    std::string suffixes;  // as typed: names separated by blanks or commas

    bool ipv6GatewayChanged = false;
    bool ipv6Enabled = false;
    bool ipv6EnabledAtEntry = false;
    bool changed = false;

    // Reads the record from the host. Without a management interface (or when the lookup fails) only
    // the host objects and the IPv6 state are filled in and `managementInterface` stays null. Other
    // platform failures pass to the caller; switch-side failures are logged and leave `adaptersKnown` or
    // `vlanKnown` false.
    static PendingNetwork Read(HostAccess& host);

    bool Ipv6StateChanges() const { return ipv6Enabled != ipv6EnabledAtEntry; }
    // Whether leaving the window has anything to apply.
    bool HasChanges() const { return changed || Ipv6StateChanges(); }
};

// The host's name servers as the window offers them: IPv4 first, then IPv6, each once.
std::vector<std::string> DistinctNameServers(HostCtl::Network::DnsConfig& dns);
// The host's search list as suffix text: the names after the host's own domain, which the change
// application always puts first, so writing the text back gives the same list.
std::string SuffixText(const std::vector<std::string>& searchDomains, const std::string& domain);
// The host name as the DNS dialog shows it: fully qualified when the host has a domain.
std::string PendingHostname(const std::string& hostname, const std::string& domain);

}  // namespace Kovo
