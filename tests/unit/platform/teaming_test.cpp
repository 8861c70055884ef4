#include <gtest/gtest.h>

#include "platform/hostctl/IpConfig.h"
#include "platform/hostctl/NicTeamingPolicy.h"

using namespace HostCtl::Network;
using Order = std::vector<std::string>;

namespace {

constexpr uint32_t kOrder = NicTeamingPolicy::FLAG_EXPLICIT_ORDER;
constexpr uint32_t kMax = NicTeamingPolicy::FLAG_EXPLICIT_MAX_ACTIVE;
// A bit neither rule knows: it must be carried over like every other setting.
constexpr uint32_t kOther = 1u << 0;

// Order and maximum are stored whether or not their flags say they are explicit, so a rule that read a
// stale value, or changed one it should have left alone, shows in the result.
NicTeamingPolicy Policy(uint32_t flags, Order order, uint32_t max) {
    NicTeamingPolicy p;
    p.SetUplinkOrder(order);
    p.SetMaxActiveUplinks(max);
    p.SetLoadBalancing("loadbalance_ip");
    p.SetFlags(flags);
    return p;
}

// The flag combinations of a current policy, and whether it lists the uplink the rule is given.
struct Case {
    bool explicitOrder, explicitMax, listed;
    Order order;   // expected
    uint32_t max;  // expected
};

uint32_t FlagsOf(const Case& c) {
    return kOther | (c.explicitOrder ? kOrder : 0) | (c.explicitMax ? kMax : 0);
}

std::string Name(const Case& c) {
    return std::string(c.explicitOrder ? "explicit order" : "inherited order") +
           (c.explicitMax ? ", explicit maximum" : ", inherited maximum") +
           (c.listed ? ", listed" : ", not listed");
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

TEST(NicTeamingPolicyTest, AddingMakesTheOrderExplicitAndRaisesOnlyAnExplicitMaximum) {
    // zennic1 joins. An inherited order restarts empty, so the result lists zennic1 alone; an explicit
    // maximum grows even when zennic1 was listed already.
    const Case cases[] = {
        {true, true, true, {"zennic1", "zennic0"}, 4},
        {true, true, false, {"zennic0", "zennic1"}, 4},
        {true, false, true, {"zennic1", "zennic0"}, 3},
        {true, false, false, {"zennic0", "zennic1"}, 3},
        {false, true, true, {"zennic1"}, 4},
        {false, true, false, {"zennic1"}, 4},
        {false, false, true, {"zennic1"}, 3},
        {false, false, false, {"zennic1"}, 3},
    };
    for (const Case& c : cases) {
        // A listed uplink keeps its place and is not listed twice.
        const Order current = c.listed ? Order{"zennic1", "zennic0"} : Order{"zennic0"};
        const NicTeamingPolicy expected = Policy(FlagsOf(c) | kOrder, c.order, c.max);
        EXPECT_EQ(NicTeamingPolicy::WithUplinkAdded(Policy(FlagsOf(c), current, 3), "zennic1"), expected)
            << Name(c);
    }
}

TEST(NicTeamingPolicyTest, RemovingChangesOnlyAnExplicitOrderThatListsTheUplink) {
    // zennic1 leaves. Unlike adding, the maximum is lowered only when zennic1 was taken out of the order.
    const Case cases[] = {
        {true, true, true, {"zennic0", "zennic2"}, 2},
        {true, true, false, {"zennic0", "zennic2"}, 3},
        {true, false, true, {"zennic0", "zennic2"}, 3},
        {true, false, false, {"zennic0", "zennic2"}, 3},
        {false, true, true, {"zennic0", "zennic1", "zennic2"}, 3},
        {false, true, false, {"zennic0", "zennic2"}, 3},
        {false, false, true, {"zennic0", "zennic1", "zennic2"}, 3},
        {false, false, false, {"zennic0", "zennic2"}, 3},
    };
    for (const Case& c : cases) {
        const Order current = c.listed ? Order{"zennic0", "zennic1", "zennic2"} : Order{"zennic0", "zennic2"};
        const NicTeamingPolicy expected = Policy(FlagsOf(c), c.order, c.max);
        EXPECT_EQ(NicTeamingPolicy::WithUplinkRemoved(Policy(FlagsOf(c), current, 3), "zennic1"), expected)
            << Name(c);
    }
}

TEST(NicTeamingPolicyTest, RemovingUnderAMaximumOfZeroDoesNotWrap) {
    const auto next = NicTeamingPolicy::WithUplinkRemoved(Policy(kOrder | kMax, {"zennic1"}, 0), "zennic1");
    EXPECT_EQ(next, Policy(kOrder | kMax, {}, 0));
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
