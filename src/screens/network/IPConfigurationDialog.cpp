#include "network/IPConfigurationDialog.h"

#include <string>

#include "text/InputItem.h"
#include "text/StringIds.h"

namespace Kovo {

namespace {

using HostCtl::Network::Ipv4Address;

// A dotted quad is at most 15 characters; one more lets a stray extra digit show rather than vanish.
constexpr int kFieldLength = 16;

// 0.0.0.0 means "not set": an empty field says so better than a zero address to correct.
std::string Shown(const Ipv4Address& address) {
    return address.IsUnspecified() ? std::string() : address.GetStringAddress();
}

}  // namespace

IPConfigurationDialog::IPConfigurationDialog(Frame* parent, const HostCtl::Network::IpConfig& config)
    : ModeFieldsDialog(parent, 78, 19, 7, StringId::Ipv4ConfigurationTitle, StringId::Ipv4ConfigurationText),
      _config(config) {
    const Ordinal mode = config.GetIpv4UseNone() ? kNone : config.GetUseDhcp() ? kDynamic : kStatic;
    AddModes({StringId::Ipv4DisableCaption, StringId::Ipv4DynamicCaption, StringId::Ipv4StaticCaption}, mode);
    AddModeField(StringId::Ipv4AddressLabel, Shown(config.GetIpv4Address()), kFieldLength, FieldKeys::Ipv4,
                 kFieldLength);
    AddModeField(StringId::SubnetMaskLabel, Shown(config.GetIpv4Netmask()), kFieldLength, FieldKeys::Ipv4,
                 kFieldLength);
    AddModeField(StringId::DefaultGatewayLabel, Shown(config.GetIpv4Gateway()), kFieldLength, FieldKeys::Ipv4,
                 kFieldLength);
    ShowModes(kStatic);
}

bool IPConfigurationDialog::Accept() {
    const std::size_t mode = Mode();
    if (mode != kStatic) {
        _config.SetUseDhcp(mode == kDynamic);
        if (mode == kNone) _config.SetIpv4UseNone();
        _config.SetIpv4Gateway(Ipv4Address());
        return true;
    }
    const std::string& address = Field(0).GetValue();
    const std::string& mask = Field(1).GetValue();
    const std::string& gateway = Field(2).GetValue();
    if (!Ipv4Address::IsValidAddress(address)) {
        Refuse(kAddress, StringId::InvalidIpAddressTitle, StringId::InvalidIpv4AddressText);
        return false;
    }
    // A well-formed address that is no run of leading ones is no subnet either.
    if (!Ipv4Address::IsValidAddress(mask) || !Ipv4Address(mask).IsValidNetmask()) {
        Refuse(kMask, StringId::InvalidSubnetTitle, StringId::InvalidSubnetText);
        return false;
    }
    if (!Ipv4Address::IsValidAddress(gateway)) {
        Refuse(kGateway, StringId::InvalidGatewayTitle, StringId::InvalidGatewayText);
        return false;
    }
    _config.SetUseDhcp(false);
    _config.SetIpv4Address(Ipv4Address(address));
    _config.SetIpv4Netmask(Ipv4Address(mask));
    _config.SetIpv4Gateway(Ipv4Address(gateway));
    return true;
}

}  // namespace Kovo
