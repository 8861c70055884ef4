#include "network/PendingNetwork.h"

#include <algorithm>

#include "frames/HostAccess.h"
#include "frames/Log.h"
#include "network/ManagementSwitch.h"

namespace Kovo {

using HostCtl::Network::IpAddress;

std::vector<std::string> DistinctNameServers(HostCtl::Network::DnsConfig& dns) {
    std::vector<std::string> servers;
    auto add = [&servers](const std::vector<std::string>& list) {
        for (const std::string& server : list)
            if (std::find(servers.begin(), servers.end(), server) == servers.end()) servers.push_back(server);
    };
    add(dns.GetNameServers());
    add(dns.GetIpv6NameServers());
    return servers;
}

std::string SuffixText(const std::vector<std::string>& searchDomains, const std::string& domain) {
    std::string text;
    for (const std::string& name : searchDomains) {
        if (name == domain) continue;
        if (!text.empty()) text += " ";
        text += name;
    }
    return text;
}

std::string PendingHostname(const std::string& hostname, const std::string& domain) {
    return domain.empty() || hostname.empty() ? hostname : hostname + "." + domain;
}

PendingNetwork PendingNetwork::Read(HostAccess& host) {
    PendingNetwork pending;
    pending.networkInfo = host.Network();
    pending.routing = host.Routing();
    pending.dns = host.Dns();
    pending.ipv6Enabled = pending.ipv6EnabledAtEntry = pending.networkInfo->IsZenkIpv6Enabled();
    try {
        pending.networkInfo->UpdateManagementInterface();
        pending.managementInterface = pending.networkInfo->GetManagementInterface();
    } catch (const std::exception& e) {
        // A host that cannot say which interface manages it has, for the window, none.
        LogError(e.what());
    }
    if (!pending.managementInterface) return pending;

    pending.applied = pending.modes = pending.managementInterface->GetConfiguredIpConfig();

    HostCtl::Network::DnsConfig& dns = *pending.dns;
    const std::string domain = dns.GetDomain();
    pending.hostname = PendingHostname(dns.GetHostname(), domain);
    const std::vector<std::string> servers = DistinctNameServers(dns);
    if (!servers.empty()) pending.primaryDns = IpAddress::Parse(servers[0]);
    if (servers.size() > 1) pending.alternateDns = IpAddress::Parse(servers[1]);
    pending.suffixes = SuffixText(dns.GetSearchDomains(), domain);

    ManagementSwitch managementSwitch(host, *pending.managementInterface);
    pending.adaptersKnown = managementSwitch.Uplinks(pending.adapters);
    int vlan = 0;
    pending.vlanKnown = managementSwitch.Vlan(vlan);
    pending.vlan = static_cast<int16_t>(vlan);
    return pending;
}

}  // namespace Kovo
