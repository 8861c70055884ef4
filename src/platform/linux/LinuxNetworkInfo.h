#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/RoutingInfo.h"
#include "platform/hostctl/ZenKernelNicInfo.h"
#include "platform/linux/HostFiles.h"
#include "platform/linux/KernelNetwork.h"

namespace LinuxHost {

// The interfaces of a Linux host as sysfs lists them.
class LinuxInterfaces {
  public:
    explicit LinuxInterfaces(HostFiles files);
    // Every interface but loopback, by name.
    std::vector<std::string> All() const;
    // Those with a device behind them: the physical adapters.
    std::vector<std::string> Physical() const;

  private:
    HostFiles _files;
};

// The host's network as it runs now. The management interface is the one the default route leaves by.
class LinuxNetworkInfo : public HostCtl::Network::NetworkInfo {
  public:
    LinuxNetworkInfo(HostFiles files, std::shared_ptr<const KernelNetwork> kernel);

    std::vector<std::unique_ptr<HostCtl::Network::Pnic>> GetPnics() override;
    void UpdateManagementInterface() override;
    std::unique_ptr<HostCtl::Network::ZenkNic> GetManagementInterface() override;
    std::string GetManagementInterfaceName() override;
    bool IsZenkIpv6Enabled() override;
    void SetZenkIpv6Enabled(bool enabled) override;
    bool GetPendingZenkIpv6Enabled() override;
    void DisableNetDumper() override;
    bool IsNetDumperEnabled() override;
    void ClearNetworkConfig() override;
    void AutoConfigNetwork() override;

  private:
    HostFiles _files;
    std::shared_ptr<const KernelNetwork> _kernel;
};

class LinuxRoutingInfo : public HostCtl::Network::RoutingInfo {
  public:
    explicit LinuxRoutingInfo(std::shared_ptr<const KernelNetwork> kernel);

    HostCtl::Network::Ipv4Address GetZenKernelDefaultGateway() override;
    void SetZenKernelDefaultGateway(const HostCtl::Network::Ipv4Address& gateway,
                                    bool persistentOnly) override;
    HostCtl::Network::Ipv6Address GetIpv6ZenKernelDefaultGateway() override;
    void SetIpv6ZenKernelDefaultGateway(const HostCtl::Network::Ipv6Address& gateway) override;

  private:
    std::shared_ptr<const KernelNetwork> _kernel;
};

class LinuxKernelNicInfo : public HostCtl::Network::ZenKernelNicInfo {
  public:
    LinuxKernelNicInfo(HostFiles files, std::shared_ptr<const KernelNetwork> kernel);
    std::vector<std::unique_ptr<HostCtl::Network::ZenkNic>> GetZenKernelNics() override;

  private:
    HostFiles _files;
    std::shared_ptr<const KernelNetwork> _kernel;
};

}  // namespace LinuxHost
