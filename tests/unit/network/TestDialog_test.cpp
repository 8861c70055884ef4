// What "Test Management Network" offers to test, and how a test target becomes a ping command.
#include "network/TestDialog.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "../support/Recording.h"
#include "network/NetworkTest.h"
#include "platform/hostctl/ShellWords.h"

namespace Kovo {
namespace {

using namespace Testing;
using nlohmann::json;

std::vector<std::string> Pings(const TestTargets& targets) {
    return {targets.pings.begin(), targets.pings.end()};
}

class TestPrefill : public ::testing::Test {
  protected:
    TestTargets Prefill(const std::function<void(json&)>& change = {}) {
        if (change) store_.Get()->Update(change);
        return TestDialog::Prefill(host_);
    }
    ScratchStore store_{Booted(Scenario("default"))};
    RecordingHost host_{store_.Get(), true};
};

TEST_F(TestPrefill, GatewayNameServersAndNameFillTheFieldsInOrder) {
    const TestTargets targets = Prefill();
    EXPECT_EQ(Pings(targets), (std::vector<std::string>{"10.20.30.1", "10.20.30.2", "10.20.30.3"}));
    EXPECT_EQ(targets.name, "kovo-host-01.lab.example");

    // Unset values are skipped; the IPv6 gateway comes after the IPv4 servers without its zone, and the
    // IPv6 servers are asked for without the IPv4 ones, which are in already.
    const TestTargets ipv6 = Prefill([](json& d) {
        d["network"]["routing"] = {{"ipv4DefaultGateway", ""}, {"ipv6DefaultGateway", "fe80::1%zk0"}};
        d["network"]["dns"]["nameServers"] = {"10.0.0.53"};
        d["network"]["dns"]["ipv6NameServers"] = {"2001:db8::53", "2001:db8::54"};
    });
    EXPECT_EQ(Pings(ipv6), (std::vector<std::string>{"10.0.0.53", "fe80::1", "2001:db8::53"}));

    const TestTargets ipv6Off = Prefill([](json& d) { d["network"]["ipv6Enabled"] = false; });
    EXPECT_EQ(Pings(ipv6Off), (std::vector<std::string>{"10.0.0.53", "", ""}));

    const TestTargets none = Prefill([](json& d) {
        d["network"]["routing"]["ipv6DefaultGateway"] = "";
        d["network"]["dns"]["nameServers"] = json::array();
        d["network"]["dns"]["ipv6NameServers"] = json::array();
        d["network"]["ipv6Enabled"] = true;
    });
    EXPECT_EQ(Pings(none), (std::vector<std::string>{"", "", ""}));

    // The name is fully qualified only with a domain.
    EXPECT_EQ(Prefill([](json& d) { d["network"]["dns"]["domain"] = ""; }).name, "kovo-host-01");
    EXPECT_EQ(Prefill([](json& d) { d["network"]["dns"]["hostname"] = ""; }).name, "");
}

TEST_F(TestPrefill, ASettingTheHostCannotTellIsLeftOutAndLogged) {
    const TestTargets targets = Prefill([](json& d) {
        d["simulation"]["faults"]["RoutingInfo.GetZenKernelDefaultGateway"] = "routes unreadable";
    });
    EXPECT_EQ(Pings(targets), (std::vector<std::string>{"10.20.30.2", "10.20.30.3", "2001:db8:20:30::1"}));
    EXPECT_EQ(targets.name, "kovo-host-01.lab.example");
    EXPECT_TRUE(host_.Made("error: Unable to read the IPv4 default gateway to test: routes unreadable"));
}

TEST(PingCommand, LinkLocalTargetsGoOutThroughTheManagementInterface) {
    EXPECT_EQ(NetworkTest::PingTarget("fe80::1", "zk0"), "fe80::1%zk0");
    // The same byte test as everywhere: ff80::/10 counts as link-local too.
    EXPECT_EQ(NetworkTest::PingTarget("ff80::1", "zk0"), "ff80::1%zk0");
    EXPECT_EQ(NetworkTest::PingTarget("2001:db8::1", "zk0"), "2001:db8::1");
    EXPECT_EQ(NetworkTest::PingTarget("10.20.30.1", "zk0"), "10.20.30.1");
    EXPECT_EQ(NetworkTest::PingTarget("fe80::1", ""), "fe80::1");

    EXPECT_EQ(NetworkTest::PingCommand("zk0", "fe80::1%zk0"), "/bin/zenkping -c 3 -I zk0 fe80::1%zk0");
    EXPECT_EQ(NetworkTest::PingCommand("", "10.20.30.1"), "/bin/zenkping -c 3  10.20.30.1");
}

// The host's configuration names the interface; whatever it holds, a shell reading the line sees the
// words the console meant and runs nothing else.
TEST(PingCommand, AShellReadsTheInterfaceAndTargetAsOneWordEach) {
    for (const std::string interface :
         {"zk0;echo INJECTED;#", "$(echo INJECTED)", "`echo INJECTED`", "a'b"}) {
        const std::string target = NetworkTest::PingTarget("fe80::1", interface);
        std::string line = NetworkTest::PingCommand(interface, target);
        ASSERT_EQ(line.rfind("/bin/zenkping ", 0), 0u) << line;
        // The same words, printed one per line by the shell in place of the ping.
        line.replace(0, std::strlen("/bin/zenkping"), "printf '%s\\n'");
        FILE* shell = popen(("sh -c " + HostCtl::QuoteShellWord(line)).c_str(), "r");
        ASSERT_NE(shell, nullptr);
        std::string out;
        char buffer[256];
        for (size_t n; (n = fread(buffer, 1, sizeof buffer, shell)) > 0;) out.append(buffer, n);
        EXPECT_EQ(pclose(shell), 0);
        EXPECT_EQ(out, "-c\n3\n-I\n" + interface + "\nfe80::1%" + interface + "\n") << line;
    }
}

}  // namespace
}  // namespace Kovo
