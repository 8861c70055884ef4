#include "network/DNSConfigurationDialog.h"

#include "platform/hostctl/Ipv4Address.h"
#include "platform/hostctl/Ipv6Address.h"
#include "text/InputItem.h"
#include "text/StringIds.h"

namespace Kovo {

namespace {

using HostCtl::Network::IpAddress;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv6Address;

// The longest IPv6 text (an IPv4 tail included) is 45 characters: an address always shows whole.
constexpr int kAddressLength = 45;
// A fully qualified name is at most 253 characters; the field scrolls through it.
constexpr int kHostnameLength = 253;
constexpr int kFieldWidth = 45;

// A server's text. An IPv6 server keeps its zone: the field cannot type one, and Enter must not drop it.
std::string Shown(const IpAddress* server) {
    if (!server) return {};
    if (const auto* v6 = dynamic_cast<const Ipv6Address*>(server)) return v6->GetScopedStringAddress();
    return server->GetStringAddress();
}

std::unique_ptr<IpAddress> CopyOf(const IpAddress* server) {
    return server ? server->Clone() : nullptr;
}

bool IsValidServer(const std::string& text) {
    return text.empty() || Ipv6Address::IsValidAddress(text) || Ipv4Address::IsValidAddress(text);
}

std::unique_ptr<IpAddress> ServerOf(const std::string& text) {
    if (text.empty()) return nullptr;
    if (Ipv6Address::IsValidAddress(text)) return std::make_unique<Ipv6Address>(text);
    return std::make_unique<Ipv4Address>(text);
}

}  // namespace

DNSConfigurationDialog::DNSConfigurationDialog(Frame* parent, bool automatic, const IpAddress* primary,
                                               const IpAddress* alternate, const std::string& hostname)
    : ModeFieldsDialog(parent, 78, 16, 6, StringId::DnsConfigurationTitle, StringId::DnsConfigurationText),
      _automatic(automatic),
      _primary(CopyOf(primary)),
      _alternate(CopyOf(alternate)),
      _hostname(hostname) {
    AddModes({StringId::DnsAutomaticCaption, StringId::DnsManualCaption}, automatic ? kAutomatic : kManual);
    AddModeField(StringId::PrimaryDnsServerLabel, Shown(primary), kFieldWidth, FieldKeys::DnsAddress,
                 kAddressLength);
    AddModeField(StringId::AlternateDnsServerLabel, Shown(alternate), kFieldWidth, FieldKeys::DnsAddress,
                 kAddressLength);
    AddModeField(StringId::HostnameLabel, hostname, kFieldWidth, FieldKeys::HostName, kHostnameLength);
    ShowModes(kManual);
}

bool DNSConfigurationDialog::Accept() {
    if (Mode() == kAutomatic) {
        _automatic = true;
        return true;
    }
    const std::string& primary = Field(0).GetValue();
    const std::string& alternate = Field(1).GetValue();
    if (!IsValidServer(primary)) {
        Refuse(kPrimary, StringId::InvalidDnsServerTitle, StringId::InvalidDnsServerText);
        return false;
    }
    if (!IsValidServer(alternate)) {
        Refuse(kAlternate, StringId::InvalidDnsServerTitle, StringId::InvalidDnsServerText);
        return false;
    }
    _automatic = false;
    _primary = ServerOf(primary);
    _alternate = ServerOf(alternate);
    _hostname = Field(2).GetValue();
    return true;
}

}  // namespace Kovo
