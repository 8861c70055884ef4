#include "network/ChangeApplication.h"

#include <algorithm>

#include "frames/Frame.h"
#include "frames/HostAccess.h"
#include "frames/Log.h"
#include "frames/MessageDialog.h"
#include "network/ChangeConfirmation.h"
#include "network/ManagementSwitch.h"
#include "network/PendingNetwork.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/Ipv4Address.h"
#include "platform/hostctl/ZenkNic.h"
#include "system/RebootConfirmDialog.h"
#include "text/StringIds.h"

namespace Kovo {

using HostCtl::Network::IpConfig;
using HostCtl::Network::Ipv4Address;

namespace {

// What the operator reads when a step fails: what was being set, then the host's reason.
constexpr const char* kMacFailed = "Setting mac address of zennic failed: ";
constexpr const char* kIpFailed = "Setting ip configuration failed: ";
constexpr const char* kIpv6Failed = "Setting ipv6 configuration failed: ";
constexpr const char* kIpIpv6Failed = "Setting ip/ipv6 configuration failed: ";
constexpr const char* kGatewayFailed = "Setting default gateway failed: ";
constexpr const char* kIpv6GatewayFailed = "Setting default ipv6 gateway failed: ";
constexpr const char* kDnsFailed = "Setting DNS failed: ";
constexpr const char* kChangeFailed = "Preparing a network change the host can undo failed: ";

bool Contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::string Text(const HostCtl::Network::IpAddress* address) {
    return address ? address->GetStringAddress() : std::string();
}

}  // namespace

ChangeApplication::ChangeApplication(HostAccess& host, PendingNetwork& pending, Frame& owner,
                                     std::function<void()> showAddress)
    : _host(host), _pending(pending), _owner(owner), _showAddress(std::move(showAddress)) {}

bool ChangeApplication::Guarded(const char* prefix, const std::function<void()>& step) {
    try {
        step();
        return true;
    } catch (const std::exception& e) {
        const std::string line = prefix + std::string(e.what());
        LogError(line);
        MessageDialog(&_owner, StringId::EnableNetworkErrorTitle, line).RunModal();
        return false;
    }
}

void ChangeApplication::Run() {
    // The host agent must see whatever part of the change reached the host, however the run ends.
    struct RefreshAgent {
        HostAccess& host;
        ~RefreshAgent() {
            try {
                host.RefreshAgent();
            } catch (...) {
                // A host agent that cannot be told keeps its old view; the change itself stands.
            }
        }
    } refresh{_host};

    if (!_pending.managementInterface) return;
    // A host that can undo a change by itself gets one first: the steps then wait in its configuration
    // until the whole change is in place, tested, and kept by the operator.
    std::unique_ptr<HostCtl::Network::NetworkChange> change;
    if (!Guarded(kChangeFailed,
                 [&] { change = _pending.networkInfo->BeginChange(ChangeConfirmation::kRollbackSeconds); }))
        return;
    if (!ApplySteps()) {
        if (change) ChangeConfirmation(_owner, _host, *change).Restore();
    } else if (!change || ChangeConfirmation(_owner, _host, *change)
                              .PutInPlaceAndAsk(*_pending.networkInfo, _showAddress)) {
        if (_pending.Ipv6StateChanges()) RebootConfirmDialog(&_owner, true, _host).RunModal();
        return;
    }
    // Restored: the window shows the address the host has again.
    if (change && _showAddress) _showAddress();
}

bool ChangeApplication::ApplySteps() {
    // A switch that cannot be told is not a failure of the change: the run goes on as for a standard one.
    if (!ManagementSwitch::OnDistributedSwitch([this] { return _pending.managementInterface.get(); },
                                               LogInfo)) {
        ApplyAdapters();
        if (!Guarded(kMacFailed, [this] { ApplyMacAddress(); })) return false;
        ApplyVlan();
    }
    return Guarded(kIpFailed, [this] { ChooseIpv4(); }) && Guarded(kIpv6Failed, [this] { ChooseIpv6(); }) &&
           Guarded(kIpIpv6Failed, [this] { WriteIpConfig(); }) &&
           Guarded(kGatewayFailed, [this] { ApplyIpv4Gateway(); }) &&
           Guarded(kIpv6GatewayFailed, [this] { ApplyIpv6Gateway(); }) &&
           Guarded(kIpIpv6Failed, [this] { RestartInterface(); }) &&
           Guarded(kDnsFailed, [this] { ApplyDns(); });
}

void ChangeApplication::ApplyAdapters() {
    if (!_pending.adaptersKnown) return;
    std::string line = "Setting adapters to";
    for (const std::string& name : _pending.adapters) line += " " + name;
    LogInfo(line);

    ManagementSwitch managementSwitch(_host, *_pending.managementInterface);
    _uplinksRead = managementSwitch.Uplinks(_currentUplinks);
    if (!_uplinksRead) return;
    for (const std::string& uplink : _currentUplinks)
        if (!Contains(_pending.adapters, uplink)) _adaptersChanged |= managementSwitch.RemoveUplink(uplink);
    for (const std::string& adapter : _pending.adapters)
        if (!Contains(_currentUplinks, adapter)) _adaptersChanged |= managementSwitch.AddUplink(adapter);
}

void ChangeApplication::ApplyMacAddress() {
    // Uplinks that could not be read say nothing about the MAC address the interface should have.
    if (!_uplinksRead || _pending.adapters.empty()) return;
    if (!_currentUplinks.empty() && _pending.adapters.front() == _currentUplinks.front()) return;
    const auto pnic = _host.Pnic(_pending.adapters.front());
    _pending.managementInterface->SetMacAddressFromPnic(*pnic);
}

void ChangeApplication::ApplyVlan() {
    if (!_pending.vlanKnown) return;
    ManagementSwitch managementSwitch(_host, *_pending.managementInterface);
    int current = 0;
    if (managementSwitch.Vlan(current) && current != _pending.vlan)
        _vlanChanged = managementSwitch.SetVlan(_pending.vlan);
}

void ChangeApplication::ChooseIpv4() {
    HostCtl::Network::ZenkNic& nic = *_pending.managementInterface;
    IpConfig& applied = _pending.applied;
    _configured = nic.GetConfiguredIpConfig();
    const IpConfig& configured = _configured;
    const IpConfig running = nic.GetIpConfig();
    const std::string name = nic.GetName();

    if (_pending.modes.GetUseDhcp()) {
        if (!configured.GetUseDhcp()) {
            LogInfo("Switching to DHCP on " + name);
            _renewIpv4 = false;
        } else {
            _renewIpv4 = _adaptersChanged;
        }
        applied.SetUseDhcp(true);
        return;
    }
    const bool configuredStatic = !configured.GetUseDhcp() && !configured.GetIpv4UseNone();
    if (applied.GetIpv4UseNone()) {
        const bool alreadyNone =
            configured.GetIpv4UseNone() || (configuredStatic && configured.GetIpv4Address().IsUnspecified() &&
                                            configured.GetIpv4Netmask().IsUnspecified());
        if (alreadyNone) return;
        LogInfo("Setting ipv4 configuration to none on " + name);
        applied.SetUseDhcp(false, true);
        _addressChanged = true;
        return;
    }
    if (configuredStatic && applied.GetIpv4Address() == running.GetIpv4Address() &&
        applied.GetIpv4Netmask() == running.GetIpv4Netmask())
        return;
    LogInfo("Setting ipv4 configuration to " + applied.GetIpv4Address().GetStringAddress() + " " +
            applied.GetIpv4Netmask().GetStringAddress() + " on " + name);
    applied.SetUseDhcp(false, false);
    _addressChanged = true;
}

void ChangeApplication::ChooseIpv6() {
    _pending.networkInfo->SetZenkIpv6Enabled(_pending.ipv6Enabled);
    if (!_pending.ipv6Enabled) return;
    LogInfo("Setting ipv6 configuration");
    _pending.applied.SetUseIpv6Dhcp(_pending.modes.GetUseIpv6Dhcp());
    _pending.applied.SetUseIpv6RouterAdvertised(_pending.modes.GetUseIpv6RouterAdvertised());
    _renewIpv6 = _pending.modes.GetUseIpv6Dhcp() && _configured.GetUseIpv6Dhcp() && _adaptersChanged;
}

void ChangeApplication::WriteIpConfig() {
    IpConfig& applied = _pending.applied;
    // DNS can come from DHCP only where DHCP actually runs.
    const bool dnsFromDhcp = _pending.modes.GetDnsFromDhcp() &&
                             (applied.GetUseDhcp() || (_pending.ipv6Enabled && applied.GetUseIpv6Dhcp()));
    applied.SetDnsFromDhcp(dnsFromDhcp);
    _pending.modes.SetDnsFromDhcp(dnsFromDhcp);

    HostCtl::Network::ZenkNic& nic = *_pending.managementInterface;
    const bool wasBound = nic.GetDhcpBound();
    nic.SetIpConfig(IpConfig(applied));
    if (_addressChanged && _showAddress) _showAddress();
    if (applied.GetUseDhcp() && wasBound) nic.SetDhcpBound(true);
}

void ChangeApplication::ApplyIpv4Gateway() {
    const IpConfig& applied = _pending.applied;
    if (applied.GetUseDhcp()) return;
    const Ipv4Address& gateway = applied.GetIpv4Gateway();
    if (!_addressChanged && gateway == _pending.routing->GetZenKernelDefaultGateway()) return;
    LogInfo("Setting default gateway to " + gateway.GetStringAddress());
    _pending.routing->SetZenKernelDefaultGateway(gateway, false);
}

void ChangeApplication::ApplyIpv6Gateway() {
    if (!_pending.ipv6Enabled || !_pending.ipv6GatewayChanged) return;
    const auto& gateway = _pending.applied.GetIpv6Gateway();
    LogInfo("Setting default ipv6 gateway to " + gateway.GetScopedStringAddress());
    _pending.routing->SetIpv6ZenKernelDefaultGateway(gateway);
}

void ChangeApplication::RestartInterface() {
    HostCtl::Network::ZenkNic& nic = *_pending.managementInterface;
    if (_renewIpv4 || _renewIpv6) {
        LogInfo("Renew DHCP lease on " + nic.GetName());
        if (_renewIpv4) nic.RenewIpv4Lease();
        if (_renewIpv6) nic.RenewIpv6Lease();
    }
    if (_vlanChanged) {
        LogInfo("Changed vlan, restarting management interface");
        nic.Disable();
        nic.Commit();
        nic.Enable();
    }
}

void ChangeApplication::ApplyDns() {
    HostCtl::Network::DnsConfig& dns = *_pending.dns;
    // The suffix field takes characters that do not always make a name ("a..b"): refuse before the
    // search list is replaced, so a bad suffix never leaves the host with its domain alone.
    const std::vector<std::string> suffixes = HostCtl::Network::SplitNames(_pending.suffixes);
    for (const std::string& suffix : suffixes)
        if (!HostCtl::Network::IsValidDomain(suffix))
            throw HostCtl::Lib::HostCtlException("Invalid search domain: " + suffix);
    if (!_pending.applied.GetDnsFromDhcp()) {
        const std::string& name = _pending.hostname;
        LogInfo("Setting hostname to " + name);
        if (name.find('.') != std::string::npos)
            dns.SetFqdn(name, false, "");
        else
            dns.SetHostname(name, false);

        LogInfo("Setting nameservers to " + Text(_pending.primaryDns.get()) + " " +
                Text(_pending.alternateDns.get()));
        dns.RemoveNameServers();
        for (const auto* server : {_pending.primaryDns.get(), _pending.alternateDns.get()}) {
            if (!server) continue;
            // The unspecified address stands for "no server" in either family.
            if (server->IsIpv6() ? server->GetStringAddress() != "::" : !server->IsUnspecified())
                dns.AddNameServer(*server);
        }
    }
    LogInfo("Setting suffixes to " + _pending.suffixes);
    dns.SetSearchDomainsString(dns.GetDomain());
    for (const std::string& suffix : suffixes) dns.AddSearchDomain(suffix);
    dns.SaveConfig();
}

}  // namespace Kovo
