#include "platform/linux/RunningAddresses.h"

#include <linux/if_addr.h>
#include <sys/socket.h>

#include <algorithm>
#include <climits>

namespace LinuxHost {

namespace {

using namespace HostCtl::Network;

bool IsGlobal(const KernelAddress& a) {
    if (a.family == AF_INET) return a.address.rfind("127.", 0) != 0 && a.address.rfind("169.254.", 0) != 0;
    return Ipv6Network::ScopeOf(Ipv6Address(a.address)) == IPV6_SCOPE_GLOBAL && a.address != "::1";
}

// The default route of `family` with the lowest metric, on `interface` when one is named.
const KernelRoute* BestRoute(const std::vector<KernelRoute>& routes, int family,
                             const std::string& interface = "") {
    const KernelRoute* best = nullptr;
    for (const KernelRoute& r : routes) {
        if (r.family != family || (!interface.empty() && r.interface != interface)) continue;
        if (!best || r.metric < best->metric) best = &r;
    }
    return best;
}

std::string Netmask(int prefixLength) {
    const uint32_t bits = prefixLength <= 0    ? 0
                          : prefixLength >= 32 ? UINT32_MAX
                                               : ~(UINT32_MAX >> prefixLength);
    return std::to_string(bits >> 24) + "." + std::to_string((bits >> 16) & 255) + "." +
           std::to_string((bits >> 8) & 255) + "." + std::to_string(bits & 255);
}

}  // namespace

std::string ChooseManagementInterface(const std::vector<std::string>& interfaces,
                                      const std::vector<std::string>& reachable,
                                      const std::vector<KernelAddress>& addresses,
                                      const std::vector<KernelRoute>& routes) {
    for (int family : {AF_INET, AF_INET6}) {
        const KernelRoute* route = BestRoute(routes, family);
        if (route && std::find(interfaces.begin(), interfaces.end(), route->interface) != interfaces.end())
            return route->interface;
    }
    for (const std::string& name : reachable)
        for (const KernelAddress& a : addresses)
            if (a.interface == name && IsGlobal(a)) return name;
    return {};
}

IpConfig RunningIpConfig(const std::string& interface, const std::vector<KernelAddress>& addresses,
                         const std::vector<KernelRoute>& routes) {
    IpConfig config;
    config.SetIpv4UseNone();
    for (const KernelAddress& a : addresses) {
        if (a.interface != interface || a.family != AF_INET || !IsGlobal(a)) continue;
        // The first is the primary address; the others are secondary ones the console does not show.
        config.SetUseDhcp(!a.Forever());
        config.SetIpv4Address(Ipv4Address(a.address));
        config.SetIpv4Netmask(Ipv4Address(Netmask(a.prefixLength)));
        break;
    }
    if (const KernelRoute* route = BestRoute(routes, AF_INET, interface); route && !route->gateway.empty())
        config.SetIpv4Gateway(Ipv4Address(route->gateway));

    bool leased = false, advertised = false;
    for (const KernelAddress& a : addresses) {
        if (a.interface != interface || a.family != AF_INET6 || a.address == "::1") continue;
        Ipv6Network network(Ipv6Address(a.address), a.prefixLength);
        const int scope = Ipv6Network::ScopeOf(network.GetAddress());
        network.SetIpv6Scope(scope);
        if (scope == IPV6_SCOPE_LINK) {
            network.SetIpv6AddressType(IPV6_ADDRESS_OTHER);
        } else if (a.Forever()) {
            network.SetIpv6AddressType(IPV6_ADDRESS_STATIC);
        } else if (a.prefixLength == 128) {
            network.SetIpv6AddressType(IPV6_ADDRESS_DHCP);
            leased = true;
        } else {
            network.SetIpv6AddressType(IPV6_ADDRESS_AUTOCONF);
            advertised = true;
        }
        // Privacy addresses change by the hour; the host is reached at its stable one.
        if (a.flags & IFA_F_TEMPORARY) continue;
        config.AddIpv6Network(network);
    }
    config.SetUseIpv6Dhcp(leased);
    config.SetUseIpv6RouterAdvertised(advertised);
    if (const KernelRoute* route = BestRoute(routes, AF_INET6, interface); route && !route->gateway.empty())
        config.SetIpv6Gateway(Ipv6Address(route->gateway));
    return config;
}

}  // namespace LinuxHost
