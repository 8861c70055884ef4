#pragma once

#include <functional>
#include <memory>

#include "platform/hostctl/HostFactory.h"
#include "platform/linux/HostFiles.h"
#include "platform/linux/KernelNetwork.h"
#include "platform/linux/LinuxPrograms.h"
#include "platform/linux/NmNetwork.h"

namespace LinuxHost {

// A Debian host that runs virtual machines: who it is and what it has from its own files (os-release,
// sysfs, procfs), its network from its network service (or, without one, from the kernel, read only).
// What such a host has no counterpart for fails with a message that says so, and the screens show it.
class LinuxHostFactory : public HostCtl::HostFactory {
  public:
    // The host's network service when one runs; asked again until one answers.
    using NetworkService = std::function<std::shared_ptr<NmNetwork>()>;

    // `files` is the host's root ("/" in production); `kernel` answers for its addresses and routes.
    // `followChanges`: the console's own process is told (SIGUSR1) when the network changes.
    LinuxHostFactory(HostFiles files, std::shared_ptr<const KernelNetwork> kernel, bool followChanges = false,
                     NetworkService service = nullptr);

    void Initialize(const std::string& ident) override;

    std::unique_ptr<HostCtl::Network::NetworkInfo> GetNetworkInfo() const override;
    std::unique_ptr<HostCtl::Network::DnsConfig> GetDnsConfig() const override;
    std::unique_ptr<HostCtl::Network::RoutingInfo> GetRoutingInfo() const override;
    std::unique_ptr<HostCtl::Network::VirtualSwitchInfo> GetVirtualSwitchInfo() const override;
    std::unique_ptr<HostCtl::Network::Pnic> GetPnic(const std::string& name) const override;
    std::unique_ptr<HostCtl::Network::DVPort> GetDvPort(const std::string& dvsName,
                                                        const std::string& portKey) const override;
    std::unique_ptr<HostCtl::Network::Portset> GetPortset() const override;
    std::unique_ptr<HostCtl::Network::PortGroup> GetPortGroup() const override;
    std::unique_ptr<HostCtl::Network::ZenKernelNicInfo> GetZenKernelNicInfo() const override;
    std::unique_ptr<HostCtl::Network::HostsFile> GetHostsFile() const override;

    std::unique_ptr<HostCtl::System::SystemInfo> GetSystemInfo() const override;
    std::unique_ptr<HostCtl::Util::SystemIdentity> GetSystemIdentity() const override;
    std::unique_ptr<HostCtl::Hardware::HardwareInfo> GetHardwareInfo() const override;
    std::unique_ptr<HostCtl::Hardware::StorageInfo> GetStorageInfo() const override;
    std::unique_ptr<HostCtl::Hardware::CpuInfo> GetCpuInfo() const override;
    std::unique_ptr<HostCtl::Hardware::MemoryInfo> GetMemoryInfo() const override;
    std::unique_ptr<HostCtl::Hardware::SmartCardInfo> GetSmartCardInfo() const override;
    std::unique_ptr<HostCtl::Adv::AdvancedOption> GetAdvancedOptions() const override;
    std::unique_ptr<HostCtl::Adv::AdvancedOption> GetUserAdvancedOptions() const override;
    std::unique_ptr<HostCtl::Resource::ResourceInfo> GetResourceInfo() const override;

    const HostCtl::HostPrograms& Programs() const override;
    int Exec(const std::string& commandLine) const override;
    // The host tool's last words when it fails, or its status when it said nothing.
    std::string ExecReportingFailure(const std::string& commandLine) const override;

  private:
    // The one service every network object shares, so a change opened through one covers them all.
    std::shared_ptr<NmNetwork> Service() const;
    HostFiles _files;
    std::shared_ptr<const KernelNetwork> _kernel;
    bool _followChanges;
    NetworkService _findService;
    mutable std::shared_ptr<NmNetwork> _service;
    LinuxPrograms _programs;
};

// The Linux platform of the host the console runs on.
std::unique_ptr<HostCtl::HostFactory> MakeLinuxPlatform();

}  // namespace LinuxHost
