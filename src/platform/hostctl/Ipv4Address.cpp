#include "platform/hostctl/Ipv4Address.h"

#include <arpa/inet.h>

#include "platform/hostctl/HostCtlException.h"

namespace HostCtl::Network {
namespace {

bool ParseText(const std::string& text, uint32_t& value) {
    // inet_pton reads a C string: an embedded NUL would hide trailing garbage from it.
    if (text.empty() || text.size() > 15 || text.find('\0') != std::string::npos) return false;
    in_addr address{};
    if (inet_pton(AF_INET, text.c_str(), &address) != 1) return false;
    value = ntohl(address.s_addr);
    return true;
}

}  // namespace

Ipv4Address::Ipv4Address(const std::string& text) {
    if (!ParseText(text, _value)) throw Lib::HostCtlException("Invalid IPv4 address: " + text);
}

Ipv4Address Ipv4Address::FromHostOrder(uint32_t value) {
    Ipv4Address address;
    address._value = value;
    return address;
}

bool Ipv4Address::IsValidAddress(const std::string& text) {
    uint32_t ignored = 0;
    return ParseText(text, ignored);
}

int Ipv4Address::GetPrefixLength() const {
    if (_value == 0) return -1;
    const uint32_t inverted = ~_value;
    // Contiguous ones from the top means the inverted mask is 2^k - 1.
    if ((inverted & (inverted + 1)) != 0) return -1;
    int length = 0;
    for (uint32_t v = _value; v != 0; v <<= 1) ++length;
    return length;
}

bool Ipv4Address::IsValidNetmask() const {
    return GetPrefixLength() > 0;
}

Ipv4Address Ipv4Address::FromPrefixLength(int prefixLength) {
    if (prefixLength <= 0) return Ipv4Address();
    if (prefixLength >= 32) return FromHostOrder(0xffffffffu);
    return FromHostOrder(~((1u << (32 - prefixLength)) - 1));
}

std::string Ipv4Address::GetStringAddress() const {
    in_addr address{};
    address.s_addr = htonl(_value);
    char text[INET_ADDRSTRLEN];
    inet_ntop(AF_INET, &address, text, sizeof text);
    return text;
}

}  // namespace HostCtl::Network
