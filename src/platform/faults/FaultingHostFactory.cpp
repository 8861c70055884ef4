#include "platform/faults/FaultingHostFactory.h"

#include "platform/faults/FaultPoints.h"
#include "platform/hostctl/HostCtlException.h"

namespace HostCtl::Faults {

namespace {

using Source = std::shared_ptr<const FaultSource>;

void Check(const Source& faults, FaultPoint point) {
    if (auto text = faults->Injected(NameOf(point))) throw Lib::HostCtlException(*text);
}

// Each decorator below checks its operations' fault points, then hands the call on.

class FaultingNic : public Network::ZenkNic {
  public:
    FaultingNic(std::unique_ptr<Network::ZenkNic> inner, Source faults)
        : _inner(std::move(inner)), _faults(std::move(faults)) {}

    std::string GetName() const override { return _inner->GetName(); }
    bool IsValid() override { return _inner->IsValid(); }
    Network::IpConfig GetIpConfig() override {
        Check(_faults, FaultPoint::ZenkNicGetIpConfig);
        return _inner->GetIpConfig();
    }
    Network::IpConfig GetConfiguredIpConfig() override { return _inner->GetConfiguredIpConfig(); }
    void SetIpConfig(const Network::IpConfig& config) override {
        Check(_faults, FaultPoint::ZenkNicSetIpConfig);
        _inner->SetIpConfig(config);
    }
    std::string GetMacAddress() override { return _inner->GetMacAddress(); }
    void SetMacAddress(const std::string& mac) override {
        Check(_faults, FaultPoint::ZenkNicSetMacAddress);
        _inner->SetMacAddress(mac);
    }
    // Taking a NIC's address sets the address: a host that refuses the one refuses the other.
    void SetMacAddressFromPnic(const Network::Pnic& pnic) override {
        Check(_faults, FaultPoint::ZenkNicSetMacAddressFromPnic);
        Check(_faults, FaultPoint::ZenkNicSetMacAddress);
        _inner->SetMacAddressFromPnic(pnic);
    }
    bool GetDhcpBound() override { return _inner->GetDhcpBound(); }
    void SetDhcpBound(bool bound) override {
        Check(_faults, FaultPoint::ZenkNicSetDhcpBound);
        _inner->SetDhcpBound(bound);
    }
    void RenewIpv4Lease() override {
        Check(_faults, FaultPoint::ZenkNicRenewIpv4Lease);
        _inner->RenewIpv4Lease();
    }
    void RenewIpv6Lease() override {
        Check(_faults, FaultPoint::ZenkNicRenewIpv6Lease);
        _inner->RenewIpv6Lease();
    }
    void Disable() override {
        Check(_faults, FaultPoint::ZenkNicDisable);
        _inner->Disable();
    }
    void Commit() override {
        Check(_faults, FaultPoint::ZenkNicCommit);
        _inner->Commit();
    }
    void Enable() override {
        Check(_faults, FaultPoint::ZenkNicEnable);
        _inner->Enable();
    }
    bool IsEnabled() override { return _inner->IsEnabled(); }
    Network::ConnectionPoint GetConnectionPoint() override {
        Check(_faults, FaultPoint::ZenkNicGetConnectionPoint);
        return _inner->GetConnectionPoint();
    }
    void ConnectToPortGroup(const std::string& portGroup) override {
        Check(_faults, FaultPoint::ZenkNicConnectToPortGroup);
        _inner->ConnectToPortGroup(portGroup);
    }
    void ConnectToDvPort(const std::string& dvsName, const std::string& portKey) override {
        Check(_faults, FaultPoint::ZenkNicConnectToDvPort);
        _inner->ConnectToDvPort(dvsName, portKey);
    }

  private:
    std::unique_ptr<Network::ZenkNic> _inner;
    Source _faults;
};

std::unique_ptr<Network::ZenkNic> Faulting(std::unique_ptr<Network::ZenkNic> nic, const Source& faults) {
    if (!nic) return nullptr;
    return std::make_unique<FaultingNic>(std::move(nic), faults);
}

class FaultingNetworkInfo : public Network::NetworkInfo {
  public:
    FaultingNetworkInfo(std::unique_ptr<Network::NetworkInfo> inner, Source faults)
        : _inner(std::move(inner)), _faults(std::move(faults)) {}

    std::vector<std::unique_ptr<Network::Pnic>> GetPnics() override {
        Check(_faults, FaultPoint::NetworkInfoGetPnics);
        return _inner->GetPnics();
    }
    void UpdateManagementInterface() override {
        Check(_faults, FaultPoint::NetworkInfoUpdateManagementInterface);
        _inner->UpdateManagementInterface();
        _looked = true;
    }
    std::unique_ptr<Network::ZenkNic> GetManagementInterface() override {
        LookUpOnFirstNeed();
        return Faulting(_inner->GetManagementInterface(), _faults);
    }
    std::string GetManagementInterfaceName() override {
        LookUpOnFirstNeed();
        return _inner->GetManagementInterfaceName();
    }
    bool IsZenkIpv6Enabled() override { return _inner->IsZenkIpv6Enabled(); }
    void SetZenkIpv6Enabled(bool enabled) override {
        Check(_faults, FaultPoint::NetworkInfoSetZenkIpv6Enabled);
        _inner->SetZenkIpv6Enabled(enabled);
    }
    bool GetPendingZenkIpv6Enabled() override { return _inner->GetPendingZenkIpv6Enabled(); }
    void DisableNetDumper() override {
        Check(_faults, FaultPoint::NetworkInfoDisableNetDumper);
        _inner->DisableNetDumper();
    }
    bool IsNetDumperEnabled() override { return _inner->IsNetDumperEnabled(); }
    void ClearNetworkConfig() override {
        Check(_faults, FaultPoint::NetworkInfoClearNetworkConfig);
        _inner->ClearNetworkConfig();
    }
    void AutoConfigNetwork() override {
        Check(_faults, FaultPoint::NetworkInfoAutoConfigNetwork);
        _inner->AutoConfigNetwork();
    }

  private:
    // The platform looks the management interface up itself on first need; that lookup fails as an
    // asked one does.
    void LookUpOnFirstNeed() {
        if (_looked) return;
        Check(_faults, FaultPoint::NetworkInfoUpdateManagementInterface);
        _looked = true;
    }

    std::unique_ptr<Network::NetworkInfo> _inner;
    Source _faults;
    bool _looked = false;
};

class FaultingDns : public Network::DnsConfig {
  public:
    FaultingDns(std::unique_ptr<Network::DnsConfig> inner, Source faults)
        : _inner(std::move(inner)), _faults(std::move(faults)) {}

    std::string GetHostname() override { return _inner->GetHostname(); }
    std::string GetDomain() override { return _inner->GetDomain(); }
    void SetHostname(const std::string& name, bool persistentOnly) override {
        Check(_faults, FaultPoint::DnsConfigSetHostname);
        _inner->SetHostname(name, persistentOnly);
    }
    void SetFqdn(const std::string& fqdn, bool persistentOnly, const std::string& domain) override {
        Check(_faults, FaultPoint::DnsConfigSetFqdn);
        _inner->SetFqdn(fqdn, persistentOnly, domain);
    }
    void SetDomain(const std::string& domain) override {
        Check(_faults, FaultPoint::DnsConfigSetDomain);
        _inner->SetDomain(domain);
    }
    std::vector<std::string> GetNameServers() override { return _inner->GetNameServers(); }
    std::vector<std::string> GetIpv6NameServers(bool includeIpv4) override {
        return _inner->GetIpv6NameServers(includeIpv4);
    }
    void RemoveNameServers() override {
        Check(_faults, FaultPoint::DnsConfigRemoveNameServers);
        _inner->RemoveNameServers();
    }
    void AddNameServer(const Network::IpAddress& server) override {
        Check(_faults, FaultPoint::DnsConfigAddNameServer);
        _inner->AddNameServer(server);
    }
    std::vector<std::string> GetSearchDomains() override { return _inner->GetSearchDomains(); }
    void SetSearchDomainsString(const std::string& text) override {
        Check(_faults, FaultPoint::DnsConfigSetSearchDomainsString);
        _inner->SetSearchDomainsString(text);
    }
    void AddSearchDomain(const std::string& domain) override {
        Check(_faults, FaultPoint::DnsConfigAddSearchDomain);
        _inner->AddSearchDomain(domain);
    }
    void SaveConfig() override {
        Check(_faults, FaultPoint::DnsConfigSaveConfig);
        _inner->SaveConfig();
    }

  private:
    std::unique_ptr<Network::DnsConfig> _inner;
    Source _faults;
};

class FaultingRouting : public Network::RoutingInfo {
  public:
    FaultingRouting(std::unique_ptr<Network::RoutingInfo> inner, Source faults)
        : _inner(std::move(inner)), _faults(std::move(faults)) {}

    Network::Ipv4Address GetZenKernelDefaultGateway() override {
        Check(_faults, FaultPoint::RoutingInfoGetZenKernelDefaultGateway);
        return _inner->GetZenKernelDefaultGateway();
    }
    void SetZenKernelDefaultGateway(const Network::Ipv4Address& gateway, bool persistentOnly) override {
        Check(_faults, FaultPoint::RoutingInfoSetZenKernelDefaultGateway);
        _inner->SetZenKernelDefaultGateway(gateway, persistentOnly);
    }
    Network::Ipv6Address GetIpv6ZenKernelDefaultGateway() override {
        return _inner->GetIpv6ZenKernelDefaultGateway();
    }
    void SetIpv6ZenKernelDefaultGateway(const Network::Ipv6Address& gateway) override {
        Check(_faults, FaultPoint::RoutingInfoSetIpv6ZenKernelDefaultGateway);
        _inner->SetIpv6ZenKernelDefaultGateway(gateway);
    }

  private:
    std::unique_ptr<Network::RoutingInfo> _inner;
    Source _faults;
};

class FaultingSwitches : public Network::VirtualSwitchInfo {
  public:
    FaultingSwitches(std::unique_ptr<Network::VirtualSwitchInfo> inner, Source faults)
        : _inner(std::move(inner)), _faults(std::move(faults)) {}

    std::vector<Network::VirtualSwitch> GetVirtualSwitches() override {
        Check(_faults, FaultPoint::VirtualSwitchInfoGetVirtualSwitches);
        return _inner->GetVirtualSwitches();
    }
    std::vector<Network::DvSwitch> GetDvSwitches() override {
        Check(_faults, FaultPoint::VirtualSwitchInfoGetDvSwitches);
        return _inner->GetDvSwitches();
    }
    void AddVirtualSwitch(const std::string& name, int numPorts) override {
        Check(_faults, FaultPoint::VirtualSwitchInfoAddVirtualSwitch);
        _inner->AddVirtualSwitch(name, numPorts);
    }
    void RemoveVirtualSwitch(const std::string& name) override {
        Check(_faults, FaultPoint::VirtualSwitchInfoRemoveVirtualSwitch);
        _inner->RemoveVirtualSwitch(name);
    }
    void AddUplink(const std::string& switchName, const std::string& pnic) override {
        Check(_faults, FaultPoint::VirtualSwitchInfoAddUplink);
        _inner->AddUplink(switchName, pnic);
    }
    void RemoveUplink(const std::string& switchName, const std::string& pnic) override {
        Check(_faults, FaultPoint::VirtualSwitchInfoRemoveUplink);
        _inner->RemoveUplink(switchName, pnic);
    }
    void RemoveDvsUplink(const std::string& dvsName, const std::string& pnic) override {
        Check(_faults, FaultPoint::VirtualSwitchInfoRemoveDvsUplink);
        _inner->RemoveDvsUplink(dvsName, pnic);
    }
    std::string AddDvsHostLocalPort(const std::string& dvsName,
                                    const Network::DvPortProperties& properties) override {
        Check(_faults, FaultPoint::VirtualSwitchInfoAddDvsHostLocalPort);
        return _inner->AddDvsHostLocalPort(dvsName, properties);
    }
    std::string FindUplinkOwner(const std::string& pnic) override { return _inner->FindUplinkOwner(pnic); }
    Network::NicTeamingPolicy GetTeamingPolicy(const std::string& switchName) override {
        Check(_faults, FaultPoint::VirtualSwitchInfoGetTeamingPolicy);
        return _inner->GetTeamingPolicy(switchName);
    }
    void SetTeamingPolicy(const std::string& switchName, const Network::NicTeamingPolicy& policy) override {
        Check(_faults, FaultPoint::VirtualSwitchInfoSetTeamingPolicy);
        _inner->SetTeamingPolicy(switchName, policy);
    }
    void AddPortGroup(const std::string& switchName, const std::string& portGroup, int vlanId) override {
        Check(_faults, FaultPoint::VirtualSwitchInfoAddPortGroup);
        _inner->AddPortGroup(switchName, portGroup, vlanId);
    }
    std::string GetPortGroupSwitch(const std::string& portGroup) override {
        Check(_faults, FaultPoint::VirtualSwitchInfoGetPortGroupSwitch);
        return _inner->GetPortGroupSwitch(portGroup);
    }
    int GetPortGroupVlan(const std::string& portGroup) override {
        Check(_faults, FaultPoint::VirtualSwitchInfoGetPortGroupVlan);
        return _inner->GetPortGroupVlan(portGroup);
    }
    void SetPortGroupVlan(const std::string& portGroup, int vlanId) override {
        Check(_faults, FaultPoint::VirtualSwitchInfoSetPortGroupVlan);
        _inner->SetPortGroupVlan(portGroup, vlanId);
    }

  private:
    std::unique_ptr<Network::VirtualSwitchInfo> _inner;
    Source _faults;
};

class FaultingDvPort : public Network::DVPort {
  public:
    FaultingDvPort(std::unique_ptr<Network::DVPort> inner, Source faults)
        : _inner(std::move(inner)), _faults(std::move(faults)) {}

    std::string GetDvsName() const override { return _inner->GetDvsName(); }
    std::string GetPortKey() const override { return _inner->GetPortKey(); }
    std::string GetPortGroup() override { return _inner->GetPortGroup(); }
    int GetVlanId() override {
        Check(_faults, FaultPoint::DVPortGetVlanId);
        return _inner->GetVlanId();
    }
    void SetVlanId(int vlanId) override {
        Check(_faults, FaultPoint::DVPortSetVlanId);
        _inner->SetVlanId(vlanId);
    }
    std::vector<std::string> GetUplinks() override { return _inner->GetUplinks(); }
    Network::DvPortProperties GetProperties() override {
        Check(_faults, FaultPoint::DVPortGetProperties);
        return _inner->GetProperties();
    }

  private:
    std::unique_ptr<Network::DVPort> _inner;
    Source _faults;
};

class FaultingKernelNics : public Network::ZenKernelNicInfo {
  public:
    FaultingKernelNics(std::unique_ptr<Network::ZenKernelNicInfo> inner, Source faults)
        : _inner(std::move(inner)), _faults(std::move(faults)) {}

    std::vector<std::unique_ptr<Network::ZenkNic>> GetZenKernelNics() override {
        auto nics = _inner->GetZenKernelNics();
        for (auto& nic : nics) nic = Faulting(std::move(nic), _faults);
        return nics;
    }

  private:
    std::unique_ptr<Network::ZenKernelNicInfo> _inner;
    Source _faults;
};

class FaultingSystemInfo : public System::SystemInfo {
  public:
    FaultingSystemInfo(std::unique_ptr<System::SystemInfo> inner, Source faults)
        : _inner(std::move(inner)), _faults(std::move(faults)) {}

    std::string GetKeyboardLayout() override { return _inner->GetKeyboardLayout(); }
    std::vector<std::string> GetKeyboardLayouts() override { return _inner->GetKeyboardLayouts(); }
    void LoadKeyboardMappings(const std::string& layout) override {
        Check(_faults, FaultPoint::SystemInfoLoadKeyboardMappings);
        _inner->LoadKeyboardMappings(layout);
    }
    void SetKeyboardLayout(const std::string& layout) override {
        Check(_faults, FaultPoint::SystemInfoSetKeyboardLayout);
        _inner->SetKeyboardLayout(layout);
    }
    void SetSystemAlert(const std::string& message) override { _inner->SetSystemAlert(message); }
    std::vector<std::string> GetSystemAlerts() override { return _inner->GetSystemAlerts(); }
    bool IsConsoleLoginAllowed() override { return _inner->IsConsoleLoginAllowed(); }
    bool IsLogKept(const std::string& path) override { return _inner->IsLogKept(path); }
    std::unique_ptr<System::FirewallRuleset> GetFirewallRulesetById(const std::string& id) override {
        return _inner->GetFirewallRulesetById(id);
    }

  private:
    std::unique_ptr<System::SystemInfo> _inner;
    Source _faults;
};

class FaultingResources : public Resource::ResourceInfo {
  public:
    FaultingResources(std::unique_ptr<Resource::ResourceInfo> inner, Source faults)
        : _inner(std::move(inner)), _faults(std::move(faults)) {}

    bool HasRunningVirtualMachines() override {
        Check(_faults, FaultPoint::ResourceInfoHasRunningVirtualMachines);
        return _inner->HasRunningVirtualMachines();
    }

  private:
    std::unique_ptr<Resource::ResourceInfo> _inner;
    Source _faults;
};

}  // namespace

FaultingHostFactory::FaultingHostFactory(std::unique_ptr<HostFactory> inner,
                                         std::shared_ptr<const FaultSource> faults)
    : _inner(std::move(inner)), _faults(std::move(faults)) {}

void FaultingHostFactory::Initialize(const std::string& ident) {
    _inner->Initialize(ident);
}

std::unique_ptr<Network::NetworkInfo> FaultingHostFactory::GetNetworkInfo() const {
    return std::make_unique<FaultingNetworkInfo>(_inner->GetNetworkInfo(), _faults);
}
std::unique_ptr<Network::DnsConfig> FaultingHostFactory::GetDnsConfig() const {
    return std::make_unique<FaultingDns>(_inner->GetDnsConfig(), _faults);
}
std::unique_ptr<Network::RoutingInfo> FaultingHostFactory::GetRoutingInfo() const {
    return std::make_unique<FaultingRouting>(_inner->GetRoutingInfo(), _faults);
}
std::unique_ptr<Network::VirtualSwitchInfo> FaultingHostFactory::GetVirtualSwitchInfo() const {
    return std::make_unique<FaultingSwitches>(_inner->GetVirtualSwitchInfo(), _faults);
}
std::unique_ptr<Network::Pnic> FaultingHostFactory::GetPnic(const std::string& name) const {
    return _inner->GetPnic(name);
}
std::unique_ptr<Network::DVPort> FaultingHostFactory::GetDvPort(const std::string& dvsName,
                                                                const std::string& portKey) const {
    return std::make_unique<FaultingDvPort>(_inner->GetDvPort(dvsName, portKey), _faults);
}
std::unique_ptr<Network::Portset> FaultingHostFactory::GetPortset() const {
    return _inner->GetPortset();
}
std::unique_ptr<Network::PortGroup> FaultingHostFactory::GetPortGroup() const {
    return _inner->GetPortGroup();
}
std::unique_ptr<Network::ZenKernelNicInfo> FaultingHostFactory::GetZenKernelNicInfo() const {
    return std::make_unique<FaultingKernelNics>(_inner->GetZenKernelNicInfo(), _faults);
}
std::unique_ptr<Network::HostsFile> FaultingHostFactory::GetHostsFile() const {
    return _inner->GetHostsFile();
}
std::unique_ptr<System::SystemInfo> FaultingHostFactory::GetSystemInfo() const {
    return std::make_unique<FaultingSystemInfo>(_inner->GetSystemInfo(), _faults);
}
std::unique_ptr<Util::SystemIdentity> FaultingHostFactory::GetSystemIdentity() const {
    return _inner->GetSystemIdentity();
}
std::unique_ptr<Hardware::HardwareInfo> FaultingHostFactory::GetHardwareInfo() const {
    return _inner->GetHardwareInfo();
}
std::unique_ptr<Hardware::StorageInfo> FaultingHostFactory::GetStorageInfo() const {
    return _inner->GetStorageInfo();
}
std::unique_ptr<Hardware::CpuInfo> FaultingHostFactory::GetCpuInfo() const {
    return _inner->GetCpuInfo();
}
std::unique_ptr<Hardware::MemoryInfo> FaultingHostFactory::GetMemoryInfo() const {
    return _inner->GetMemoryInfo();
}
std::unique_ptr<Hardware::SmartCardInfo> FaultingHostFactory::GetSmartCardInfo() const {
    return _inner->GetSmartCardInfo();
}
std::unique_ptr<Adv::AdvancedOption> FaultingHostFactory::GetAdvancedOptions() const {
    return _inner->GetAdvancedOptions();
}
std::unique_ptr<Adv::AdvancedOption> FaultingHostFactory::GetUserAdvancedOptions() const {
    return _inner->GetUserAdvancedOptions();
}
std::unique_ptr<Resource::ResourceInfo> FaultingHostFactory::GetResourceInfo() const {
    return std::make_unique<FaultingResources>(_inner->GetResourceInfo(), _faults);
}
const HostPrograms& FaultingHostFactory::Programs() const {
    return _inner->Programs();
}
int FaultingHostFactory::Exec(const std::string& commandLine) const {
    return _inner->Exec(commandLine);
}

}  // namespace HostCtl::Faults
