#include <gtest/gtest.h>

#include "platform/hostctl/IpConfig.h"
#include "platform/hostctl/NicTeamingPolicy.h"

using namespace HostCtl::Network;
using Order = std::vector<std::string>;

namespace {

NicTeamingPolicy Policy(bool explicitOrder, Order order, bool explicitMax, uint32_t max) {
    NicTeamingPolicy p;
    if (explicitOrder) p.SetUplinkOrder(order);
    if (explicitMax) p.SetMaxActiveUplinks(max);
    p.SetLoadBalancing("loadbalance_ip");
    return p;
}

}  // namespace

TEST(NicTeamingPolicyTest, FlagBitsAreFourAndSix) {
    NicTeamingPolicy p;
    EXPECT_EQ(p.GetFlags(), 0u);
    p.SetUplinkOrder({"zennic0"});
    EXPECT_EQ(p.GetFlags(), 0x10u);
    p.SetMaxActiveUplinks(1);
    EXPECT_EQ(p.GetFlags(), 0x50u);
}

TEST(NicTeamingPolicyTest, AddWithExplicitOrderAndMaximum) {
    auto next = NicTeamingPolicy::WithUplinkAdded(Policy(true, {"zennic0"}, true, 1), "zennic1");
    EXPECT_EQ(next.GetUplinkOrder(), (Order{"zennic0", "zennic1"}));
    EXPECT_EQ(next.GetMaxActiveUplinks(), 2u);
    EXPECT_TRUE(next.HasExplicitUplinkOrder());
    EXPECT_TRUE(next.HasExplicitMaxActiveUplinks());
    EXPECT_EQ(next.GetLoadBalancing(), "loadbalance_ip");  // everything else is copied
}

TEST(NicTeamingPolicyTest, AddWithoutExplicitOrderKeepsOnlyTheNewUplink) {
    // The stale order of an inherited policy must not leak into the new explicit order.
    NicTeamingPolicy inherited = Policy(false, {}, false, 0);
    inherited.SetFlags(0);
    auto next = NicTeamingPolicy::WithUplinkAdded(inherited, "zennic2");
    EXPECT_EQ(next.GetUplinkOrder(), (Order{"zennic2"}));
    EXPECT_TRUE(next.HasExplicitUplinkOrder());
    EXPECT_FALSE(next.HasExplicitMaxActiveUplinks());
    EXPECT_EQ(next.GetMaxActiveUplinks(), 0u);

    NicTeamingPolicy stale;
    stale.SetUplinkOrder({"zennic0", "zennic1"});
    stale.SetFlags(0);  // order present but not explicit
    EXPECT_EQ(NicTeamingPolicy::WithUplinkAdded(stale, "zennic3").GetUplinkOrder(), (Order{"zennic3"}));
}

TEST(NicTeamingPolicyTest, AddOfListedUplinkStillRaisesExplicitMaximum) {
    auto next = NicTeamingPolicy::WithUplinkAdded(Policy(true, {"zennic0", "zennic1"}, true, 2), "zennic1");
    EXPECT_EQ(next.GetUplinkOrder(), (Order{"zennic0", "zennic1"}));
    EXPECT_EQ(next.GetMaxActiveUplinks(), 3u);
}

TEST(NicTeamingPolicyTest, RemoveOnlyTouchesAnExplicitOrderThatListsTheUplink) {
    auto removed = NicTeamingPolicy::WithUplinkRemoved(Policy(true, {"a", "b", "c"}, true, 3), "b");
    EXPECT_EQ(removed.GetUplinkOrder(), (Order{"a", "c"}));
    EXPECT_EQ(removed.GetMaxActiveUplinks(), 2u);

    auto noMax = NicTeamingPolicy::WithUplinkRemoved(Policy(true, {"a", "b"}, false, 7), "a");
    EXPECT_EQ(noMax.GetUplinkOrder(), (Order{"b"}));
    EXPECT_FALSE(noMax.HasExplicitMaxActiveUplinks());

    // Not listed: unchanged, and the maximum is not lowered (unlike add, which always raises it).
    NicTeamingPolicy listed = Policy(true, {"a"}, true, 1);
    EXPECT_EQ(NicTeamingPolicy::WithUplinkRemoved(listed, "z"), listed);
    // No explicit order: unchanged even though the uplink appears in the stale list.
    NicTeamingPolicy stale;
    stale.SetUplinkOrder({"a"});
    stale.SetMaxActiveUplinks(4);
    stale.SetFlags(NicTeamingPolicy::FLAG_EXPLICIT_MAX_ACTIVE);
    EXPECT_EQ(NicTeamingPolicy::WithUplinkRemoved(stale, "a"), stale);
    // A maximum of zero does not wrap around.
    EXPECT_EQ(NicTeamingPolicy::WithUplinkRemoved(Policy(true, {"a"}, true, 0), "a").GetMaxActiveUplinks(),
              0u);
}

TEST(IpConfigTest, ModesAndIpv6NetworkList) {
    IpConfig c;
    c.SetUseDhcp(false, true);
    EXPECT_TRUE(c.GetIpv4UseNone());
    c.SetUseDhcp(true, true);  // DHCP wins over "none"
    EXPECT_TRUE(c.GetUseDhcp());
    EXPECT_FALSE(c.GetIpv4UseNone());
    c.SetIpv4UseNone();
    EXPECT_FALSE(c.GetUseDhcp());
    EXPECT_TRUE(c.GetIpv4UseNone());

    Ipv6Network a("2001:db8::1/64");
    Ipv6Network a2("2001:db8::1/64");
    a2.SetIpv6AddressType(IPV6_ADDRESS_DHCP);
    c.AddIpv6Network(a);
    c.AddIpv6Network(Ipv6Network("2001:db8::2/64"));
    c.AddIpv6Network(a2);  // same network: replaced, not duplicated
    ASSERT_EQ(c.GetIpv6Network().size(), 2u);
    EXPECT_EQ(c.GetIpv6Network()[0].GetIpv6AddressType(), IPV6_ADDRESS_DHCP);
    EXPECT_TRUE(c.RemoveIpv6Network(a));
    EXPECT_FALSE(c.RemoveIpv6Network(a));
    ASSERT_EQ(c.GetIpv6Network().size(), 1u);
    EXPECT_EQ(c.GetIpv6Network()[0].GetStringAddress(), "2001:db8::2");

    IpConfig copy = c;
    EXPECT_TRUE(copy == c);
    copy.SetIpv6Gateway(Ipv6Address("fe80::1"));
    EXPECT_FALSE(copy == c);
}
