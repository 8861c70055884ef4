#pragma once

#include <memory>

#include "platform/hostctl/Pnic.h"
#include "platform/hostctl/ZenkNic.h"
#include "platform/linux/HostFiles.h"
#include "platform/linux/KernelNetwork.h"

namespace LinuxHost {

// A physical network adapter (an interface with a device behind it in /sys/class/net), read anew on every
// call.
class LinuxPnic : public HostCtl::Network::Pnic {
  public:
    LinuxPnic(std::string name, HostFiles files);

    std::string GetName() const override;
    std::string GetLabel() const override;
    std::string GetMacAddress() const override;
    bool IsLinkUp() const override;
    int GetSpeedMbps() const override;
    std::string GetDriver() const override;

  private:
    std::string Attribute(const char* name) const;
    std::string _name;
    HostFiles _files;
};

// A kernel interface as it runs: its addresses and routes from the kernel, its state from sysfs.
class LinuxNic : public HostCtl::Network::ZenkNic {
  public:
    LinuxNic(std::string name, HostFiles files, std::shared_ptr<const KernelNetwork> kernel);

    std::string GetName() const override;
    bool IsValid() override;
    HostCtl::Network::IpConfig GetIpConfig() override;
    HostCtl::Network::IpConfig GetConfiguredIpConfig() override;
    void SetIpConfig(const HostCtl::Network::IpConfig& config) override;
    std::string GetMacAddress() override;
    void SetMacAddress(const std::string& mac) override;
    void SetMacAddressFromPnic(const HostCtl::Network::Pnic& pnic) override;
    bool GetDhcpBound() override;
    void SetDhcpBound(bool bound) override;
    void RenewIpv4Lease() override;
    void RenewIpv6Lease() override;
    void Disable() override;
    void Commit() override;
    void Enable() override;
    bool IsEnabled() override;
    HostCtl::Network::ConnectionPoint GetConnectionPoint() override;
    void ConnectToPortGroup(const std::string& portGroup) override;
    void ConnectToDvPort(const std::string& dvsName, const std::string& portKey) override;

  private:
    std::string _name;
    HostFiles _files;
    std::shared_ptr<const KernelNetwork> _kernel;
};

}  // namespace LinuxHost
