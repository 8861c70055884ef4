#pragma once

// A host whose network platform records every call the console makes on it, in order, into the same
// list as the host's commands and the console's log lines ("log: ..."), then does what the Halvor
// platform does over a scratch store. Failures come from the store's injected faults, as on a simulated host.

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "../system/RecordingHost.h"
#include "platform/hostctl/DnsConfig.h"
#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/RoutingInfo.h"
#include "platform/hostctl/VirtualSwitchInfo.h"
#include "platform/zenkctl/ZenkNicRuntime.h"

namespace Kovo::Testing {

// The console's syslog lines go to `into` from now on (see LogCapture.cpp), until another capture
// starts or this one is released.
void CaptureLog(std::vector<std::string>* into);
void ReleaseLog(const std::vector<std::string>* from);

using Store = std::shared_ptr<ZenkCtl::Store::HostStore>;
using Calls = std::vector<std::string>;

inline std::string Joined(std::initializer_list<std::string> parts) {
    std::string text;
    for (const auto& part : parts) text += (text.empty() ? "" : " ") + part;
    return text;
}

// Each recorder is a decorator over the platform interface: it writes the call into the list, then
// hands it to the platform underneath, so any implementation of the interface can be recorded.
class RecordingNic : public HostCtl::Network::ZenkNic {
  public:
    RecordingNic(std::unique_ptr<HostCtl::Network::ZenkNic> inner, Calls& calls)
        : _inner(std::move(inner)), _calls(calls) {}

    std::string GetName() const override { return _inner->GetName(); }
    bool IsValid() override { return _inner->IsValid(); }
    HostCtl::Network::IpConfig GetIpConfig() override { return _inner->GetIpConfig(); }
    HostCtl::Network::IpConfig GetConfiguredIpConfig() override { return _inner->GetConfiguredIpConfig(); }
    void SetIpConfig(const HostCtl::Network::IpConfig& config) override {
        _calls.push_back("Nic.SetIpConfig");
        _inner->SetIpConfig(config);
    }
    std::string GetMacAddress() override { return _inner->GetMacAddress(); }
    void SetMacAddress(const std::string& mac) override {
        _calls.push_back("Nic.SetMacAddress " + mac);
        _inner->SetMacAddress(mac);
    }
    void SetMacAddressFromPnic(const HostCtl::Network::Pnic& pnic) override {
        _calls.push_back("Nic.SetMacAddressFromPnic " + pnic.GetName());
        _inner->SetMacAddressFromPnic(pnic);
    }
    bool GetDhcpBound() override {
        _calls.push_back("Nic.GetDhcpBound");
        return _inner->GetDhcpBound();
    }
    void SetDhcpBound(bool bound) override {
        _calls.push_back(bound ? "Nic.SetDhcpBound true" : "Nic.SetDhcpBound false");
        _inner->SetDhcpBound(bound);
    }
    void RenewIpv4Lease() override {
        _calls.push_back("Nic.RenewIpv4Lease");
        _inner->RenewIpv4Lease();
    }
    void RenewIpv6Lease() override {
        _calls.push_back("Nic.RenewIpv6Lease");
        _inner->RenewIpv6Lease();
    }
    void Disable() override {
        _calls.push_back("Nic.Disable");
        _inner->Disable();
    }
    void Commit() override {
        _calls.push_back("Nic.Commit");
        _inner->Commit();
    }
    void Enable() override {
        _calls.push_back("Nic.Enable");
        _inner->Enable();
    }
    bool IsEnabled() override { return _inner->IsEnabled(); }
    HostCtl::Network::ConnectionPoint GetConnectionPoint() override { return _inner->GetConnectionPoint(); }
    void ConnectToPortGroup(const std::string& portGroup) override {
        _calls.push_back("Nic.ConnectToPortGroup " + portGroup);
        _inner->ConnectToPortGroup(portGroup);
    }
    void ConnectToDvPort(const std::string& dvsName, const std::string& portKey) override {
        _inner->ConnectToDvPort(dvsName, portKey);
    }

  private:
    std::unique_ptr<HostCtl::Network::ZenkNic> _inner;
    Calls& _calls;
};

// What a host that undoes a network change by itself does with one, scripted (the Halvor platform
// underneath cannot).
struct ChangeScript {
    bool offered = false;  // false: BeginChange gives none, as on the Halvor host
    int secondsLeft = 120;
    std::string applyFailure;  // Apply fails with it when set
    std::vector<std::string> restored = {"e0", "xswitch0"};
};

class RecordingChange : public HostCtl::Network::NetworkChange {
  public:
    RecordingChange(const ChangeScript& script, Calls& calls) : _script(script), _calls(calls) {}
    ~RecordingChange() override {
        if (!_ended) _calls.push_back("Change.Dropped");
    }
    void Apply() override {
        _calls.push_back("Change.Apply");
        if (!_script.applyFailure.empty()) throw HostCtl::Lib::HostCtlException(_script.applyFailure);
    }
    int SecondsLeft() override { return _script.secondsLeft; }
    void Keep() override {
        _calls.push_back("Change.Keep");
        _ended = true;
    }
    std::vector<std::string> RollBack() override {
        _calls.push_back("Change.RollBack");
        _ended = true;
        return _script.restored;
    }

  private:
    const ChangeScript& _script;
    Calls& _calls;
    bool _ended = false;
};

class RecordingNetworkInfo : public HostCtl::Network::NetworkInfo {
  public:
    RecordingNetworkInfo(std::unique_ptr<HostCtl::Network::NetworkInfo> inner, Calls& calls,
                         const ChangeScript& change)
        : _inner(std::move(inner)), _calls(calls), _change(change) {}

    std::unique_ptr<HostCtl::Network::NetworkChange> BeginChange(int rollbackSeconds) override {
        if (!_change.offered) return nullptr;
        _calls.push_back("Network.BeginChange " + std::to_string(rollbackSeconds));
        return std::make_unique<RecordingChange>(_change, _calls);
    }

    std::vector<std::unique_ptr<HostCtl::Network::Pnic>> GetPnics() override { return _inner->GetPnics(); }
    void UpdateManagementInterface() override { _inner->UpdateManagementInterface(); }
    std::unique_ptr<HostCtl::Network::ZenkNic> GetManagementInterface() override {
        auto nic = _inner->GetManagementInterface();
        if (!nic) return nullptr;
        return std::make_unique<RecordingNic>(std::move(nic), _calls);
    }
    std::string GetManagementInterfaceName() override { return _inner->GetManagementInterfaceName(); }
    bool IsZenkIpv6Enabled() override { return _inner->IsZenkIpv6Enabled(); }
    void SetZenkIpv6Enabled(bool enabled) override {
        _calls.push_back(enabled ? "Network.SetZenkIpv6Enabled true" : "Network.SetZenkIpv6Enabled false");
        _inner->SetZenkIpv6Enabled(enabled);
    }
    bool GetPendingZenkIpv6Enabled() override { return _inner->GetPendingZenkIpv6Enabled(); }
    void DisableNetDumper() override { _inner->DisableNetDumper(); }
    bool IsNetDumperEnabled() override { return _inner->IsNetDumperEnabled(); }
    void ClearNetworkConfig() override { _inner->ClearNetworkConfig(); }
    void AutoConfigNetwork() override { _inner->AutoConfigNetwork(); }

  private:
    std::unique_ptr<HostCtl::Network::NetworkInfo> _inner;
    Calls& _calls;
    const ChangeScript& _change;
};

class RecordingRouting : public HostCtl::Network::RoutingInfo {
  public:
    RecordingRouting(std::unique_ptr<HostCtl::Network::RoutingInfo> inner, Calls& calls)
        : _inner(std::move(inner)), _calls(calls) {}

    HostCtl::Network::Ipv4Address GetZenKernelDefaultGateway() override {
        return _inner->GetZenKernelDefaultGateway();
    }
    void SetZenKernelDefaultGateway(const HostCtl::Network::Ipv4Address& gateway,
                                    bool persistentOnly) override {
        _calls.push_back("Routing.SetZenKernelDefaultGateway " + gateway.GetStringAddress());
        _inner->SetZenKernelDefaultGateway(gateway, persistentOnly);
    }
    HostCtl::Network::Ipv6Address GetIpv6ZenKernelDefaultGateway() override {
        return _inner->GetIpv6ZenKernelDefaultGateway();
    }
    void SetIpv6ZenKernelDefaultGateway(const HostCtl::Network::Ipv6Address& gateway) override {
        _calls.push_back("Routing.SetIpv6ZenKernelDefaultGateway " + gateway.GetScopedStringAddress());
        _inner->SetIpv6ZenKernelDefaultGateway(gateway);
    }

  private:
    std::unique_ptr<HostCtl::Network::RoutingInfo> _inner;
    Calls& _calls;
};

class RecordingDns : public HostCtl::Network::DnsConfig {
  public:
    RecordingDns(std::unique_ptr<HostCtl::Network::DnsConfig> inner, Calls& calls)
        : _inner(std::move(inner)), _calls(calls) {}

    std::string GetHostname() override { return _inner->GetHostname(); }
    std::string GetDomain() override { return _inner->GetDomain(); }
    void SetHostname(const std::string& name, bool persistentOnly) override {
        _calls.push_back("Dns.SetHostname " + name);
        _inner->SetHostname(name, persistentOnly);
    }
    void SetFqdn(const std::string& fqdn, bool persistentOnly, const std::string& domain) override {
        _calls.push_back("Dns.SetFqdn " + fqdn);
        _inner->SetFqdn(fqdn, persistentOnly, domain);
    }
    void SetDomain(const std::string& domain) override { _inner->SetDomain(domain); }
    std::vector<std::string> GetNameServers() override { return _inner->GetNameServers(); }
    std::vector<std::string> GetIpv6NameServers(bool includeIpv4) override {
        return _inner->GetIpv6NameServers(includeIpv4);
    }
    void RemoveNameServers() override {
        _calls.push_back("Dns.RemoveNameServers");
        _inner->RemoveNameServers();
    }
    void AddNameServer(const HostCtl::Network::IpAddress& server) override {
        _calls.push_back("Dns.AddNameServer " + server.GetStringAddress());
        _inner->AddNameServer(server);
    }
    std::vector<std::string> GetSearchDomains() override { return _inner->GetSearchDomains(); }
    void SetSearchDomainsString(const std::string& text) override {
        _calls.push_back("Dns.SetSearchDomainsString " + text);
        _inner->SetSearchDomainsString(text);
    }
    void AddSearchDomain(const std::string& domain) override {
        _calls.push_back("Dns.AddSearchDomain " + domain);
        _inner->AddSearchDomain(domain);
    }
    void SaveConfig() override {
        _calls.push_back("Dns.SaveConfig");
        _inner->SaveConfig();
    }

  private:
    std::unique_ptr<HostCtl::Network::DnsConfig> _inner;
    Calls& _calls;
};

class RecordingSwitches : public HostCtl::Network::VirtualSwitchInfo {
  public:
    RecordingSwitches(std::unique_ptr<HostCtl::Network::VirtualSwitchInfo> inner, Calls& calls)
        : _inner(std::move(inner)), _calls(calls) {}

    std::vector<HostCtl::Network::VirtualSwitch> GetVirtualSwitches() override {
        return _inner->GetVirtualSwitches();
    }
    std::vector<HostCtl::Network::DvSwitch> GetDvSwitches() override { return _inner->GetDvSwitches(); }
    void AddVirtualSwitch(const std::string& name, int numPorts) override {
        _calls.push_back("Switch.AddVirtualSwitch " + name + " " + std::to_string(numPorts));
        _inner->AddVirtualSwitch(name, numPorts);
    }
    void RemoveVirtualSwitch(const std::string& name) override { _inner->RemoveVirtualSwitch(name); }
    void AddUplink(const std::string& switchName, const std::string& pnic) override {
        _calls.push_back("Switch.AddUplink " + switchName + " " + pnic);
        _inner->AddUplink(switchName, pnic);
    }
    void RemoveUplink(const std::string& switchName, const std::string& pnic) override {
        _calls.push_back("Switch.RemoveUplink " + switchName + " " + pnic);
        _inner->RemoveUplink(switchName, pnic);
    }
    void RemoveDvsUplink(const std::string& dvsName, const std::string& pnic) override {
        _calls.push_back("Switch.RemoveDvsUplink " + dvsName + " " + pnic);
        _inner->RemoveDvsUplink(dvsName, pnic);
    }
    std::string AddDvsHostLocalPort(const std::string& dvsName,
                                    const HostCtl::Network::DvPortProperties& properties) override {
        return _inner->AddDvsHostLocalPort(dvsName, properties);
    }
    std::string FindUplinkOwner(const std::string& pnic) override { return _inner->FindUplinkOwner(pnic); }
    HostCtl::Network::NicTeamingPolicy GetTeamingPolicy(const std::string& switchName) override {
        return _inner->GetTeamingPolicy(switchName);
    }
    void SetTeamingPolicy(const std::string& switchName,
                          const HostCtl::Network::NicTeamingPolicy& policy) override {
        std::string order;
        for (const auto& uplink : policy.GetUplinkOrder()) order += " " + uplink;
        _calls.push_back("Switch.SetTeamingPolicy " + switchName + " max " +
                         std::to_string(policy.GetMaxActiveUplinks()) + " order" + order);
        _inner->SetTeamingPolicy(switchName, policy);
    }
    void AddPortGroup(const std::string& switchName, const std::string& portGroup, int vlanId) override {
        _calls.push_back("Switch.AddPortGroup " + switchName + " " + portGroup);
        _inner->AddPortGroup(switchName, portGroup, vlanId);
    }
    std::string GetPortGroupSwitch(const std::string& portGroup) override {
        return _inner->GetPortGroupSwitch(portGroup);
    }
    int GetPortGroupVlan(const std::string& portGroup) override {
        return _inner->GetPortGroupVlan(portGroup);
    }
    void SetPortGroupVlan(const std::string& portGroup, int vlanId) override {
        _calls.push_back("Switch.SetPortGroupVlan " + portGroup + " " + std::to_string(vlanId));
        _inner->SetPortGroupVlan(portGroup, vlanId);
    }

  private:
    std::unique_ptr<HostCtl::Network::VirtualSwitchInfo> _inner;
    Calls& _calls;
};

class RecordingDvPort : public HostCtl::Network::DVPort {
  public:
    RecordingDvPort(std::unique_ptr<HostCtl::Network::DVPort> inner, Calls& calls)
        : _inner(std::move(inner)), _calls(calls) {}

    std::string GetDvsName() const override { return _inner->GetDvsName(); }
    std::string GetPortKey() const override { return _inner->GetPortKey(); }
    std::string GetPortGroup() override { return _inner->GetPortGroup(); }
    int GetVlanId() override { return _inner->GetVlanId(); }
    void SetVlanId(int vlanId) override {
        _calls.push_back("DvPort.SetVlanId " + std::to_string(vlanId));
        _inner->SetVlanId(vlanId);
    }
    std::vector<std::string> GetUplinks() override { return _inner->GetUplinks(); }
    HostCtl::Network::DvPortProperties GetProperties() override { return _inner->GetProperties(); }

  private:
    std::unique_ptr<HostCtl::Network::DVPort> _inner;
    Calls& _calls;
};

// RecordingHost (commands, events) with the recording network objects, all writing one call list.
class RecordingNetworkHost : public RecordingHost {
  public:
    explicit RecordingNetworkHost(Store store) : RecordingHost(std::move(store)) { CaptureLog(&calls); }
    ~RecordingNetworkHost() override { ReleaseLog(&calls); }

    std::unique_ptr<HostCtl::Network::NetworkInfo> Network() const override {
        return std::make_unique<RecordingNetworkInfo>(RecordingHost::Network(), Mutable(), change);
    }
    std::unique_ptr<HostCtl::Network::DnsConfig> Dns() const override {
        return std::make_unique<RecordingDns>(RecordingHost::Dns(), Mutable());
    }
    std::unique_ptr<HostCtl::Network::RoutingInfo> Routing() const override {
        return std::make_unique<RecordingRouting>(RecordingHost::Routing(), Mutable());
    }
    std::unique_ptr<HostCtl::Network::VirtualSwitchInfo> Switches() const override {
        return std::make_unique<RecordingSwitches>(RecordingHost::Switches(), Mutable());
    }
    std::unique_ptr<HostCtl::Network::DVPort> DvPort(const std::string& dvs,
                                                     const std::string& key) const override {
        return std::make_unique<RecordingDvPort>(RecordingHost::DvPort(dvs, key), Mutable());
    }
    void RefreshAgent() override { calls.push_back("refresh"); }

    ChangeScript change;

    // The calls and log lines from the first one starting with `from` on.
    Calls From(const std::string& from) const {
        for (std::size_t i = 0; i < calls.size(); ++i)
            if (calls[i].rfind(from, 0) == 0) return Calls(calls.begin() + static_cast<long>(i), calls.end());
        return {};
    }
    bool Made(const std::string& call) const {
        return std::find(calls.begin(), calls.end(), call) != calls.end();
    }

  private:
    Calls& Mutable() const { return const_cast<Calls&>(calls); }
};

// A host's document after its boot: every kernel interface runs its configuration.
inline nlohmann::json Booted(nlohmann::json document) {
    std::vector<std::string> names;
    for (const auto& nic : document["network"]["zenkNics"]) names.push_back(nic["name"].get<std::string>());
    for (const auto& name : names) ZenkCtl::Network::ZenkNicRuntime::Apply(document, name);
    return document;
}

// A scenario of the simulated host as a store document.
inline nlohmann::json Scenario(const std::string& name) {
    std::ifstream in(std::string(KOVO_SCENARIOS) + "/" + name + ".json");
    return nlohmann::json::parse(in);
}

}  // namespace Kovo::Testing
