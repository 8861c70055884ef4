// IPv6 in the network window on the simulated host: static addresses and a gateway the host then runs,
// and switching IPv6 off, which restarts the host. The addresses the dialog refuses are the unit
// tests' business.
#include <gtest/gtest.h>

#include "NetworkSteps.h"

namespace {

using namespace KovoE2e;
using nlohmann::json;

constexpr const char* kIpv6Mark = "Set static IPv6 address";

TEST(NetworkIpv6, StaticAddressesAndGatewayAreAppliedAndShown) {
    auto host = MakeHost("default");
    ASSERT_TRUE(OpenNetwork(*host)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kIpv6Downs, kIpv6Mark)) << host->Term().Dump();
    // From the dynamic choice the host runs, to static, then the first address field.
    Press(*host, Key::Down, 2);
    host->Term().Type(" ");
    ASSERT_TRUE(host->Term().WaitForQuiet(80ms));
    Press(*host, Key::Down);
    TypeShown(*host, "2001:db8:20:30::41/64");
    Press(*host, Key::Down);
    TypeShown(*host, "fec0::41/64");
    Press(*host, Key::Down, 2);
    TypeShown(*host, "2001:db8:20:30::fe");
    Accept(*host, kIpv6Mark, kIpv6Downs);
    // Nothing reaches the host before the answer.
    EXPECT_EQ(StoreJson(*host, "/network/routing/ipv6DefaultGateway"), "2001:db8:20:30::1");

    LeaveAnswering(*host, "y");
    ASSERT_TRUE(BackInMenu(*host)) << host->Term().Dump();
    ASSERT_TRUE(host->WaitForSyslog({"]: Network settings changed."})) << host->Syslog();
    EXPECT_TRUE(InOrder(
        *host, {"]: Setting ipv6 configuration", "]: Setting default ipv6 gateway to 2001:db8:20:30::fe",
                "]: Network settings changed."}))
        << host->Syslog();
    // No reboot question: IPv6 stayed on.
    EXPECT_EQ(host->Term().Output().find(kRebootQuestion), std::string::npos);
    EXPECT_EQ(StoreJson(*host, "/network/routing/ipv6DefaultGateway"), "2001:db8:20:30::fe");
    const json ipv6 = StoreJson(*host, "/network/zenkNics/0/ipConfig/ipv6");
    EXPECT_EQ(ipv6["routerAdvertised"], false) << ipv6;
    EXPECT_EQ(ipv6["networks"].size(), 2u) << ipv6;
    EXPECT_NE(ipv6.dump().find("\"2001:db8:20:30::41\""), std::string::npos) << ipv6;

    // The welcome screen lists what the interface runs now: the static addresses, no router address.
    host->Term().Press(Key::Escape);
    EXPECT_TRUE(host->Term().WaitFor([](const VirtualTerminal& screen) {
        return screen.Contains("https://[2001:db8:20:30::41]/ (STATIC)") &&
               screen.Contains("https://[fec0::41]/ (STATIC)");
    })) << host->Term().Dump();
    EXPECT_FALSE(host->Term().Screen().Contains("2001:db8:20:30:21b:21ff:fe4a:1000"));
}

// Switching IPv6 off asks for a reboot, which shuts the virtual machines down rather than terminating
// them. (Switching it on takes the same way; the setting each writes is the unit tests' business.)
TEST(NetworkIpv6, SwitchedOffItAsksForARebootAndTheHostComesBackWithoutIpv6) {
    auto host = MakeHost("default", {}, Restarting());
    const pid_t first = host->WaitForConsole();
    ASSERT_TRUE(OpenNetwork(*host)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kIpv6Downs, kIpv6Mark)) << host->Term().Dump();
    Press(*host, Key::Up);
    host->Term().Type(" ");
    ASSERT_TRUE(host->Term().WaitForQuiet(80ms));
    Accept(*host, kIpv6Mark, kIpv6Downs);
    ASSERT_TRUE(PressFor(*host, Key::Escape, kRebootQuestion, 200ms)) << host->Term().Dump();
    host->Term().Type("y");
    ASSERT_TRUE(host->WaitForSyslog({"init: host booted again"}, 60s)) << host->Syslog();
    EXPECT_NE(host->WaitForConsole(first), 0);
    EXPECT_EQ(CommandCount(*host, {"powerOffVms", "--terminate"}), 0u) << HostRecords(*host, "commands.log");
    EXPECT_EQ(CommandCount(*host, {"\"reboot\""}), 1u) << HostRecords(*host, "commands.log");
    EXPECT_EQ(StoreJson(*host, "/network/ipv6Enabled"), false);
    EXPECT_TRUE(host->Term().WaitForText("https://10.20.30.41/ (STATIC)", 60s)) << host->Term().Dump();
    EXPECT_FALSE(host->Term().Screen().Contains("https://[")) << host->Term().Dump();
}

}  // namespace
