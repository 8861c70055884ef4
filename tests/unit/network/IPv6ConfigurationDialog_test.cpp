#include "network/IPv6ConfigurationDialog.h"

#include <gtest/gtest.h>

#include <string>

#include "WatchedDialog.h"
#include "network/LinkLocal.h"
#include "text/InputItem.h"

namespace Kovo {
namespace {

using namespace Testing;
using namespace HostCtl::Network;
using D = IPv6ConfigurationDialog;

TEST(LinkLocal, FirstTwoBytesMatchFe80ToFebfAndFf80ToFfbf) {
    const std::pair<const char*, bool> cases[] = {
        {"fe80::1", true}, {"febf::1", true},  {"fec0::1", false}, {"fe7f::1", false}, {"ff80::1", true},
        {"ffbf::1", true}, {"ffc0::1", false}, {"ff7f::1", false}, {"fd80::1", false}, {"::1", false}};
    for (const auto& [address, linkLocal] : cases)
        EXPECT_EQ(IsLinkLocalByBytes(Ipv6Address(address)), linkLocal) << address;
}

Ipv6Network Network(const char* text, int type = IPV6_ADDRESS_STATIC, int scope = IPV6_SCOPE_GLOBAL) {
    Ipv6Network network(text);
    network.SetIpv6AddressType(type);
    network.SetIpv6Scope(scope);
    return network;
}

// The kernel's link-local address among four static networks, one of site scope; the fourth has no field.
IpConfig Host(bool routerAdvertised, bool dhcp) {
    IpConfig config;
    for (const Ipv6Network& network :
         {Network("2001:db8::10/64"), Network("fe80::2/64", IPV6_ADDRESS_OTHER, IPV6_SCOPE_LINK),
          Network("2001:db8:1::5/48"), Network("fec0::7/64", IPV6_ADDRESS_STATIC, IPV6_SCOPE_SITE),
          Network("2001:db8:3::8/64")})
        config.AddIpv6Network(network);
    config.SetIpv6Gateway(Ipv6Address("fe80::1%zk0"));
    config.SetUseIpv6RouterAdvertised(routerAdvertised);
    config.SetUseIpv6Dhcp(dhcp);
    return config;
}

// From the static choice: each field in turn gets its text, an empty one is cleared.
std::string Typed(std::initializer_list<std::string> fields) {
    std::string keys;
    for (const std::string& text : fields) keys += Keys::kDown + (text.empty() ? Keys::kBackspace : text);
    return keys;
}

class Ipv6Dialog : public NetworkDialogs {
  protected:
    const Ipv6Address gateway_{"fe80::1%zk0"};
};

TEST_F(Ipv6Dialog, OpensOnTheHostsModeAndEnterThereChangesNothing) {
    // Router advertisement and DHCPv6 together open as dynamic and stay together; static keeps every
    // network in its place, the site scope included.
    const struct {
        bool enabled, routerAdvertised, dhcp;
        D::Ordinal mode;
    } cases[] = {{false, true, true, D::kDisable},
                 {true, true, true, D::kDynamic},
                 {true, false, true, D::kDhcpv6},
                 {true, false, false, D::kStatic}};
    for (const auto& c : cases) {
        const IpConfig host = Host(c.routerAdvertised, c.dhcp);
        auto d = Run<D>("\n", c.enabled, host, gateway_);
        EXPECT_EQ(d->moments.at(0).focused, c.mode);
        EXPECT_EQ(d.result, 1);
        EXPECT_EQ(d->Enabled(), c.enabled);
        EXPECT_EQ(d->Config(), host) << c.mode;
        EXPECT_EQ(d->Gateway(), gateway_);
    }
    auto d = Run<D>(Keys::kEsc, true, Host(false, false), gateway_);
    EXPECT_EQ(d->Field(0).GetValue(), "2001:db8::10/64");
    EXPECT_EQ(d->Field(1).GetValue(), "2001:db8:1::5/48");
    EXPECT_EQ(d->Field(2).GetValue(), "fec0::7/64");
    EXPECT_EQ(d->Field(3).GetValue(), "fe80::1%zk0");
    EXPECT_EQ(Run<D>(Keys::kEsc, true, IpConfig(), Ipv6Address())->Field(3).GetValue(), "");
}

TEST_F(Ipv6Dialog, DynamicChoicesSetTheirFlagsWhateverTheFieldsHold) {
    const struct {
        bool routerAdvertised, dhcp;  // on the host
        D::Ordinal chosen;
        bool enabled, expectRouterAdvertised, expectDhcp;
    } cases[] = {{false, true, D::kDisable, false, false, true},
                 {false, true, D::kDynamic, true, true, false},
                 {true, true, D::kDhcpv6, true, false, true}};
    for (const auto& c : cases) {
        const IpConfig host = Host(c.routerAdvertised, c.dhcp);
        const int opened = c.routerAdvertised ? D::kDynamic : D::kDhcpv6;
        // Mark static, put garbage in the fields and clear the gateway, then go back up and choose.
        auto d = Run<D>(Keys::Times(D::kStatic - opened, Keys::kDown) + " " +
                            Typed({"zz::", "fe80::1/64", "", ""}) +
                            Keys::Times(4 + D::kStatic - c.chosen, Keys::kUp) + " \n",
                        true, host, gateway_);
        EXPECT_EQ(d.result, 1);
        EXPECT_EQ(d->Enabled(), c.enabled) << c.chosen;
        IpConfig expected = host;
        expected.SetUseIpv6RouterAdvertised(c.expectRouterAdvertised);
        expected.SetUseIpv6Dhcp(c.expectDhcp);
        EXPECT_EQ(d->Config(), expected) << c.chosen;
        EXPECT_EQ(d->Gateway(), gateway_) << c.chosen;
    }
}

TEST_F(Ipv6Dialog, StaticRefusalsComeInOrderWithTheFieldFocusedAndNothingStored) {
    const std::string network = "Invalid IP address", scope = "Invalid scope",
                      gateway = "Invalid gateway address";
    const struct {
        const char *address1, *address2, *address3, *gateway;
        D::Ordinal focused;
        const std::string& title;
        const char* text;
    } cases[] = {
        {"2001:db8::1", "", "", "", D::kAddress1, network,
         "Please reenter a valid IPv6 network address (x:x:x/x)."},
        // Every field's form comes before any field's scope, and the scope before the gateway.
        {"fe80::1/64", "1:2:3/64x", "", "", D::kAddress2, network, "(x:x:x/x)"},
        {"2001:db8::5/64", "", "ff80::1/64", "zz", D::kAddress3, scope,
         "Cannot add a link-local address as static address."},
        {"2001:db8::5/64", "", "", "2001:db8::1/64", D::kGateway, gateway,
         "Please reenter a valid IPv6 gateway address (x:x:x)."},
    };
    const IpConfig host = Host(false, false);
    for (const auto& c : cases) {
        auto d = Run<D>(Typed({c.address1, c.address2, c.address3, c.gateway}) + kRefused + Keys::kEsc, true,
                        host, gateway_);
        EXPECT_EQ(d.result, 0);
        EXPECT_EQ(d->Items().GetSelected(), c.focused) << c.text;
        EXPECT_TRUE(d->Showed(c.text)) << c.text;
        for (const std::string* title : {&network, &scope, &gateway})
            EXPECT_EQ(d->Showed(*title), title == &c.title) << c.text << " / " << *title;
        EXPECT_EQ(d->Config(), host);
        EXPECT_EQ(d->Gateway(), gateway_);
    }
}

TEST_F(Ipv6Dialog, StaticFieldsReplaceTheNetworksTheyShowedAndSetTheGateway) {
    // #1 replaces its network in place, cleared #2 drops one, #3 replaces the site one; the kernel's
    // address and the static one without a field stay; the gateway is cleared.
    auto d =
        Run<D>(Keys::Times(2, Keys::kDown) + " " + Typed({"fec0::1/64", "", "2001:db8:4::9/56", ""}) + "\n",
               true, Host(true, false), gateway_);
    EXPECT_EQ(d.result, 1);
    IpConfig expected;
    for (const Ipv6Network& network :
         {Network("fec0::1/64"), Network("fe80::2/64", IPV6_ADDRESS_OTHER, IPV6_SCOPE_LINK),
          Network("2001:db8:4::9/56"), Network("2001:db8:3::8/64")})
        expected.AddIpv6Network(network);
    EXPECT_EQ(d->Config(), expected);
    EXPECT_EQ(d->Gateway(), Ipv6Address());

    // With no static network to replace, a field's is added; a typed gateway keeps its zone.
    IpConfig bare;
    bare.AddIpv6Network(Network("fe80::2/64", IPV6_ADDRESS_OTHER, IPV6_SCOPE_LINK));
    auto added =
        Run<D>(Keys::Times(3, Keys::kDown) + " " + Typed({"", "2001:DB8::5/64", "", "fe80::9%zk1"}) + "\n",
               false, bare, gateway_);
    EXPECT_TRUE(added->Enabled());
    expected = bare;
    expected.AddIpv6Network(Network("2001:db8::5/64"));
    expected.SetIpv6Gateway(Ipv6Address("fe80::9%zk1"));
    EXPECT_EQ(added->Config(), expected);
    EXPECT_EQ(added->Gateway(), Ipv6Address("fe80::9%zk1"));
}

}  // namespace
}  // namespace Kovo
