#include "network/IPv6ConfigurationDialog.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "network/LinkLocal.h"
#include "text/InputItem.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

namespace {

using HostCtl::Network::IpConfig;
using HostCtl::Network::Ipv6Address;
using HostCtl::Network::Ipv6Network;

constexpr std::size_t kAddressCount = 3;
constexpr int kFieldLength = 42;

// The body text takes three lines of the header; the items below it need nine rows.
constexpr int kWidth = 78;
constexpr int kHeight = 20;
constexpr int kHeaderHeight = 7;

IPv6ConfigurationDialog::Ordinal InitialMode(bool enabled, const IpConfig& config) {
    using D = IPv6ConfigurationDialog;
    if (!enabled) return D::kDisable;
    if (config.GetUseIpv6RouterAdvertised()) return D::kDynamic;
    return config.GetUseIpv6Dhcp() ? D::kDhcpv6 : D::kStatic;
}

// The configuration's static networks, in order, as many as there are fields for.
std::vector<Ipv6Network> ShownNetworks(const IpConfig& config) {
    std::vector<Ipv6Network> shown;
    for (const Ipv6Network& network : config.GetIpv6Network())
        if (network.GetIpv6AddressType() == HostCtl::Network::IPV6_ADDRESS_STATIC &&
            shown.size() < kAddressCount)
            shown.push_back(network);
    return shown;
}

// "::" means no gateway: an empty field says so better than an address to correct.
std::string Shown(const Ipv6Address& gateway) {
    return gateway.IsUnspecified() ? std::string() : gateway.GetScopedStringAddress();
}

}  // namespace

IPv6ConfigurationDialog::IPv6ConfigurationDialog(Frame* parent, bool enabled, const IpConfig& config,
                                                 const Ipv6Address& gateway)
    : ModeFieldsDialog(parent, kWidth, kHeight, kHeaderHeight, StringId::Ipv6ConfigurationTitle,
                       StringId::Ipv6ConfigurationText),
      _enabled(enabled),
      _config(config),
      _gateway(gateway),
      _initialMode(InitialMode(enabled, config)),
      _shown(ShownNetworks(config)) {
    AddModes({StringId::Ipv6DisableCaption, StringId::Ipv6DynamicCaption, StringId::Dhcpv6Caption,
              StringId::Ipv6StaticCaption},
             _initialMode);
    const std::string label = Strings()->GetString(StringId::StaticAddressLabel);
    for (std::size_t i = 0; i < kAddressCount; ++i) {
        const std::string value = i < _shown.size() ? _shown[i].GetStringNetwork() : std::string();
        AddModeField(label + " #" + std::to_string(i + 1), value, kFieldLength, FieldKeys::Ipv6,
                     kFieldLength);
    }
    AddModeField(StringId::Ipv6GatewayLabel, Shown(gateway), kFieldLength, FieldKeys::Ipv6, kFieldLength);
    ShowModes(kStatic);
}

bool IPv6ConfigurationDialog::Accept() {
    const auto mode = static_cast<Ordinal>(Mode());
    if (mode == kStatic) return AcceptStatic();
    _enabled = mode != kDisable;
    // A host may run router advertisement and DHCPv6 together: Enter on the choice it started with
    // keeps both as they were.
    if (mode != kDisable && mode != _initialMode) {
        _config.SetUseIpv6RouterAdvertised(mode == kDynamic);
        _config.SetUseIpv6Dhcp(mode == kDhcpv6);
    }
    return true;
}

bool IPv6ConfigurationDialog::AcceptStatic() {
    // Every address's form first, then every address's scope, then the gateway.
    for (std::size_t i = 0; i < kAddressCount; ++i) {
        const std::string& text = Field(i).GetValue();
        if (!text.empty() && !Ipv6Network::IsValidAddressAndNetmask(text)) {
            Refuse(kAddress1 + static_cast<int>(i), StringId::InvalidIpAddressTitle,
                   StringId::InvalidIpv6NetworkText);
            return false;
        }
    }
    std::array<std::optional<Ipv6Network>, kAddressCount> typed;
    for (std::size_t i = 0; i < kAddressCount; ++i) {
        const std::string& text = Field(i).GetValue();
        if (text.empty()) continue;
        Ipv6Network network(text);
        if (IsLinkLocalByBytes(network.GetAddress())) {
            Refuse(kAddress1 + static_cast<int>(i), StringId::InvalidScopeTitle,
                   StringId::LinkLocalStaticAddressText);
            return false;
        }
        network.SetIpv6AddressType(HostCtl::Network::IPV6_ADDRESS_STATIC);
        network.SetIpv6Scope(HostCtl::Network::IPV6_SCOPE_GLOBAL);
        // A network still shown as it came keeps the scope it came with, so Enter on it changes nothing.
        const auto same = std::find_if(_shown.begin(), _shown.end(),
                                       [&](const Ipv6Network& shown) { return shown.SameNetwork(network); });
        typed[i] = same != _shown.end() ? *same : network;
    }
    const std::string& gateway = Field(kAddressCount).GetValue();
    if (!gateway.empty() && !Ipv6Address::IsValidAddress(gateway)) {
        Refuse(kGateway, StringId::InvalidGatewayTitle, StringId::InvalidIpv6GatewayText);
        return false;
    }

    _enabled = true;
    _config.SetUseIpv6RouterAdvertised(false);
    _config.SetUseIpv6Dhcp(false);
    // Each field takes the place of the network it showed, and a cleared one drops it; other kinds of
    // address, and static ones beyond the fields, stay where they were.
    const std::vector<Ipv6Network> before = _config.GetIpv6Network();
    _config.ClearIpv6Networks();
    std::size_t slot = 0;
    for (const Ipv6Network& network : before) {
        if (network.GetIpv6AddressType() != HostCtl::Network::IPV6_ADDRESS_STATIC || slot == kAddressCount) {
            _config.AddIpv6Network(network);
        } else if (const auto& replacement = typed[slot++]) {
            _config.AddIpv6Network(*replacement);
        }
    }
    // Fields beyond the networks shown go last, in order; adding one that is there already replaces it
    // in place, so what was typed wins over a kept address of another kind.
    for (const auto& network : typed)
        if (network) _config.AddIpv6Network(*network);
    _gateway = gateway.empty() ? Ipv6Address() : Ipv6Address(gateway);
    _config.SetIpv6Gateway(_gateway);
    return true;
}

}  // namespace Kovo
