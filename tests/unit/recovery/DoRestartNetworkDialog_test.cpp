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

TEST(RestartAddressLines, Ipv4ShowsOnlyWithoutDhcpAndDhcpBreaksTheLineBeforeIpv6) {
    EXPECT_EQ(Kovo::DoRestartNetworkDialog::AddressLines(Config(false, ""), false), "\n" + Line("10.0.0.41"));
    EXPECT_EQ(Kovo::DoRestartNetworkDialog::AddressLines(Config(true, ""), true), "");
    EXPECT_EQ(Kovo::DoRestartNetworkDialog::AddressLines(Config(true, "L"), true), "\n");
    EXPECT_EQ(Kovo::DoRestartNetworkDialog::AddressLines(Config(true, "LG"), true),
              "\n" + Line("2001:db8::2"));
    EXPECT_EQ(Kovo::DoRestartNetworkDialog::AddressLines(Config(false, "LG"), false),
              "\n" + Line("10.0.0.41") + Line("2001:db8::2"));
}

TEST(RestartAddressLines, TwoAddressesAtMostExceptForAListOfExactlyThree) {
    const struct {
        const char* entries;
        std::string shown;
    } cases[] = {
        {"L", ""},
        {"LK", ""},
        {"A", ""},
        {"GG", Line("2001:db8::1") + Line("2001:db8::2")},
        {"GGG", Line("2001:db8::1") + Line("2001:db8::2") + Line("2001:db8::3")},
        {"LGG", Line("2001:db8::2") + Line("2001:db8::3")},
        {"GGA", Line("2001:db8::1") + Line("2001:db8::2")},
        // Cut at the second address shown, "..." even when what follows would not have shown.
        {"GGA"
         "A",
         Line("2001:db8::1") + Line("2001:db8::2") + "   ...\n"},
        {"LGGGGG", Line("2001:db8::2") + Line("2001:db8::3") + "   ...\n"},
        {"AGLG", Line("2001:db8::2") + Line("2001:db8::4")},
        {"GKGG", Line("2001:db8::1") + Line("2001:db8::3") + "   ...\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.entries);
        EXPECT_EQ(Kovo::DoRestartNetworkDialog::AddressLines(Config(true, c.entries), true), "\n" + c.shown);
    }
}

}  // namespace
