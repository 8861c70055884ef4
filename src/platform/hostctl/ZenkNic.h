#pragma once

#include <string>

#include "platform/hostctl/ConnectionPoint.h"
#include "platform/hostctl/IpConfig.h"
#include "platform/hostctl/Pnic.h"

namespace HostCtl::Network {

// A kernel network interface of the host (the management interface is one). Every operation throws
// HostCtl::Lib::HostCtlException on failure; changes are on the host when the call returns.
class ZenkNic {
  public:
    virtual ~ZenkNic() = default;

    virtual std::string GetName() const = 0;
    // False when the interface no longer exists on the host.
    virtual bool IsValid() = 0;

    // The configuration as it runs now (addresses from DHCP and router advertisements included).
    virtual IpConfig GetIpConfig() = 0;
    // The configuration as set by the operator.
    virtual IpConfig GetConfiguredIpConfig() = 0;
    // Sets the configuration and applies it to the running interface.
    virtual void SetIpConfig(const IpConfig& config) = 0;

    virtual std::string GetMacAddress() = 0;
    virtual void SetMacAddress(const std::string& mac) = 0;
    // Takes the MAC address of a physical NIC, as the host does when that NIC becomes the first uplink.
    virtual void SetMacAddressFromPnic(const Pnic& pnic) = 0;

    virtual bool GetDhcpBound() = 0;
    virtual void SetDhcpBound(bool bound) = 0;
    virtual void RenewIpv4Lease() = 0;
    virtual void RenewIpv6Lease() = 0;

    // Takes the interface down; Commit makes the configured state the running state; Enable brings the
    // interface up with its configured state.
    virtual void Disable() = 0;
    virtual void Commit() = 0;
    virtual void Enable() = 0;
    virtual bool IsEnabled() = 0;

    virtual ConnectionPoint GetConnectionPoint() = 0;
    virtual void ConnectToPortGroup(const std::string& portGroup) = 0;
    virtual void ConnectToDvPort(const std::string& dvsName, const std::string& portKey) = 0;
};

}  // namespace HostCtl::Network
