#include "network/NetworkDetails.h"

#include "frames/HostAccess.h"
#include "frames/Log.h"
#include "platform/hostctl/Pnic.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

using HostCtl::Network::IpAddress;
using HostCtl::Network::IpConfig;
using HostCtl::Network::Ipv6Address;
using HostCtl::Network::Ipv6Network;

namespace {

std::string Value(const std::string& value) {
    return "{color:light-grey}" + value + "{/color}\n";
}

std::string Address(const HostCtl::Network::Ipv4Address& address) {
    return address.IsUnspecified() ? std::string() : address.GetStringAddress();
}

}  // namespace

NetworkDetails::NetworkDetails(const PendingNetwork& pending, const StringFactory& strings)
    : _pending(pending), _strings(strings) {}

void NetworkDetails::ReadAtEntry() {
    _runningAtEntry = _pending.managementInterface->GetIpConfig();
    _configuredAtEntry = _pending.applied;
    _ipv6GatewayAtEntry = _pending.routing->GetIpv6ZenKernelDefaultGateway();
}

void NetworkDetails::ReadLabels(HostAccess& host) {
    try {
        for (const auto& pnic : host.Network()->GetPnics())
            _adapterLabels[pnic->GetName()] = pnic->GetLabel();
    } catch (const std::exception& e) {
        LogFailure("Getting physical nics failed: ", e);
    }
}

std::string NetworkDetails::String(unsigned id) const {
    return _strings.GetString(id);
}

std::string NetworkDetails::Line(unsigned labelId, const std::string& value) const {
    return "{color:white}" + String(labelId) + ": {/color}{color:light-grey}" +
           (value.empty() ? String(StringId::NotSet) : value) + "{/color}\n";
}

std::string NetworkDetails::Adapters() const {
    std::string text;
    if (!_pending.adaptersKnown || _pending.adapters.empty()) {
        text = Value(String(_pending.adaptersKnown ? StringId::NoAdapter : StringId::Unknown));
    } else {
        for (const std::string& name : _pending.adapters) {
            const auto label = _adapterLabels.find(name);
            text += "{color:white}" + name + "{/color}{color:light-grey}" +
                    (label == _adapterLabels.end() ? std::string() : " (" + label->second + ")") +
                    "{/color}\n";
        }
    }
    return text + "\n" + String(StringId::NetworkAdaptersHelp);
}

std::string NetworkDetails::Vlan() const {
    return Value(!_pending.vlanKnown  ? String(StringId::Unknown)
                 : _pending.vlan == 0 ? String(StringId::NotSet)
                                      : std::to_string(_pending.vlan)) +
           "\n" + String(StringId::VlanHelp);
}

std::string NetworkDetails::Ipv4() const {
    return Ipv4Lines() + "\n" + String(StringId::Ipv4ConfigurationHelp);
}

std::string NetworkDetails::Ipv4Lines() const {
    const IpConfig& applied = _pending.applied;
    // Under DHCP the values are the lease's: known only while the host already ran DHCP at entry.
    const bool leased = applied.GetUseDhcp() && _configuredAtEntry.GetUseDhcp();
    const IpConfig& shown = leased ? _runningAtEntry : applied;
    const bool dhcpPending = applied.GetUseDhcp() && !leased;
    std::string text = Value(String(applied.GetUseDhcp()       ? StringId::Automatic
                                    : applied.GetIpv4UseNone() ? StringId::None
                                                               : StringId::Manual)) +
                       "\n";
    text += Line(StringId::Ipv4AddressLabel, dhcpPending ? "" : Address(shown.GetIpv4Address()));
    text += Line(StringId::SubnetMaskLabel, dhcpPending ? "" : Address(shown.GetIpv4Netmask()));
    text += Line(StringId::DefaultGatewayLabel, dhcpPending ? "" : Address(shown.GetIpv4Gateway()));
    return text;
}

std::vector<Ipv6Network> NetworkDetails::Ipv6Networks() const {
    const IpConfig& applied = _pending.applied;
    std::vector<Ipv6Network> networks;
    // What the host obtains by itself stays while the way it obtains it stays chosen.
    for (const auto& network : _runningAtEntry.GetIpv6Network()) {
        switch (network.GetIpv6AddressType()) {
            case HostCtl::Network::IPV6_ADDRESS_STATIC:
                break;
            case HostCtl::Network::IPV6_ADDRESS_AUTOCONF:
                if (applied.GetUseIpv6RouterAdvertised()) networks.push_back(network);
                break;
            case HostCtl::Network::IPV6_ADDRESS_DHCP:
                if (applied.GetUseIpv6Dhcp()) networks.push_back(network);
                break;
            default:
                networks.push_back(network);
                break;
        }
    }
    for (const auto& network : applied.GetIpv6Network())
        if (network.GetIpv6AddressType() == HostCtl::Network::IPV6_ADDRESS_STATIC)
            networks.push_back(network);
    return networks;
}

Ipv6Address NetworkDetails::Ipv6Gateway() const {
    return _pending.ipv6GatewayChanged ? _pending.applied.GetIpv6Gateway() : _ipv6GatewayAtEntry;
}

std::string NetworkDetails::Ipv6Lines() const {
    if (!_pending.ipv6Enabled) return Value(String(StringId::Ipv6IsDisabled));
    std::string text = Value(String(StringId::Ipv6IsEnabled)) + "\n{color:white}" +
                       String(StringId::Ipv6AddressesLabel) + ":{/color}\n";
    const auto networks = Ipv6Networks();
    if (networks.empty()) text += Value("  " + String(StringId::NotSet));
    for (const auto& network : networks) text += Value("  " + network.GetStringAddress());
    const Ipv6Address gateway = Ipv6Gateway();
    text +=
        Line(StringId::DefaultGatewayLabel, gateway.IsUnspecified() ? "" : gateway.GetScopedStringAddress());
    return text;
}

std::string NetworkDetails::Dns() const {
    auto text = [](const std::unique_ptr<IpAddress>& server) {
        return server ? server->GetStringAddress() : std::string();
    };
    return Line(StringId::PrimaryDnsServerLabel, text(_pending.primaryDns)) +
           Line(StringId::AlternateDnsServerLabel, text(_pending.alternateDns)) +
           Line(StringId::HostnameLabel, _pending.hostname) + "\n" + String(StringId::DnsConfigurationHelp);
}

std::string NetworkDetails::Ipv6() const {
    if (_pending.Ipv6StateChanges()) return String(StringId::Ipv6EnabledAfterReboot);
    return Ipv6Lines() + "\n" +
           String(_pending.ipv6Enabled ? StringId::Ipv6ConfigurationHelp : StringId::Ipv6DisabledHelp);
}

std::string NetworkDetails::Suffixes() const {
    return Value(_pending.suffixes.empty() ? String(StringId::NotSet) : _pending.suffixes) + "\n" +
           String(StringId::CustomDnsSuffixesHelp);
}

}  // namespace Kovo
