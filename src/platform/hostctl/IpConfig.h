#pragma once

#include <vector>

#include "platform/hostctl/Ipv4Address.h"
#include "platform/hostctl/Ipv6Address.h"
#include "platform/hostctl/Ipv6Network.h"

namespace HostCtl::Network {

// The IP configuration of a kernel network interface: how IPv4 is obtained (DHCP, static or not at
// all) with its static values, whether DNS comes from DHCP, and the IPv6 networks, gateway and
// dynamic modes.
class IpConfig {
  public:
    bool GetUseDhcp() const { return _useDhcp; }
    // useNone only counts without DHCP: IPv4 is then switched off on the interface.
    void SetUseDhcp(bool useDhcp, bool useNone = false) {
        _useDhcp = useDhcp;
        _ipv4UseNone = !useDhcp && useNone;
    }
    bool GetIpv4UseNone() const { return _ipv4UseNone; }
    void SetIpv4UseNone() {
        _useDhcp = false;
        _ipv4UseNone = true;
    }
    bool GetDnsFromDhcp() const { return _dnsFromDhcp; }
    void SetDnsFromDhcp(bool value) { _dnsFromDhcp = value; }

    const Ipv4Address& GetIpv4Address() const { return _address; }
    void SetIpv4Address(const Ipv4Address& address) { _address = address; }
    const Ipv4Address& GetIpv4Netmask() const { return _netmask; }
    void SetIpv4Netmask(const Ipv4Address& netmask) { _netmask = netmask; }
    const Ipv4Address& GetIpv4Gateway() const { return _gateway; }
    void SetIpv4Gateway(const Ipv4Address& gateway) { _gateway = gateway; }

    // By value: callers often ask a temporary configuration for it.
    std::vector<Ipv6Network> GetIpv6Network() const { return _ipv6Networks; }
    // Adding a network that is already there (same address and prefix) replaces it.
    void AddIpv6Network(const Ipv6Network& network);
    // True when the network (same address and prefix) was there.
    bool RemoveIpv6Network(const Ipv6Network& network);
    void ClearIpv6Networks() { _ipv6Networks.clear(); }
    const Ipv6Address& GetIpv6Gateway() const { return _ipv6Gateway; }
    void SetIpv6Gateway(const Ipv6Address& gateway) { _ipv6Gateway = gateway; }
    bool GetUseIpv6Dhcp() const { return _useIpv6Dhcp; }
    void SetUseIpv6Dhcp(bool value) { _useIpv6Dhcp = value; }
    bool GetUseIpv6RouterAdvertised() const { return _useIpv6RouterAdvertised; }
    void SetUseIpv6RouterAdvertised(bool value) { _useIpv6RouterAdvertised = value; }

    bool operator==(const IpConfig& other) const = default;

  private:
    bool _useDhcp = false;
    bool _ipv4UseNone = false;
    bool _dnsFromDhcp = false;
    Ipv4Address _address;
    Ipv4Address _netmask;
    Ipv4Address _gateway;
    std::vector<Ipv6Network> _ipv6Networks;
    Ipv6Address _ipv6Gateway;
    bool _useIpv6Dhcp = false;
    bool _useIpv6RouterAdvertised = false;
};

}  // namespace HostCtl::Network
