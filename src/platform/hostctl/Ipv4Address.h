#pragma once

#include <cstdint>
#include <string>

#include "platform/hostctl/IpAddress.h"

namespace HostCtl::Network {

// An IPv4 address or netmask. Text is accepted only in the strict dotted-quad form inet_pton takes
// ("a.b.c.d", each part 0-255, no leading zeros, no shorthand forms).
class Ipv4Address : public IpAddress {
  public:
    Ipv4Address() = default;  // 0.0.0.0
    // Throws HostCtl::Lib::HostCtlException for text that is not a valid address.
    explicit Ipv4Address(const std::string& text);
    static Ipv4Address FromHostOrder(uint32_t value);

    static bool IsValidAddress(const std::string& text);

    // A netmask is a run of one bits from the top followed only by zero bits, prefix 1 to 32.
    bool IsValidNetmask() const;
    // The prefix length of a valid netmask, -1 otherwise.
    int GetPrefixLength() const;
    static Ipv4Address FromPrefixLength(int prefixLength);

    uint32_t GetHostOrder() const { return _value; }
    bool IsIpv6() const override { return false; }
    bool IsUnspecified() const override { return _value == 0; }
    std::string GetStringAddress() const override;
    std::unique_ptr<IpAddress> Clone() const override { return std::make_unique<Ipv4Address>(*this); }

    bool operator==(const Ipv4Address& other) const { return _value == other._value; }
    bool operator!=(const Ipv4Address& other) const { return _value != other._value; }

  private:
    uint32_t _value = 0;  // host byte order
};

}  // namespace HostCtl::Network
