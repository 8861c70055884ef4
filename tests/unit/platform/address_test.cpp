#include <gtest/gtest.h>

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/IpAddress.h"
#include "platform/hostctl/Ipv4Address.h"
#include "platform/hostctl/Ipv6Address.h"
#include "platform/hostctl/Ipv6Network.h"

using namespace HostCtl::Network;
using HostCtl::Lib::HostCtlException;

TEST(Ipv4AddressTest, ValidityFollowsStrictDottedQuad) {
    for (const char* good : {"0.0.0.0", "10.0.0.1", "192.168.1.254", "255.255.255.255", "1.2.3.4"}) {
        EXPECT_TRUE(Ipv4Address::IsValidAddress(good)) << good;
    }
    for (const char* bad :
         {"", "1.2.3", "1.2.3.4.5", "256.1.1.1", "1.2.3.-1", "01.2.3.4", "1.2.3.4 ", " 1.2.3.4", "0x1.2.3.4",
          "1..3.4", "a.b.c.d", "1.2.3.4/24", "1234", "::1", "1.2.3.04", "999.999.999.999"}) {
        EXPECT_FALSE(Ipv4Address::IsValidAddress(bad)) << bad;
    }
    EXPECT_FALSE(Ipv4Address::IsValidAddress(std::string("1.2.3.4\0junk", 12)));
}

TEST(Ipv4AddressTest, RoundTripsTextAndRejectsGarbageByException) {
    EXPECT_EQ(Ipv4Address("192.168.10.7").GetStringAddress(), "192.168.10.7");
    EXPECT_EQ(Ipv4Address("192.168.10.7").GetHostOrder(), 0xC0A80A07u);
    EXPECT_EQ(Ipv4Address().GetStringAddress(), "0.0.0.0");
    EXPECT_TRUE(Ipv4Address().IsUnspecified());
    EXPECT_THROW(Ipv4Address("300.1.1.1"), HostCtlException);
    EXPECT_EQ(Ipv4Address("10.0.0.1"), Ipv4Address::FromHostOrder(0x0A000001u));
}

TEST(Ipv4AddressTest, NetmaskNeedsContiguousLeadingOnes) {
    struct Case {
        const char* mask;
        int prefix;
    };
    for (const Case& c : {Case{"255.255.255.0", 24}, Case{"255.255.255.255", 32}, Case{"128.0.0.0", 1},
                          Case{"255.255.252.0", 22}, Case{"255.255.255.254", 31}, Case{"255.0.0.0", 8}}) {
        Ipv4Address mask(c.mask);
        EXPECT_TRUE(mask.IsValidNetmask()) << c.mask;
        EXPECT_EQ(mask.GetPrefixLength(), c.prefix) << c.mask;
        EXPECT_EQ(Ipv4Address::FromPrefixLength(c.prefix), mask) << c.mask;
    }
    // Well-formed addresses that are not masks: holes, ones at the bottom, nothing at all.
    for (const char* bad : {"255.0.255.0", "0.0.0.255", "255.255.255.253", "0.0.0.0", "192.168.1.1",
                            "254.255.255.0", "127.0.0.1"}) {
        EXPECT_TRUE(Ipv4Address::IsValidAddress(bad)) << bad;
        EXPECT_FALSE(Ipv4Address(bad).IsValidNetmask()) << bad;
    }
}

TEST(Ipv6AddressTest, ValidityFollowsInetPtonWithOptionalZone) {
    for (const char* good : {"::", "::1", "fe80::1", "febf::1", "fec0::1", "ff80::1", "2001:db8::42",
                             "2001:0db8:0000:0000:0000:0000:0000:0001", "::ffff:192.0.2.1", "fe80::1%zk0",
                             "fe80::1%eth0.100", "FE80::ABCD"}) {
        EXPECT_TRUE(Ipv6Address::IsValidAddress(good)) << good;
    }
    for (const char* bad : {"", ":", ":::", "1::2::3", "2001:db8::g", "12345::", "fe80::1%", "fe80::1%a b",
                            "fe80::1%verylonginterfacename", "192.168.1.1", "2001:db8::/64", "[::1]",
                            "1:2:3:4:5:6:7:8:9", " ::1"}) {
        EXPECT_FALSE(Ipv6Address::IsValidAddress(bad)) << bad;
    }
}

TEST(Ipv6AddressTest, CanonicalTextScopeAndEquality) {
    Ipv6Address a("2001:0DB8:0:0:0:0:0:0001");
    EXPECT_EQ(a.GetStringAddress(), "2001:db8::1");
    EXPECT_EQ(a.GetScopedStringAddress(), "2001:db8::1");
    Ipv6Address scoped("fe80::0001%zk0");
    EXPECT_EQ(scoped.GetStringAddress(), "fe80::1");
    EXPECT_EQ(scoped.GetScopedStringAddress(), "fe80::1%zk0");
    EXPECT_TRUE(scoped.IsLinkLocalUnicast());
    EXPECT_FALSE(Ipv6Address("fec0::1").IsLinkLocalUnicast());

    EXPECT_TRUE(a == Ipv6Address("2001:db8::1"));
    EXPECT_FALSE(scoped == Ipv6Address("fe80::1"));  // the zone is part of the identity
    EXPECT_FALSE(a == Ipv6Address("2001:db8::2"));
    EXPECT_TRUE(Ipv6Address() == Ipv6Address("::"));
    EXPECT_TRUE(Ipv6Address().IsUnspecified());
    EXPECT_THROW(Ipv6Address("fe80::1::2"), HostCtlException);
}

TEST(Ipv6NetworkTest, NeedsAddressAndPrefixLength) {
    for (const char* good : {"2001:db8::1/64", "fe80::1/64", "fec0::1/10", "::/128", "2001:db8::/1",
                             "2001:db8::1/128", "ff80::1/64"}) {
        EXPECT_TRUE(Ipv6Network::IsValidAddressAndNetmask(good)) << good;
    }
    for (const char* bad : {"2001:db8::1", "2001:db8::1/", "2001:db8::1/0", "2001:db8::1/129",
                            "2001:db8::1/-1", "2001:db8::1/+64", "2001:db8::1/64/64", "2001:db8::1/6a", "/64",
                            "10.0.0.1/24", "fe80::1%zk0/64", "2001:db8::1/0064", "2001:db8::1 /64"}) {
        EXPECT_FALSE(Ipv6Network::IsValidAddressAndNetmask(bad)) << bad;
    }
    Ipv6Network net("2001:DB8::5/64");
    EXPECT_EQ(net.GetStringAddress(), "2001:db8::5");
    EXPECT_EQ(net.GetStringNetwork(), "2001:db8::5/64");
    EXPECT_EQ(net.GetPrefixLength(), 64);
    EXPECT_THROW(Ipv6Network("2001:db8::5"), HostCtlException);
}

TEST(Ipv6NetworkTest, ScopeFollowsAddressBits) {
    EXPECT_EQ(Ipv6Network("fe80::1/64").GetIpv6Scope(), IPV6_SCOPE_LINK);
    EXPECT_EQ(Ipv6Network("febf::1/64").GetIpv6Scope(), IPV6_SCOPE_LINK);
    EXPECT_EQ(Ipv6Network("fec0::1/64").GetIpv6Scope(), IPV6_SCOPE_SITE);
    EXPECT_EQ(Ipv6Network("2001:db8::1/64").GetIpv6Scope(), IPV6_SCOPE_GLOBAL);
    EXPECT_EQ(Ipv6Network("ff02::1/64").GetIpv6Scope(), IPV6_SCOPE_LINK);
    EXPECT_EQ(Ipv6Network("ff0e::1/64").GetIpv6Scope(), IPV6_SCOPE_GLOBAL);
}

TEST(IpAddressTest, ParsePicksTheFamilyOrNothing) {
    auto v4 = IpAddress::Parse("10.1.2.3");
    ASSERT_NE(v4, nullptr);
    EXPECT_FALSE(v4->IsIpv6());
    EXPECT_EQ(v4->GetStringAddress(), "10.1.2.3");
    auto v6 = IpAddress::Parse("::");
    ASSERT_NE(v6, nullptr);
    EXPECT_TRUE(v6->IsIpv6());
    EXPECT_TRUE(v6->IsUnspecified());
    EXPECT_EQ(IpAddress::Parse("example.com"), nullptr);
    EXPECT_EQ(IpAddress::Parse("10.1.2"), nullptr);
    auto copy = v4->Clone();
    EXPECT_EQ(copy->GetStringAddress(), "10.1.2.3");
}
