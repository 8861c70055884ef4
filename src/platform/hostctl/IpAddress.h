#pragma once

#include <memory>
#include <string>

namespace HostCtl::Network {

// An IPv4 or IPv6 address, used where either may stand (name servers, ping targets).
class IpAddress {
  public:
    virtual ~IpAddress() = default;
    virtual bool IsIpv6() const = 0;
    virtual bool IsUnspecified() const = 0;  // 0.0.0.0 or ::
    virtual std::string GetStringAddress() const = 0;
    virtual std::unique_ptr<IpAddress> Clone() const = 0;

    // An Ipv6Address when the text is a valid IPv6 address, an Ipv4Address when it is a valid IPv4
    // address, nullptr otherwise.
    static std::unique_ptr<IpAddress> Parse(const std::string& text);
};

}  // namespace HostCtl::Network
