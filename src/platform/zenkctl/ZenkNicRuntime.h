#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace ZenkCtl::Network {

// What a kernel interface runs with, worked out from what is configured. Called inside a store update,
// so the configured and the running state change together. The simulated host's boot uses it as well.
//
// - disabled: no addresses at all;
// - IPv4 static: the configured values; DHCP: the interface's lease in "/network/dhcpLeases" (0.0.0.0
//   while there is none); none: 0.0.0.0;
// - IPv6, only while "/network/ipv6Enabled": the link-local address made from the MAC, the static
//   networks, and the lease's "ra" / "dhcp" networks when router advertisement / DHCPv6 is on;
// - a DHCP lease's gateway becomes the default gateway, and with DNS from DHCP the lease's name
//   servers and domain become the host's.
class ZenkNicRuntime {
  public:
    static void Apply(nlohmann::json& document, const std::string& nicName);
    // The EUI-64 link-local address for a MAC ("00:50:56:a1:00:01" -> "fe80::250:56ff:fea1:1"); empty
    // for text that is not a MAC address.
    static std::string LinkLocalFor(const std::string& mac);
    static bool IsValidMac(const std::string& mac);

  private:
    static void ApplyChecked(nlohmann::json& document, const std::string& nicName);
};

}  // namespace ZenkCtl::Network
