#pragma once

#include <string>

#include "platform/hostctl/Ipv6Address.h"

namespace HostCtl::Network {

// How an IPv6 address came to the interface.
enum Ipv6AddressType : int {
    IPV6_ADDRESS_STATIC = 0,
    IPV6_ADDRESS_OTHER = 1,     // made by the kernel, e.g. the link-local address
    IPV6_ADDRESS_AUTOCONF = 7,  // router advertisement (SLAAC)
    IPV6_ADDRESS_DHCP = 9,
};

// Reach of an IPv6 address.
enum Ipv6Scope : int {
    IPV6_SCOPE_UNKNOWN = 0,
    IPV6_SCOPE_LINK = 1,
    IPV6_SCOPE_SITE = 2,
    IPV6_SCOPE_GLOBAL = 3,
};

// An IPv6 address with its prefix length, address type and scope.
class Ipv6Network {
  public:
    Ipv6Network() = default;
    // Text "address/prefix"; throws HostCtl::Lib::HostCtlException when IsValidAddressAndNetmask fails.
    explicit Ipv6Network(const std::string& text);
    Ipv6Network(const Ipv6Address& address, int prefixLength);

    // True for "address/prefix" with an address inet_pton takes (no zone) and a decimal prefix 1 to 128.
    static bool IsValidAddressAndNetmask(const std::string& text);
    // The scope an address has by its own bits.
    static Ipv6Scope ScopeOf(const Ipv6Address& address);

    const Ipv6Address& GetAddress() const { return _address; }
    int GetPrefixLength() const { return _prefixLength; }
    int GetIpv6AddressType() const { return _type; }
    void SetIpv6AddressType(int type) { _type = type; }
    int GetIpv6Scope() const { return _scope; }
    void SetIpv6Scope(int scope) { _scope = scope; }

    std::string GetStringAddress() const { return _address.GetStringAddress(); }
    std::string GetStringNetwork() const;  // "address/prefix"

    bool operator==(const Ipv6Network& other) const {
        return _address == other._address && _prefixLength == other._prefixLength && _type == other._type &&
               _scope == other._scope;
    }
    bool operator!=(const Ipv6Network& other) const { return !(*this == other); }
    // Same address and prefix, whatever type and scope.
    bool SameNetwork(const Ipv6Network& other) const {
        return _address == other._address && _prefixLength == other._prefixLength;
    }

  private:
    Ipv6Address _address;
    int _prefixLength = 64;
    int _type = IPV6_ADDRESS_STATIC;
    int _scope = IPV6_SCOPE_GLOBAL;
};

}  // namespace HostCtl::Network
