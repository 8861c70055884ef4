#include "platform/hostctl/Ipv6Network.h"

#include "platform/hostctl/HostCtlException.h"

namespace HostCtl::Network {
namespace {

bool Split(const std::string& text, std::string& address, int& prefix) {
    const auto slash = text.find('/');
    if (slash == std::string::npos || text.find('/', slash + 1) != std::string::npos) return false;
    address = text.substr(0, slash);
    const std::string digits = text.substr(slash + 1);
    if (digits.empty() || digits.size() > 3) return false;
    prefix = 0;
    for (char c : digits) {
        if (c < '0' || c > '9') return false;
        prefix = prefix * 10 + (c - '0');
    }
    // A static address needs a network around it; a zone has no place in a network.
    return prefix >= 1 && prefix <= 128 && address.find('%') == std::string::npos &&
           Ipv6Address::IsValidAddress(address);
}

}  // namespace

Ipv6Network::Ipv6Network(const std::string& text) {
    std::string address;
    if (!Split(text, address, _prefixLength)) {
        throw Lib::HostCtlException("Invalid IPv6 network address: " + text);
    }
    _address = Ipv6Address(address);
    _scope = ScopeOf(_address);
}

Ipv6Network::Ipv6Network(const Ipv6Address& address, int prefixLength)
    : _address(address), _prefixLength(prefixLength), _scope(ScopeOf(address)) {
    if (prefixLength < 0 || prefixLength > 128) {
        throw Lib::HostCtlException("Invalid IPv6 prefix length: " + std::to_string(prefixLength));
    }
}

bool Ipv6Network::IsValidAddressAndNetmask(const std::string& text) {
    std::string address;
    int prefix = 0;
    return Split(text, address, prefix);
}

Ipv6Scope Ipv6Network::ScopeOf(const Ipv6Address& address) {
    const auto& b = address.GetBytes();
    if (address.IsLinkLocalUnicast()) return IPV6_SCOPE_LINK;
    if (b[0] == 0xfe && (b[1] & 0xc0) == 0xc0) return IPV6_SCOPE_SITE;
    if (b[0] == 0xff) {
        switch (b[1] & 0x0f) {
            case 0x2:
                return IPV6_SCOPE_LINK;
            case 0x5:
                return IPV6_SCOPE_SITE;
            case 0xe:
                return IPV6_SCOPE_GLOBAL;
            default:
                return IPV6_SCOPE_UNKNOWN;
        }
    }
    if (address.IsUnspecified()) return IPV6_SCOPE_UNKNOWN;
    return IPV6_SCOPE_GLOBAL;
}

std::string Ipv6Network::GetStringNetwork() const {
    return _address.GetStringAddress() + "/" + std::to_string(_prefixLength);
}

}  // namespace HostCtl::Network
