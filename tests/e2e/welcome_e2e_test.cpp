// The idle screen across hosts: where to manage it from, its warnings, and F4. The default host's screen
// is a golden one.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HostSteps.h"

using namespace KovoE2e;

namespace {

struct WelcomeCase {
    const char* name;
    const char* scenario;
    StoreChanges changes;
    std::vector<std::string> shown;   // each on the screen, in this order from top to bottom
    std::vector<std::string> absent;  // none of these anywhere
    const char* alert = nullptr;      // the system alert the host's store then holds
};

// The row of the first occurrence of text, or -1.
int RowOf(const VirtualTerminal& screen, const std::string& text) {
    int row = -1, column = -1;
    return screen.Find(text, row, column) ? row : -1;
}

class WelcomeScreen : public ::testing::TestWithParam<WelcomeCase> {};

TEST_P(WelcomeScreen, ShowsTheHostAsItIs) {
    const WelcomeCase& c = GetParam();
    ConsoleStart start;
    start.columns = 100;
    start.rows = 30;
    auto host = MakeHost(c.scenario, c.changes, start);
    ASSERT_TRUE(host->Term().WaitForText(c.shown.back())) << host->Term().Dump();
    const VirtualTerminal& screen = host->Term().Screen();
    int previous = -1;
    for (const std::string& text : c.shown) {
        const int row = RowOf(screen, text);
        EXPECT_GE(row, 0) << "missing: " << text << "\n" << host->Term().Dump();
        EXPECT_GE(row, previous) << "out of order: " << text << "\n" << host->Term().Dump();
        previous = row;
    }
    for (const std::string& text : c.absent)
        EXPECT_LT(RowOf(screen, text), 0) << text << "\n" << host->Term().Dump();
    if (!c.alert) return;
    const std::string store = StoreOnDisk(*host).dump();
    EXPECT_NE(store.find(c.alert), std::string::npos) << store;
}

const std::string kDhcpWarning = "Warning: DHCP lookup failed.";
const std::string kAuditWarning = "Warning: Host is running in audit mode.";

INSTANTIATE_TEST_SUITE_P(
    Hosts, WelcomeScreen,
    ::testing::Values(
        WelcomeCase{"DhcpWithoutLease",
                    "dhcp-no-lease",
                    {},
                    {"https://0.0.0.0/ (Waiting for DHCP...)", kDhcpWarning},
                    {"(STATIC)"}},
        WelcomeCase{"DhcpWithLease",
                    "default",
                    {{"/network/zenkNics/0/ipConfig/ipv4/mode", "\"dhcp\""},
                     {"/network/dhcpLeases/zk0/ipv4",
                      R"({"address": "10.20.30.77", "netmask": "255.255.255.0", "gateway": "10.20.30.1"})"}},
                    {"https://10.20.30.77/ (DHCP)"},
                    {kDhcpWarning, "(STATIC)"}},
        WelcomeCase{"AuditMode", "audit-mode", {}, {kAuditWarning}, {}},
        WelcomeCase{"OnePackageLocalhostNoIpv6",
                    "default",
                    {{"/hardware/cpu/packages", "1"},
                     {"/network/dns/hostname", "\"localhost\""},
                     {"/network/ipv6Enabled", "false"}},
                    {"Sample Xeon-class CPU 4410 @ 2.40GHz", "https://10.20.30.41/ (STATIC)"},
                    {"1 x ", "https://localhost/", "https://["}},
        WelcomeCase{"NoNetworkAdapter",
                    "no-nic",
                    {},
                    {"No compatible network adapter found. Please consult the product's Hardware",
                     "Compatibility Guide (HCG) for a list of supported adapters."},
                    {"To manage this host, go to:"},
                    "No compatible network adapter found."}),
    [](const ::testing::TestParamInfo<WelcomeCase>& info) { return std::string(info.param.name); });

// F4 switches between colours and black and white; the upper panel's dark grey becomes standout.
TEST(WelcomeScreenKeys, F4TogglesBlackAndWhite) {
    ConsoleStart start;
    start.term = "xterm-256color";
    auto host = MakeHost("default", {}, start);
    auto colour = [](const VirtualTerminal& s) {
        return s.CellAt(0, 0).bg.IsIndex(6) && !s.CellAt(0, 0).reverse;
    };
    auto mono = [](const VirtualTerminal& s) { return s.CellAt(0, 0).reverse; };
    ASSERT_TRUE(host->Term().WaitFor(colour)) << host->Term().Dump();
    host->Term().Press(Key::F4);
    EXPECT_TRUE(host->Term().WaitFor(mono)) << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitForQuiet(300ms));
    host->Term().Press(Key::F4);
    EXPECT_TRUE(host->Term().WaitFor(colour)) << host->Term().Dump();
}

}  // namespace
