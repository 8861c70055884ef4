#include "network/TestDialog.h"

#include <functional>
#include <vector>

#include "frames/Footers.h"
#include "frames/Log.h"
#include "frames/MessageDialog.h"
#include "network/RunTestDialog.h"
#include "platform/hostctl/DnsConfig.h"
#include "platform/hostctl/Ipv4Address.h"
#include "platform/hostctl/Ipv6Address.h"
#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/RoutingInfo.h"
#include "terminal/Keys.h"
#include "text/InputItem.h"
#include "text/ItemList.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

namespace {

using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv6Address;

// The longest address text (IPv6 with an IPv4 tail) is 45 characters; a fully qualified name 253.
constexpr int kAddressLength = 45;
constexpr int kNameLength = 253;
constexpr int kFieldWidth = 45;

// One source of ping addresses; a host that cannot tell it gives none.
void Gather(std::vector<std::string>& into, const char* what,
            const std::function<std::vector<std::string>()>& read) {
    try {
        for (std::string address : read()) {
            // A zone belongs to the host's side of a link-local address; the test adds its own.
            address = address.substr(0, address.find('%'));
            if (!address.empty() && address != "0.0.0.0" && address != "::") into.push_back(address);
        }
    } catch (const std::exception& e) {
        LogFailure(std::string("Unable to read the ") + what + " to test: ", e);
    }
}

}  // namespace

TestTargets TestDialog::Prefill(HostAccess& host) {
    std::vector<std::string> addresses;
    Gather(addresses, "IPv4 default gateway",
           [&] { return std::vector{host.Routing()->GetZenKernelDefaultGateway().GetStringAddress()}; });
    Gather(addresses, "IPv4 name servers", [&] { return host.Dns()->GetNameServers(); });
    bool ipv6 = false;
    try {
        ipv6 = host.Network()->IsZenkIpv6Enabled();
    } catch (const std::exception& e) {
        LogFailure("Unable to read the IPv6 state: ", e);
    }
    if (ipv6) {
        Gather(addresses, "IPv6 default gateway", [&] {
            return std::vector{host.Routing()->GetIpv6ZenKernelDefaultGateway().GetStringAddress()};
        });
        // The IPv4 servers are in already: asking for them again would ping them twice.
        Gather(addresses, "IPv6 name servers", [&] { return host.Dns()->GetIpv6NameServers(false); });
    }
    TestTargets targets;
    for (std::size_t i = 0; i < targets.pings.size() && i < addresses.size(); ++i)
        targets.pings[i] = addresses[i];
    try {
        auto dns = host.Dns();
        const std::string name = dns->GetHostname();
        const std::string domain = dns->GetDomain();
        targets.name = name.empty() || domain.empty() ? name : name + "." + domain;
    } catch (const std::exception& e) {
        LogFailure("Unable to read the host name to test: ", e);
    }
    return targets;
}

TestDialog::TestDialog(Frame* parent, HostAccess& host)
    : Dialog(parent,
             {76, 15, 6, StringId::TestNetworkTitle, StringId::TestNetworkText, Footer::kSelectOkCancel}),
      _host(host) {
    const TestTargets prefill = Prefill(host);
    for (std::size_t i = 0; i < _pings.size(); ++i) {
        // Numbered, so a refused address can be told apart.
        _pings[i] = &AddField(
            Strings()->GetString(StringId::PingAddressLabel) + std::string(" #") + std::to_string(i + 1),
            prefill.pings[i], kFieldWidth, FieldKeys::DnsAddress, kAddressLength);
    }
    _name = &AddField(Strings()->GetString(StringId::ResolveHostnameLabel), prefill.name, kFieldWidth,
                      FieldKeys::HostName, kNameLength);
    ShowItems();
}

TestTargets TestDialog::Targets() const {
    TestTargets targets;
    for (std::size_t i = 0; i < _pings.size(); ++i) targets.pings[i] = _pings[i]->GetValue();
    targets.name = _name->GetValue();
    return targets;
}

int TestDialog::HandleKey() {
    return RunWithCursor(0);
}

bool TestDialog::OnKey(int key) {
    if (!IsEnter(key)) return false;
    for (std::size_t i = 0; i < _pings.size(); ++i) {
        const std::string& text = _pings[i]->GetValue();
        if (text.empty() || Ipv4Address::IsValidAddress(text) || Ipv6Address::IsValidAddress(text)) continue;
        // Focused anew, the field takes the next address in place of the refused one.
        Focus(static_cast<int>(i));
        MessageDialog(this, StringId::InvalidIpAddressTitle, StringId::InvalidIpOrIpv6AddressText).RunModal();
        Items().Draw();
        return true;
    }
    std::string interface;
    try {
        interface = _host.Network()->GetManagementInterfaceName();
    } catch (const std::exception& e) {
        // The host then picks the route itself.
        LogFailure("Unable to read the management interface's name: ", e);
    }
    SetCursor(false);
    RunTestDialog(this, Targets(), interface, _host).RunModal();
    Close(1);
    return true;
}

}  // namespace Kovo
