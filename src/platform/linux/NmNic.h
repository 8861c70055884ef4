#pragma once

#include <memory>

#include "platform/linux/LinuxNic.h"
#include "platform/linux/NmNetwork.h"

namespace LinuxHost {

// A NIC as the network service knows it: its permanent MAC address and link from the service, its model
// from the hardware database.
class NmPnic : public LinuxPnic {
  public:
    NmPnic(const NmDevice& device, HostFiles files);

    std::string GetMacAddress() const override;
    bool IsLinkUp() const override;
    int GetSpeedMbps() const override;

  private:
    NmDevice _device;
};

// The management interface of a host whose network the service runs: it runs as the kernel says, and is
// configured as the console's profiles say. A change goes into those profiles and (unless a change is
// open) is put in place at once.
class NmZenkNic : public LinuxNic {
  public:
    NmZenkNic(std::string name, HostFiles files, std::shared_ptr<const KernelNetwork> kernel,
              std::shared_ptr<NmNetwork> network);

    HostCtl::Network::IpConfig GetConfiguredIpConfig() override;
    void SetIpConfig(const HostCtl::Network::IpConfig& config) override;
    void SetMacAddress(const std::string& mac) override;
    void SetMacAddressFromPnic(const HostCtl::Network::Pnic& pnic) override;
    void SetDhcpBound(bool bound) override;
    void RenewIpv4Lease() override;
    void RenewIpv6Lease() override;
    void Disable() override;
    void Commit() override;
    void Enable() override;
    HostCtl::Network::ConnectionPoint GetConnectionPoint() override;
    void ConnectToPortGroup(const std::string& portGroup) override;

  private:
    std::shared_ptr<NmNetwork> _network;
};

}  // namespace LinuxHost
