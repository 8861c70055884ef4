#pragma once

#include <memory>

#include "platform/hostctl/HostFactory.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl {

// A Halvor host: every platform object works on the host configuration store, and the host programs
// are the host's own, at the paths they are documented by.
class HalvorHostFactory : public HostCtl::HostFactory {
  public:
    explicit HalvorHostFactory(std::shared_ptr<Store::HostStore> store);

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

  private:
    // The documented programs are the host's own.
    class HalvorPrograms : public HostCtl::HostPrograms {
      public:
        HostCtl::Program Resolve(const HostCtl::Program& documented) const override;
    };

    std::shared_ptr<Store::HostStore> _store;
    HalvorPrograms _programs;
};

}  // namespace ZenkCtl
