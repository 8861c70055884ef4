#pragma once

#include <map>
#include <string>
#include <vector>

#include "network/PendingNetwork.h"

namespace Kovo {

class HostAccess;
class StringFactory;

// The network window's detail pane: each setting's pending values, then what the setting is for. Settings
// the host obtains by itself (DHCP, router advertisement) show what it obtained at entry.
class NetworkDetails {
  public:
    NetworkDetails(const PendingNetwork& pending, const StringFactory& strings);

    // What the host runs at entry; HostCtl::Lib::HostCtlException as the host throws it.
    void ReadAtEntry();
    // The adapters' labels; a failure is logged and leaves them out.
    void ReadLabels(HostAccess& host);

    std::string Adapters() const;
    std::string Vlan() const;
    std::string Ipv4() const;
    std::string Ipv6() const;
    std::string Dns() const;
    std::string Suffixes() const;
    // The IPv6 gateway pending: the one typed in the IPv6 dialog, else the host's at entry.
    HostCtl::Network::Ipv6Address Ipv6Gateway() const;

  private:
    std::string String(unsigned id) const;
    // A label in white and its value in light grey ("Not set" when empty), on one line.
    std::string Line(unsigned labelId, const std::string& value) const;
    std::string Ipv4Lines() const;
    std::string Ipv6Lines() const;
    // The IPv6 addresses the interface will have: the static ones pending, with what the host obtained by
    // itself at entry in the ways still chosen.
    std::vector<HostCtl::Network::Ipv6Network> Ipv6Networks() const;

    const PendingNetwork& _pending;
    const StringFactory& _strings;
    HostCtl::Network::IpConfig _runningAtEntry;
    HostCtl::Network::IpConfig _configuredAtEntry;
    HostCtl::Network::Ipv6Address _ipv6GatewayAtEntry;
    std::map<std::string, std::string> _adapterLabels;
};

}  // namespace Kovo
