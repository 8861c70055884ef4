#include "network/IPConfigurationDialog.h"

#include <string>

#include "text/InputItem.h"

namespace Kovo {

namespace {

using HostCtl::Network::Ipv4Address;

enum StringId : unsigned {
    kTitle = 93,
    kBody = 94,
    kNoneCaption = 95,
    kDynamicCaption = 96,
    kStaticCaption = 97,
    kAddressLabel = 35,
    kGatewayLabel = 38,
    kMaskLabel = 39,
    kInvalidAddressTitle = 74,
    kInvalidAddressText = 75,
    kInvalidMaskTitle = 78,
    kInvalidMaskText = 79,
    kInvalidGatewayTitle = 82,
    kInvalidGatewayText = 83,
};

// A dotted quad is at most 15 characters; one more lets a stray extra digit show rather than vanish.
constexpr int kFieldLength = 16;

// 0.0.0.0 means "not set": an empty field says so better than a zero address to correct.
std::string Shown(const Ipv4Address& address) {
    return address.IsUnspecified() ? std::string() : address.GetStringAddress();
}

}  // namespace

IPConfigurationDialog::IPConfigurationDialog(Frame* parent, const HostCtl::Network::IpConfig& config)
    : ModeFieldsDialog(parent, 78, 19, 7, kTitle, kBody), _config(config) {
    const Ordinal mode = config.GetIpv4UseNone() ? kNone : config.GetUseDhcp() ? kDynamic : kStatic;
    AddModes({kNoneCaption, kDynamicCaption, kStaticCaption}, mode);
    AddModeField(kAddressLabel, Shown(config.GetIpv4Address()), kFieldLength, FieldKeys::Ipv4, kFieldLength);
    AddModeField(kMaskLabel, Shown(config.GetIpv4Netmask()), kFieldLength, FieldKeys::Ipv4, kFieldLength);
    AddModeField(kGatewayLabel, Shown(config.GetIpv4Gateway()), kFieldLength, FieldKeys::Ipv4, kFieldLength);
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
        Refuse(kAddress, kInvalidAddressTitle, kInvalidAddressText);
        return false;
    }
    // A well-formed address that is no run of leading ones is no subnet either.
    if (!Ipv4Address::IsValidAddress(mask) || !Ipv4Address(mask).IsValidNetmask()) {
        Refuse(kMask, kInvalidMaskTitle, kInvalidMaskText);
        return false;
    }
    if (!Ipv4Address::IsValidAddress(gateway)) {
        Refuse(kGateway, kInvalidGatewayTitle, kInvalidGatewayText);
        return false;
    }
    _config.SetUseDhcp(false);
    _config.SetIpv4Address(Ipv4Address(address));
    _config.SetIpv4Netmask(Ipv4Address(mask));
    _config.SetIpv4Gateway(Ipv4Address(gateway));
    return true;
}

}  // namespace Kovo
