#include "network/DNSConfigurationDialog.h"

#include <gtest/gtest.h>

#include "WatchedDialog.h"
#include "platform/hostctl/Ipv4Address.h"
#include "platform/hostctl/Ipv6Address.h"
#include "text/InputItem.h"

namespace Kovo {
namespace {

using namespace Testing;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv6Address;
using D = DNSConfigurationDialog;

// A host with name servers 10.0.0.53 and fe80::53%zk0, named "node1".
class DnsDialog : public NetworkDialogs {
  protected:
    Ran<D> Run(const std::string& keys, bool automatic = false) {
        return NetworkDialogs::Run<D>(keys, automatic, &primary_, &alternate_, std::string("node1"));
    }
    Ipv4Address primary_{"10.0.0.53"};
    Ipv6Address alternate_{"fe80::53%zk0"};
};

TEST_F(DnsDialog, AutomaticTakesNothingFromTheFields) {
    auto d = Run(Keys::kDown + "1:2:3:4:5:6:7:8:9" + Keys::kDown + Keys::kBackspace + Keys::kDown + "other" +
                 Keys::kUp + Keys::kUp + Keys::kUp + Keys::kUp + " \n");
    EXPECT_EQ(d.result, 1);
    EXPECT_TRUE(d->Automatic());
    EXPECT_EQ(d->Primary()->GetStringAddress(), "10.0.0.53");
    EXPECT_NE(d->Alternate(), nullptr);
    EXPECT_EQ(d->Hostname(), "node1");
}

TEST_F(DnsDialog, ServersAreStoredByFamilyAndEmptyOnesAsNone) {
    auto d = Run(Keys::kDown + " " + Keys::kDown + "::" + Keys::kDown + Keys::kBackspace + "\n", true);
    EXPECT_EQ(d.result, 1);
    EXPECT_FALSE(d->Automatic());
    ASSERT_NE(d->Primary(), nullptr);
    EXPECT_TRUE(d->Primary()->IsIpv6() && d->Primary()->IsUnspecified());
    EXPECT_EQ(d->Alternate(), nullptr);
    // Untouched, an IPv4 server stays IPv4 and an IPv6 one keeps its zone, which no key can type.
    auto untouched = Run("\n");
    EXPECT_FALSE(untouched->Primary()->IsIpv6());
    const auto* alternate = dynamic_cast<const Ipv6Address*>(untouched->Alternate());
    ASSERT_NE(alternate, nullptr);
    EXPECT_EQ(*alternate, alternate_);
}

TEST_F(DnsDialog, PrimaryIsCheckedBeforeTheAlternate) {
    auto d = Run(Keys::kDown + "1:::2" + Keys::kDown + "abc" + kRefused + "10.0.0.1" + kRefused + Keys::kEsc);
    EXPECT_EQ(d.result, 0);
    // The first report focused the primary, which took the next keys; the second focused the alternate.
    EXPECT_EQ(d->Field(0).GetValue(), "10.0.0.1");
    EXPECT_EQ(d->Items().GetSelected(), D::kAlternate);
    EXPECT_TRUE(d->Showed("Invalid DNS server address"));
    EXPECT_EQ(d->Primary()->GetStringAddress(), "10.0.0.53");
}

TEST_F(DnsDialog, TextCursorShowsOnFieldsOnly) {
    auto d = Run(Keys::kDown + Keys::kUp + Keys::kEsc);
    ASSERT_EQ(d->moments.size(), 3u);
    EXPECT_FALSE(d->moments[0].cursor);  // on "manual"
    EXPECT_TRUE(d->moments[1].cursor);   // on the primary server
    EXPECT_FALSE(d->moments[2].cursor);
}

}  // namespace
}  // namespace Kovo
