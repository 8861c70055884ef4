#pragma once

// A host whose network platform records every call the console makes on it, in order, into the same
// list as the host's commands and the console's log lines ("log: ..."), then does what the platform
// does over a scratch store. Failures come from the store's injected faults, as on a simulated host.

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "../system/RecordingHost.h"
#include "platform/zenkctl/DVPortImpl.h"
#include "platform/zenkctl/DnsConfigImpl.h"
#include "platform/zenkctl/NetworkInfoImpl.h"
#include "platform/zenkctl/PnicImpl.h"
#include "platform/zenkctl/RoutingInfoImpl.h"
#include "platform/zenkctl/VirtualSwitchInfoImpl.h"
#include "platform/zenkctl/ZenkNicImpl.h"
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

class RecordingNic : public ZenkCtl::Network::ZenkNicImpl {
  public:
    RecordingNic(const std::string& name, Store store, Calls& calls)
        : ZenkNicImpl(name, std::move(store)), _calls(calls) {}

    void SetIpConfig(const HostCtl::Network::IpConfig& config) override {
        _calls.push_back("Nic.SetIpConfig");
        ZenkNicImpl::SetIpConfig(config);
    }
    void SetMacAddress(const std::string& mac) override {
        _calls.push_back("Nic.SetMacAddress " + mac);
        ZenkNicImpl::SetMacAddress(mac);
    }
    void SetMacAddressFromPnic(HostCtl::Network::Pnic* pnic) override {
        _calls.push_back("Nic.SetMacAddressFromPnic " + pnic->GetName());
        ZenkNicImpl::SetMacAddressFromPnic(pnic);
    }
    bool GetDhcpBound() override {
        _calls.push_back("Nic.GetDhcpBound");
        return ZenkNicImpl::GetDhcpBound();
    }
    void SetDhcpBound(bool bound) override {
        _calls.push_back(bound ? "Nic.SetDhcpBound true" : "Nic.SetDhcpBound false");
        ZenkNicImpl::SetDhcpBound(bound);
    }
    void RenewIpv4Lease() override {
        _calls.push_back("Nic.RenewIpv4Lease");
        ZenkNicImpl::RenewIpv4Lease();
    }
    void RenewIpv6Lease() override {
        _calls.push_back("Nic.RenewIpv6Lease");
        ZenkNicImpl::RenewIpv6Lease();
    }
    void Disable() override {
        _calls.push_back("Nic.Disable");
        ZenkNicImpl::Disable();
    }
    void Commit() override {
        _calls.push_back("Nic.Commit");
        ZenkNicImpl::Commit();
    }
    void Enable() override {
        _calls.push_back("Nic.Enable");
        ZenkNicImpl::Enable();
    }
    void ConnectToPortGroup(const std::string& portGroup) override {
        _calls.push_back("Nic.ConnectToPortGroup " + portGroup);
        ZenkNicImpl::ConnectToPortGroup(portGroup);
    }

  private:
    Calls& _calls;
};

class RecordingNetworkInfo : public ZenkCtl::Network::NetworkInfoImpl {
  public:
    RecordingNetworkInfo(Store store, Calls& calls)
        : NetworkInfoImpl(store), _store(std::move(store)), _calls(calls) {}

    std::unique_ptr<HostCtl::Network::ZenkNic> GetManagementInterface() override {
        const std::string name = GetManagementInterfaceName();
        if (name.empty()) return nullptr;
        return std::make_unique<RecordingNic>(name, _store, _calls);
    }
    void SetZenkIpv6Enabled(bool enabled) override {
        _calls.push_back(enabled ? "Network.SetZenkIpv6Enabled true" : "Network.SetZenkIpv6Enabled false");
        NetworkInfoImpl::SetZenkIpv6Enabled(enabled);
    }

  private:
    Store _store;
    Calls& _calls;
};

class RecordingRouting : public ZenkCtl::Network::RoutingInfoImpl {
  public:
    RecordingRouting(Store store, Calls& calls)
        : RoutingInfoImpl("defaultNetStack", std::move(store)), _calls(calls) {}

    void SetZenKernelDefaultGateway(const HostCtl::Network::Ipv4Address& gateway,
                                    bool persistentOnly) override {
        _calls.push_back("Routing.SetZenKernelDefaultGateway " + gateway.GetStringAddress());
        RoutingInfoImpl::SetZenKernelDefaultGateway(gateway, persistentOnly);
    }
    void SetIpv6ZenKernelDefaultGateway(const HostCtl::Network::Ipv6Address& gateway) override {
        _calls.push_back("Routing.SetIpv6ZenKernelDefaultGateway " + gateway.GetScopedStringAddress());
        RoutingInfoImpl::SetIpv6ZenKernelDefaultGateway(gateway);
    }

  private:
    Calls& _calls;
};

class RecordingDns : public ZenkCtl::Network::DnsConfigImpl {
  public:
    RecordingDns(Store store, Calls& calls)
        : DnsConfigImpl("defaultNetStack", std::move(store)), _calls(calls) {}

    void SetHostname(const std::string& name, bool persistentOnly) override {
        _calls.push_back("Dns.SetHostname " + name);
        DnsConfigImpl::SetHostname(name, persistentOnly);
    }
    void SetFqdn(const std::string& fqdn, bool persistentOnly, const std::string& domain) override {
        _calls.push_back("Dns.SetFqdn " + fqdn);
        DnsConfigImpl::SetFqdn(fqdn, persistentOnly, domain);
    }
    void RemoveNameServers() override {
        _calls.push_back("Dns.RemoveNameServers");
        DnsConfigImpl::RemoveNameServers();
    }
    void AddNameServer(const HostCtl::Network::IpAddress& server) override {
        _calls.push_back("Dns.AddNameServer " + server.GetStringAddress());
        DnsConfigImpl::AddNameServer(server);
    }
    void SetSearchDomainsString(const std::string& text) override {
        _calls.push_back("Dns.SetSearchDomainsString " + text);
        DnsConfigImpl::SetSearchDomainsString(text);
    }
    void AddSearchDomain(const std::string& domain) override {
        _calls.push_back("Dns.AddSearchDomain " + domain);
        DnsConfigImpl::AddSearchDomain(domain);
    }
    void SaveConfig() override {
        _calls.push_back("Dns.SaveConfig");
        DnsConfigImpl::SaveConfig();
    }

  private:
    Calls& _calls;
};

class RecordingSwitches : public ZenkCtl::Network::VirtualSwitchInfoImpl {
  public:
    RecordingSwitches(Store store, Calls& calls) : VirtualSwitchInfoImpl(std::move(store)), _calls(calls) {}

    void AddVirtualSwitch(const std::string& name, int numPorts) override {
        _calls.push_back("Switch.AddVirtualSwitch " + name + " " + std::to_string(numPorts));
        VirtualSwitchInfoImpl::AddVirtualSwitch(name, numPorts);
    }
    void AddPortGroup(const std::string& switchName, const std::string& portGroup, int vlanId) override {
        _calls.push_back("Switch.AddPortGroup " + switchName + " " + portGroup);
        VirtualSwitchInfoImpl::AddPortGroup(switchName, portGroup, vlanId);
    }

    void AddUplink(const std::string& switchName, const std::string& pnic) override {
        _calls.push_back("Switch.AddUplink " + switchName + " " + pnic);
        VirtualSwitchInfoImpl::AddUplink(switchName, pnic);
    }
    void RemoveUplink(const std::string& switchName, const std::string& pnic) override {
        _calls.push_back("Switch.RemoveUplink " + switchName + " " + pnic);
        VirtualSwitchInfoImpl::RemoveUplink(switchName, pnic);
    }
    void RemoveDvsUplink(const std::string& dvsName, const std::string& pnic) override {
        _calls.push_back("Switch.RemoveDvsUplink " + dvsName + " " + pnic);
        VirtualSwitchInfoImpl::RemoveDvsUplink(dvsName, pnic);
    }
    void SetTeamingPolicy(const std::string& switchName,
                          const HostCtl::Network::NicTeamingPolicy& policy) override {
        std::string order;
        for (const auto& uplink : policy.GetUplinkOrder()) order += " " + uplink;
        _calls.push_back("Switch.SetTeamingPolicy " + switchName + " max " +
                         std::to_string(policy.GetMaxActiveUplinks()) + " order" + order);
        VirtualSwitchInfoImpl::SetTeamingPolicy(switchName, policy);
    }
    void SetPortGroupVlan(const std::string& portGroup, int vlanId) override {
        _calls.push_back("Switch.SetPortGroupVlan " + portGroup + " " + std::to_string(vlanId));
        VirtualSwitchInfoImpl::SetPortGroupVlan(portGroup, vlanId);
    }

  private:
    Calls& _calls;
};

class RecordingDvPort : public ZenkCtl::Network::DVPortImpl {
  public:
    RecordingDvPort(const std::string& dvs, const std::string& key, Store store, Calls& calls)
        : DVPortImpl(dvs, key, std::move(store)), _calls(calls) {}

    void SetVlanId(int vlanId) override {
        _calls.push_back("DvPort.SetVlanId " + std::to_string(vlanId));
        DVPortImpl::SetVlanId(vlanId);
    }

  private:
    Calls& _calls;
};

// RecordingHost (commands, events) with the recording network objects, all writing one call list.
class RecordingNetworkHost : public RecordingHost {
  public:
    explicit RecordingNetworkHost(Store store) : RecordingHost(store), _store(std::move(store)) {
        CaptureLog(&calls);
    }
    ~RecordingNetworkHost() override { ReleaseLog(&calls); }

    std::unique_ptr<ZenkCtl::Network::NetworkInfoImpl> Network() const override {
        return std::make_unique<RecordingNetworkInfo>(_store, Mutable());
    }
    std::unique_ptr<ZenkCtl::Network::DnsConfigImpl> Dns() const override {
        return std::make_unique<RecordingDns>(_store, Mutable());
    }
    std::unique_ptr<ZenkCtl::Network::RoutingInfoImpl> Routing() const override {
        return std::make_unique<RecordingRouting>(_store, Mutable());
    }
    std::unique_ptr<ZenkCtl::Network::VirtualSwitchInfoImpl> Switches() const override {
        return std::make_unique<RecordingSwitches>(_store, Mutable());
    }
    std::unique_ptr<ZenkCtl::Network::DVPortImpl> DvPort(const std::string& dvs,
                                                         const std::string& key) const override {
        return std::make_unique<RecordingDvPort>(dvs, key, _store, Mutable());
    }
    std::unique_ptr<HostCtl::Network::Pnic> Pnic(const std::string& name) const override {
        return std::make_unique<ZenkCtl::Network::PnicImpl>(name, _store);
    }
    void RefreshAgent() override { calls.push_back("refresh"); }

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
    Store _store;
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
