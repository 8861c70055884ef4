#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "platform/hostctl/IpAddress.h"

namespace HostCtl::Network {

// An IPv6 address with an optional zone ("fe80::1%zk0"). The address part follows inet_pton; a zone is
// an interface name: 1 to 15 letters, digits, '.', '-' or '_'.
class Ipv6Address : public IpAddress {
  public:
    Ipv6Address() = default;  // ::
    // Throws HostCtl::Lib::HostCtlException for text that is not a valid address.
    explicit Ipv6Address(const std::string& text);
    explicit Ipv6Address(const std::array<uint8_t, 16>& bytes, std::string zone = {});

    static bool IsValidAddress(const std::string& text);

    const std::array<uint8_t, 16>& GetBytes() const { return _bytes; }
    const std::string& GetZone() const { return _zone; }
    void SetZone(const std::string& zone);

    bool IsLinkLocalUnicast() const;  // fe80::/10
    bool IsIpv6() const override { return true; }
    bool IsUnspecified() const override;
    // The canonical (RFC 5952) text of the address, without the zone.
    std::string GetStringAddress() const override;
    // The canonical text followed by "%" and the zone when there is one.
    std::string GetScopedStringAddress() const;
    std::unique_ptr<IpAddress> Clone() const override { return std::make_unique<Ipv6Address>(*this); }

    bool operator==(const Ipv6Address& other) const { return _bytes == other._bytes && _zone == other._zone; }
    bool operator!=(const Ipv6Address& other) const { return !(*this == other); }

  private:
    std::array<uint8_t, 16> _bytes{};
    std::string _zone;
};

}  // namespace HostCtl::Network
