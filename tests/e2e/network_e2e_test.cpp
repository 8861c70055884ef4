// The management network window of the real console on the simulated host: what the operator edits, what
// the confirmation does with it, and what the host runs afterwards (its store, its resolver files, its
// addresses), with the log lines and commands in order. A failing step, which step fails with which line
// and that nothing after it but the refresh runs, is the unit tests' business, as is Esc leaving a window
// without changes at once (NetworkWindowTest.AnUnchangedDialogValueIsNoChange).
#include <gtest/gtest.h>

#include "NetworkSteps.h"

namespace {

using namespace KovoE2e;

TEST(NetworkWindow, StaticAddressAppliedWithYesIsWhatTheHostRuns) {
    auto host = MakeHost("default");
    ASSERT_TRUE(OpenNetwork(*host)) << host->Term().Dump();
    EditIpv4Field(*host, 1, "10.20.30.50");
    // Nothing reached the host yet.
    EXPECT_EQ(StoreValue(*host, "/network/zenkNics/0/ipConfig/ipv4/address"), "\"10.20.30.41\"");

    LeaveAnswering(*host, "y");
    ASSERT_TRUE(BackInMenu(*host)) << host->Term().Dump();
    ASSERT_TRUE(host->WaitForSyslog({"]: Network settings changed."})) << host->Syslog();
    // Every step's line, in order, is the unit tests' business; here that they reach the host's log.
    EXPECT_TRUE(InOrder(
        *host, {"user.info KOVO[", "]: Setting ipv4 configuration to 10.20.30.50 255.255.255.0 on zk0",
                "]: Network settings changed."}))
        << host->Syslog();
    EXPECT_EQ(CommandCount(*host, {R"("internalsvc/refresh")"}), 1u) << HostRecords(*host, "commands.log");
    EXPECT_EQ(StoreValue(*host, "/network/zenkNics/0/running/ipv4/address"), "\"10.20.30.50\"");

    // The host runs the new address: it answers inside the host, the old one does not.
    EXPECT_TRUE(host->Term().WaitUntil([&] { return Answers(*host, "10.20.30.50"); }, 10000ms));
    EXPECT_FALSE(Answers(*host, "10.20.30.41"));
    host->Term().Press(Key::Escape);
    EXPECT_TRUE(host->Term().WaitForText("https://10.20.30.50/ (STATIC)")) << host->Term().Dump();
}

TEST(NetworkWindow, DhcpChosenTakesTheLeaseTheNetworkOffers) {
    auto host = MakeHost("dhcp-server");
    ASSERT_TRUE(OpenNetwork(*host)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kIpv4Downs, kStaticChoice)) << host->Term().Dump();
    Press(*host, Key::Up);
    host->Term().Type(" ");
    ASSERT_TRUE(host->Term().WaitForQuiet(100ms));
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(Closed(*host, kStaticChoice, 200ms)) << host->Term().Dump();

    LeaveAnswering(*host, "Y");
    ASSERT_TRUE(BackInMenu(*host)) << host->Term().Dump();
    ASSERT_TRUE(host->WaitForSyslog({"]: Network settings changed."})) << host->Syslog();
    EXPECT_EQ(host->SyslogLines({"]: Switching to DHCP on zk0"}).size(), 1u) << host->Syslog();
    EXPECT_TRUE(host->SyslogLines({"]: Setting default gateway"}).empty()) << host->Syslog();
    EXPECT_EQ(StoreValue(*host, "/network/zenkNics/0/running/ipv4/address"), "\"10.20.30.77\"");
    host->Term().Press(Key::Escape);
    EXPECT_TRUE(host->Term().WaitForText("https://10.20.30.77/ (DHCP)")) << host->Term().Dump();
    EXPECT_TRUE(host->Term().WaitUntil([&] { return Answers(*host, "10.20.30.77"); }, 10000ms));
}

TEST(NetworkWindow, NameServersHostNameAndSuffixesReachTheResolver) {
    auto host = MakeHost("default");
    ASSERT_TRUE(OpenNetwork(*host)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kDnsDowns, "Use the following DNS server")) << host->Term().Dump();
    Press(*host, Key::Down);
    TypeShown(*host, "10.20.30.9");
    Press(*host, Key::Down);
    TypeShown(*host, "2001:db8::53");
    Press(*host, Key::Down);
    // "_" and "/" are not host-name characters: they never arrive.
    host->Term().Type("node_b/.other");
    TypeShown(*host, ".example");
    Accept(*host, "Use the following DNS server", kDnsDowns);
    EditSuffixes(*host, "a.example, b.example  c.example");

    LeaveAnswering(*host, "y");
    ASSERT_TRUE(BackInMenu(*host)) << host->Term().Dump();
    ASSERT_TRUE(host->WaitForSyslog({"]: Network settings changed."})) << host->Syslog();
    // What each setting does to the host's configuration is the unit tests' business; the host's resolver
    // and name files follow the saved configuration.
    ASSERT_TRUE(host->Term().WaitUntil(
        [&] {
            return HostFile(*host, "/etc/resolv.conf").find("nameserver 10.20.30.9") != std::string::npos;
        },
        10000ms))
        << HostFile(*host, "/etc/resolv.conf");
    const std::string resolver = HostFile(*host, "/etc/resolv.conf");
    EXPECT_NE(resolver.find("search other.example a.example b.example c.example"), std::string::npos)
        << resolver;
    EXPECT_NE(resolver.find("nameserver 2001:db8::53"), std::string::npos) << resolver;
    EXPECT_EQ(resolver.find("10.20.30.2"), std::string::npos) << resolver;
    EXPECT_EQ(HostFile(*host, "/etc/hostname"), "nodeb\n");
}

TEST(NetworkWindow, AnInterfaceGoneSinceTheMenuWasBuiltIsReported) {
    auto host = MakeHost("default");
    ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << host->Term().Dump();
    ASSERT_TRUE(SetStore(*host, "/network/zenkNics", "[]"));
    ASSERT_TRUE(OpenFromMenu(*host, kNetworkDowns, "Management network interface cannot be found."))
        << host->Term().Dump();
    ASSERT_TRUE(Acknowledge(*host, "Management network interface cannot be found."));
    EXPECT_TRUE(host->Term().WaitFor(MenuShown)) << host->Term().Dump();
    EXPECT_EQ(host->SyslogLines({"user.err", "]: Could not get a suitable management interface"}).size(), 1u);
}

}  // namespace
