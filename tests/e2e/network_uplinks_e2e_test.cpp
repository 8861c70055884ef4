// The network window's adapters and VLAN on the simulated host: what the operator chooses, the question
// before a NIC is taken from another switch, and the switch, port and interface the host then has. What
// the dialogs accept and what a distributed switch keeps are the unit tests' business.
#include <gtest/gtest.h>

#include "NetworkSteps.h"

namespace {

using namespace KovoE2e;
using nlohmann::json;

constexpr const char* kAdaptersMark = "Hardware Label (MAC Address)";
constexpr const char* kVlanMark = "VLAN ID (1-4094, or 4095 to access all VLANs):";

// Space on the adapter under the cursor, then the screen settled.
void Toggle(HostConsole& host) {
    host.Term().Type(" ");
    ASSERT_TRUE(host.Term().WaitForQuiet(80ms));
}

// Enter on the adapters dialog; waits for the window.
void AcceptAdapters(HostConsole& host) {
    host.Term().Press(Key::Enter);
    ASSERT_TRUE(Closed(host, kAdaptersMark, 200ms)) << host.Term().Dump();
}

void ApplyAndWait(HostConsole& host, size_t applied) {
    LeaveAnswering(host, "y");
    ASSERT_TRUE(BackInMenu(host)) << host.Term().Dump();
    ASSERT_TRUE(WaitForSyslogCount(host, {"]: Network settings changed."}, applied)) << host.Syslog();
}

// Which adapters become uplinks in which order, and the MAC address a new first one gives the interface,
// are the unit tests' business; here a switch left without any.
TEST(NetworkUplinks, EveryAdapterUncheckedLeavesNoUplinkAndTheMacAsItWas) {
    auto host = MakeHost("default");
    ASSERT_TRUE(OpenNetwork(*host)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, 0, kAdaptersMark)) << host->Term().Dump();
    // Both uplinks, the first two rows, unchecked.
    Toggle(*host);
    Press(*host, Key::Down);
    Toggle(*host);
    AcceptAdapters(*host);
    ApplyAndWait(*host, 1);
    const auto lines = host->SyslogLines({"]: Setting adapters to"});
    ASSERT_EQ(lines.size(), 1u) << host->Syslog();
    EXPECT_TRUE(lines[0].ends_with("]: Setting adapters to")) << lines[0];
    EXPECT_EQ(StoreJson(*host, "/network/switches/0/uplinks"), json::array());
    EXPECT_EQ(StoreJson(*host, "/network/switches/0/teaming/uplinkOrder"), json::array());
    EXPECT_EQ(StoreJson(*host, "/network/zenkNics/0/mac"), "00:1b:21:4a:10:00");
}

TEST(NetworkUplinks, ANicOfAnotherSwitchIsTakenFromItAfterTheQuestion) {
    const json switches = json::parse(R"([
      {"name": "xSwitch0", "numPorts": 128, "mtu": 1500, "uplinks": ["zennic0", "zennic1"],
       "teaming": {"flags": 16, "uplinkOrder": ["zennic0", "zennic1"], "maxActiveUplinks": 0,
                   "loadBalancing": "loadbalance_srcid"},
       "portGroups": [{"name": "Management Network", "vlanId": 0}, {"name": "VM Network", "vlanId": 0}]},
      {"name": "xSwitch1", "numPorts": 64, "mtu": 1500, "uplinks": ["zennic3"],
       "teaming": {"flags": 16, "uplinkOrder": ["zennic3"], "maxActiveUplinks": 0,
                   "loadBalancing": "loadbalance_srcid"},
       "portGroups": [{"name": "Storage", "vlanId": 0}]}])");
    auto host = MakeHost("default", {{"/network/switches", switches.dump()}});
    ASSERT_TRUE(OpenNetwork(*host)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, 0, kAdaptersMark)) << host->Term().Dump();
    Press(*host, Key::Down, 3);
    Toggle(*host);
    ASSERT_TRUE(PressFor(*host, Key::Enter, "Remove these adapters from their current connections?", 200ms))
        << host->Term().Dump();
    AcceptAdapters(*host);
    EXPECT_EQ(StoreJson(*host, "/network/switches/1/uplinks"), json({"zennic3"}));  // not before Y

    ApplyAndWait(*host, 1);
    EXPECT_EQ(StoreJson(*host, "/network/switches/1/uplinks"), json::array());
    EXPECT_EQ(StoreJson(*host, "/network/switches/0/uplinks"), json({"zennic0", "zennic1", "zennic3"}));
}

TEST(NetworkUplinks, ANewVlanRestartsTheInterfaceAndAnEmptyFieldTakesItAway) {
    auto host = MakeHost("default");
    ASSERT_TRUE(OpenNetwork(*host)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kVlanDowns, kVlanMark)) << host->Term().Dump();
    TypeShown(*host, "20");
    Accept(*host, kVlanMark, kVlanDowns);
    ApplyAndWait(*host, 1);
    EXPECT_EQ(host->SyslogLines({"]: Changed vlan, restarting management interface"}).size(), 1u)
        << host->Syslog();
    EXPECT_EQ(StoreJson(*host, "/network/switches/0/portGroups/0/vlanId"), 20);

    // An empty field takes the VLAN away.
    ASSERT_TRUE(OpenFromMenu(*host, 0, kWindowMark)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kVlanDowns, kVlanMark)) << host->Term().Dump();
    Press(*host, Key::Backspace, 2);
    Accept(*host, kVlanMark, kVlanDowns);
    ApplyAndWait(*host, 2);
    EXPECT_EQ(StoreJson(*host, "/network/switches/0/portGroups/0/vlanId"), 0);
}

}  // namespace
