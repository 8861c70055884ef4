#include "platform/hostctl/Ipv6Address.h"

#include <arpa/inet.h>
#include <net/if.h>

#include <cctype>
#include <cstring>

#include "platform/hostctl/HostCtlException.h"

namespace HostCtl::Network {
namespace {

bool ValidZone(const std::string& zone) {
    if (zone.empty() || zone.size() >= IF_NAMESIZE) return false;
    for (unsigned char c : zone) {
        if (!(std::isalnum(c) || c == '.' || c == '-' || c == '_')) return false;
    }
    return true;
}

bool ParseText(const std::string& text, std::array<uint8_t, 16>& bytes, std::string& zone) {
    if (text.empty() || text.size() > INET6_ADDRSTRLEN + IF_NAMESIZE ||
        text.find('\0') != std::string::npos) {
        return false;
    }
    const auto percent = text.find('%');
    const std::string address = text.substr(0, percent);
    zone = percent == std::string::npos ? std::string() : text.substr(percent + 1);
    if (percent != std::string::npos && !ValidZone(zone)) return false;
    in6_addr parsed{};
    if (inet_pton(AF_INET6, address.c_str(), &parsed) != 1) return false;
    std::memcpy(bytes.data(), parsed.s6_addr, 16);
    return true;
}

}  // namespace

Ipv6Address::Ipv6Address(const std::string& text) {
    if (!ParseText(text, _bytes, _zone)) throw Lib::HostCtlException("Invalid IPv6 address: " + text);
}

Ipv6Address::Ipv6Address(const std::array<uint8_t, 16>& bytes, std::string zone) : _bytes(bytes) {
    SetZone(zone);
}

void Ipv6Address::SetZone(const std::string& zone) {
    if (!zone.empty() && !ValidZone(zone)) throw Lib::HostCtlException("Invalid IPv6 zone: " + zone);
    _zone = zone;
}

bool Ipv6Address::IsValidAddress(const std::string& text) {
    std::array<uint8_t, 16> bytes{};
    std::string zone;
    return ParseText(text, bytes, zone);
}

bool Ipv6Address::IsLinkLocalUnicast() const {
    return _bytes[0] == 0xfe && (_bytes[1] & 0xc0) == 0x80;
}

bool Ipv6Address::IsUnspecified() const {
    for (uint8_t b : _bytes) {
        if (b != 0) return false;
    }
    return true;
}

std::string Ipv6Address::GetStringAddress() const {
    in6_addr address{};
    std::memcpy(address.s6_addr, _bytes.data(), 16);
    char text[INET6_ADDRSTRLEN];
    inet_ntop(AF_INET6, &address, text, sizeof text);
    return text;
}

std::string Ipv6Address::GetScopedStringAddress() const {
    return _zone.empty() ? GetStringAddress() : GetStringAddress() + "%" + _zone;
}

}  // namespace HostCtl::Network
