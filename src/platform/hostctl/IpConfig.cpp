#include "platform/hostctl/IpConfig.h"

#include <algorithm>

namespace HostCtl::Network {

void IpConfig::AddIpv6Network(const Ipv6Network& network) {
    auto same = [&](const Ipv6Network& n) { return n.SameNetwork(network); };
    auto it = std::find_if(_ipv6Networks.begin(), _ipv6Networks.end(), same);
    if (it != _ipv6Networks.end()) {
        *it = network;
    } else {
        _ipv6Networks.push_back(network);
    }
}

bool IpConfig::RemoveIpv6Network(const Ipv6Network& network) {
    const auto before = _ipv6Networks.size();
    std::erase_if(_ipv6Networks, [&](const Ipv6Network& n) { return n.SameNetwork(network); });
    return _ipv6Networks.size() != before;
}

}  // namespace HostCtl::Network
