#include "network/IPConfigurationDialog.h"

#include <gtest/gtest.h>

#include "WatchedDialog.h"
#include "text/InputItem.h"

namespace Kovo {
namespace {

using namespace Testing;
using HostCtl::Network::IpConfig;
using HostCtl::Network::Ipv4Address;
using D = IPConfigurationDialog;

IpConfig Config(bool dhcp) {
    IpConfig config;
    config.SetUseDhcp(dhcp);
    config.SetIpv4Address(Ipv4Address("192.168.1.10"));
    config.SetIpv4Netmask(Ipv4Address("255.255.255.0"));
    if (!dhcp) config.SetIpv4Gateway(Ipv4Address("192.168.1.1"));
    return config;
}

class IpDialog : public NetworkDialogs {};

TEST_F(IpDialog, FieldsTakeDigitsAndDotsUpToSixteenCharacters) {
    // The first digit replaces the value, letters never arrive, and at the limit only an edit makes room.
    auto d =
        Run<D>(Keys::kDown + "1a9b2.1x68.1.1.2345678" + Keys::kBackspace + "90" + Keys::kEsc, Config(false));
    EXPECT_EQ(d->Field(0).GetValue(), "192.168.1.1.2349");
}

TEST_F(IpDialog, FieldsAreSkippedUntilStaticIsMarked) {
    auto d = Run<D>(Keys::kDown + Keys::kDown + "7 " + Keys::kDown + "7" + Keys::kEsc, Config(true));
    // Focus starts on the current mode and Down stops at the last radio item until Space marks it.
    EXPECT_EQ(d->moments.at(0).focused, D::kDynamic);
    EXPECT_EQ(d->moments.at(2).focused, D::kStatic);
    EXPECT_EQ(d->Field(0).GetValue(), "7");
    EXPECT_EQ(d->Field(1).GetValue(), "255.255.255.0");
    EXPECT_EQ(d->Field(2).GetValue(), "");  // 0.0.0.0
}

TEST_F(IpDialog, StaticValuesAreStoredWhenAllThreeAreValid) {
    IpConfig none = Config(false);
    none.SetIpv4UseNone();
    auto d = Run<D>(Keys::kDown + Keys::kDown + " " + Keys::kDown + "10.0.0.5" + Keys::kDown + "255.255.0.0" +
                        Keys::kDown + "10.0.0.1\n",
                    none);
    EXPECT_EQ(d.result, 1);
    IpConfig expected = Config(false);
    expected.SetIpv4Address(Ipv4Address("10.0.0.5"));
    expected.SetIpv4Netmask(Ipv4Address("255.255.0.0"));
    expected.SetIpv4Gateway(Ipv4Address("10.0.0.1"));
    EXPECT_EQ(d->Config(), expected);
}

TEST_F(IpDialog, OnlyTheFirstInvalidValueIsReportedWithItsFieldFocused) {
    struct Case {
        const char *address, *mask, *gateway;
        int focused;
        const char *title, *text;
    };
    // An empty gateway is invalid too, but the address comes first.
    const Case cases[] = {
        {"300.1.1.1", "255.255.255.0", "", D::kAddress, "Invalid IP address",
         "Please reenter a valid IPv4 address (x.x.x.x)."},
        {"10.0.0.5", "255.0.255.0", "10.0.0.1", D::kMask, "Invalid subnet",
         "Please reenter a valid subnet (x.x.x.x)."},
        {"10.0.0.5", "255.255", "10.0.0.1", D::kMask, "Invalid subnet", "Please reenter a valid subnet"},
        {"10.0.0.5", "255.255.255.0", "10.0.0.", D::kGateway, "Invalid gateway address",
         "Please reenter a valid gateway address (x.x.x.x)."}};
    for (const Case& c : cases) {
        // From DHCP to static: neither the refusal nor Esc after it changes the configuration.
        auto d = Run<D>(Keys::kDown + " " + Keys::kDown + c.address + Keys::kDown + c.mask + Keys::kDown +
                            Keys::kBackspace + c.gateway + kRefused + Keys::kEsc,
                        Config(true));
        EXPECT_EQ(d.result, 0);
        EXPECT_EQ(d->Items().GetSelected(), c.focused) << c.title;
        EXPECT_TRUE(d->Showed(c.title)) << c.title;
        EXPECT_TRUE(d->Showed(c.text)) << c.title;
        EXPECT_EQ(d->Showed("Invalid gateway"), c.focused == D::kGateway) << c.title;
        EXPECT_EQ(d->Config(), Config(true)) << c.title;
    }
}

TEST_F(IpDialog, WithoutStaticTheFieldsAreNotReadAndTheGatewayIsCleared) {
    const std::string garbage = Keys::kDown + "1.2.3" + Keys::kDown + "9" + Keys::kUp + Keys::kUp + Keys::kUp;
    for (const bool none : {false, true}) {
        auto d = Run<D>(garbage + (none ? Keys::kUp : "") + " \n", Config(false));
        EXPECT_EQ(d.result, 1);
        IpConfig expected = Config(true);
        if (none) expected.SetIpv4UseNone();
        EXPECT_EQ(d->Config(), expected) << none;
    }
}

}  // namespace
}  // namespace Kovo
