// The address lines after a restart of the management network: which addresses show, and where the
// list is cut.
#include <gtest/gtest.h>

#include <string>

#include "platform/hostctl/IpConfig.h"
#include "recovery/DoRestartNetworkDialog.h"

namespace {

using HostCtl::Network::IpConfig;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv6Address;
using HostCtl::Network::Ipv6Network;

// One IPv6 entry per letter, numbered by position: L link-local (the kernel's), G static global,
// A router-advertised global, K static but link-scoped.
IpConfig Config(bool dhcp, const std::string& entries) {
    IpConfig config;
    config.SetUseDhcp(dhcp);
    config.SetIpv4Address(Ipv4Address(dhcp ? "10.0.0.77" : "10.0.0.41"));
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::string n = std::to_string(i + 1);
        const char kind = entries[i];
        Ipv6Network network(Ipv6Address((kind == 'L' ? "fe80::" : "2001:db8::") + n), 64);
        network.SetIpv6AddressType(kind == 'L'   ? HostCtl::Network::IPV6_ADDRESS_OTHER
                                   : kind == 'A' ? HostCtl::Network::IPV6_ADDRESS_AUTOCONF
                                                 : HostCtl::Network::IPV6_ADDRESS_STATIC);
        network.SetIpv6Scope(kind == 'L' || kind == 'K' ? HostCtl::Network::IPV6_SCOPE_LINK
                                                        : HostCtl::Network::IPV6_SCOPE_GLOBAL);
        config.AddIpv6Network(network);
    }
    return config;
}

std::string Line(const std::string& address) {
    return "   IP address is  " + address + "\n";
}

// IPv4 shows only without DHCP, and DHCP breaks the line before IPv6. Two IPv6 addresses at most, except
// for a list of exactly three.
TEST(RestartAddressLines, Ipv4WithoutDhcpAndTwoIpv6AddressesAtMostExceptForAListOfExactlyThree) {
    const struct {
        bool dhcp;
        const char* entries;
        std::string shown;
    } cases[] = {
        {false, "", "\n" + Line("10.0.0.41")},
        {true, "", ""},
        {true, "L", "\n"},
        {true, "LG", "\n" + Line("2001:db8::2")},
        {false, "LG", "\n" + Line("10.0.0.41") + Line("2001:db8::2")},
        {true, "LK", "\n"},
        {true, "A", "\n"},
        {true, "GG", "\n" + Line("2001:db8::1") + Line("2001:db8::2")},
        {true, "GGG", "\n" + Line("2001:db8::1") + Line("2001:db8::2") + Line("2001:db8::3")},
        {true, "LGG", "\n" + Line("2001:db8::2") + Line("2001:db8::3")},
        {true, "GGA", "\n" + Line("2001:db8::1") + Line("2001:db8::2")},
        // Cut at the second address shown, "..." even when what follows would not have shown.
        {true, "GGAA", "\n" + Line("2001:db8::1") + Line("2001:db8::2") + "   ...\n"},
        {true, "LGGGGG", "\n" + Line("2001:db8::2") + Line("2001:db8::3") + "   ...\n"},
        {true, "AGLG", "\n" + Line("2001:db8::2") + Line("2001:db8::4")},
        {true, "GKGG", "\n" + Line("2001:db8::1") + Line("2001:db8::3") + "   ...\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.entries << (c.dhcp ? " with DHCP" : ""));
        EXPECT_EQ(Kovo::DoRestartNetworkDialog::AddressLines(Config(c.dhcp, c.entries), c.dhcp), c.shown);
    }
}

}  // namespace
