#pragma once

#include <memory>

#include "platform/faults/FaultSource.h"
#include "platform/hostctl/HostFactory.h"

namespace HostCtl::Faults {

// A platform whose operations fail on a test host's word: before each operation of kFaultPoints runs,
// the source is asked, and an injected text becomes the HostCtlException the operation throws, with
// nothing changed. Every other call goes straight to the platform underneath. Only a host that carries
// faults is ever wrapped in one, so a real host pays nothing.
class FaultingHostFactory : public HostFactory {
  public:
    FaultingHostFactory(std::unique_ptr<HostFactory> inner, std::shared_ptr<const FaultSource> faults);

    void Initialize(const std::string& ident) override;

    std::unique_ptr<Network::NetworkInfo> GetNetworkInfo() const override;
    std::unique_ptr<Network::DnsConfig> GetDnsConfig() const override;
    std::unique_ptr<Network::RoutingInfo> GetRoutingInfo() const override;
    std::unique_ptr<Network::VirtualSwitchInfo> GetVirtualSwitchInfo() const override;
    std::unique_ptr<Network::Pnic> GetPnic(const std::string& name) const override;
    std::unique_ptr<Network::DVPort> GetDvPort(const std::string& dvsName,
                                               const std::string& portKey) const override;
    std::unique_ptr<Network::Portset> GetPortset() const override;
    std::unique_ptr<Network::PortGroup> GetPortGroup() const override;
    std::unique_ptr<Network::ZenKernelNicInfo> GetZenKernelNicInfo() const override;
    std::unique_ptr<Network::HostsFile> GetHostsFile() const override;

    std::unique_ptr<System::SystemInfo> GetSystemInfo() const override;
    std::unique_ptr<Util::SystemIdentity> GetSystemIdentity() const override;
    std::unique_ptr<Hardware::HardwareInfo> GetHardwareInfo() const override;
    std::unique_ptr<Hardware::StorageInfo> GetStorageInfo() const override;
    std::unique_ptr<Hardware::CpuInfo> GetCpuInfo() const override;
    std::unique_ptr<Hardware::MemoryInfo> GetMemoryInfo() const override;
    std::unique_ptr<Hardware::SmartCardInfo> GetSmartCardInfo() const override;
    std::unique_ptr<Adv::AdvancedOption> GetAdvancedOptions() const override;
    std::unique_ptr<Adv::AdvancedOption> GetUserAdvancedOptions() const override;
    std::unique_ptr<Resource::ResourceInfo> GetResourceInfo() const override;

    const HostPrograms& Programs() const override;
    int Exec(const std::string& commandLine) const override;

  private:
    std::unique_ptr<HostFactory> _inner;
    std::shared_ptr<const FaultSource> _faults;
};

}  // namespace HostCtl::Faults
