// The network window's adapters and VLAN on the simulated host: what the operator chooses, the question
// before a NIC is taken from another switch, and the switch, port and interface the host then has.
#include <gtest/gtest.h>

#include "NetworkSteps.h"

namespace {

using namespace KovoE2e;
using nlohmann::json;

constexpr const char* kAdaptersMark = "Hardware Label (MAC Address)";
constexpr const char* kVlanMark = "VLAN ID (1-4094, or 4095 to access all VLANs):";
constexpr const char* kWarningTitle = "Network Adapters: Warning";

// Space on the adapter under the cursor, then the screen settled.
void Toggle(HostConsole& host) {
    host.Term().Type(" ");
    ASSERT_TRUE(host.Term().WaitForQuiet(80ms));
}

// Enter on the adapters dialog; waits for the window.
void AcceptAdapters(HostConsole& host) {
    host.Term().Press(Key::Enter);
    ASSERT_TRUE(host.Term().WaitForTextGone(kAdaptersMark)) << host.Term().Dump();
    ASSERT_TRUE(host.Term().WaitForQuiet(200ms));
}

void ApplyAndWait(HostConsole& host, size_t applied) {
    LeaveAnswering(host, "y");
    ASSERT_TRUE(BackInMenu(host)) << host.Term().Dump();
    ASSERT_TRUE(WaitForSyslogCount(host, {"]: Network settings changed."}, applied)) << host.Syslog();
}

TEST(NetworkUplinks, ChosenAdaptersGiveTheMacAndTheUplinksInTheOrderChecked) {
    auto host = MakeHost("default");
    ASSERT_TRUE(OpenNetwork(*host)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, 0, kAdaptersMark)) << host->Term().Dump();
    // Both uplinks unchecked, then zennic2 and zennic0 checked, in that order.
    Toggle(*host);
    Press(*host, Key::Down);
    Toggle(*host);
    Press(*host, Key::Down);
    Toggle(*host);
    Press(*host, Key::Up, 2);
    Toggle(*host);
    AcceptAdapters(*host);
    EXPECT_TRUE(host->Term().WaitFor([](const VirtualTerminal& screen) {
        const std::string text = screen.ScreenText();
        return text.find("zennic2 (Sample I350") < text.find("zennic0 (Sample 82599");
    })) << host->Term().Dump();
    EXPECT_EQ(StoreJson(*host, "/network/switches/0/uplinks"), json({"zennic0", "zennic1"}));

    ApplyAndWait(*host, 1);
    EXPECT_EQ(host->SyslogLines({"]: Setting adapters to zennic2 zennic0"}).size(), 1u) << host->Syslog();
    // zennic1 left, zennic2 joined after the uplink that stayed; the interface took zennic2's address.
    EXPECT_EQ(StoreJson(*host, "/network/switches/0/uplinks"), json({"zennic0", "zennic2"}));
    EXPECT_EQ(StoreJson(*host, "/network/switches/0/teaming/uplinkOrder"), json({"zennic0", "zennic2"}));
    EXPECT_EQ(StoreJson(*host, "/network/zenkNics/0/mac"), "00:1b:21:4a:20:00");

    // Every adapter unchecked: no uplink is left and the MAC address stays. The menu kept its entry.
    ASSERT_TRUE(OpenFromMenu(*host, 0, kWindowMark)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, 0, kAdaptersMark)) << host->Term().Dump();
    Toggle(*host);
    Press(*host, Key::Down, 2);
    Toggle(*host);
    AcceptAdapters(*host);
    EXPECT_TRUE(host->Term().WaitForText("No adapter")) << host->Term().Dump();
    ApplyAndWait(*host, 2);
    const auto lines = host->SyslogLines({"]: Setting adapters to"});
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(lines[1].ends_with("]: Setting adapters to")) << lines[1];
    EXPECT_EQ(StoreJson(*host, "/network/switches/0/uplinks"), json::array());
    EXPECT_EQ(StoreJson(*host, "/network/switches/0/teaming/uplinkOrder"), json::array());
    EXPECT_EQ(StoreJson(*host, "/network/zenkNics/0/mac"), "00:1b:21:4a:20:00");
}

TEST(NetworkUplinks, ANicOfAnotherSwitchIsShownAndTakenOnlyAfterTheQuestion) {
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
    host->Term().Type("d");
    ASSERT_TRUE(host->Term().WaitFor([](const VirtualTerminal& screen) {
        return screen.Contains("Adapter Details") && screen.Contains("Used By: xSwitch1");
    })) << host->Term().Dump();
    EXPECT_TRUE(host->Term().Screen().Contains("MAC Address: 00:1b:21:4a:20:01"));
    EXPECT_TRUE(host->Term().Screen().Contains("Connection Status: Disconnected"));
    ASSERT_TRUE(Acknowledge(*host, "Adapter Details"));

    Toggle(*host);
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForText("Remove these adapters from their current connections?"))
        << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitForQuiet(200ms));
    // Esc goes back to the list with the choice kept; Enter there asks again, and Enter takes the NIC.
    host->Term().Press(Key::Escape);
    ASSERT_TRUE(host->Term().WaitForTextGone(kWarningTitle)) << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitForQuiet(200ms));
    EXPECT_TRUE(host->Term().Screen().Contains("[X] zennic3")) << host->Term().Dump();
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForText(kWarningTitle)) << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitForQuiet(200ms));
    AcceptAdapters(*host);
    EXPECT_EQ(StoreJson(*host, "/network/switches/1/uplinks"), json({"zennic3"}));  // not before Y

    ApplyAndWait(*host, 1);
    EXPECT_EQ(StoreJson(*host, "/network/switches/1/uplinks"), json::array());
    EXPECT_EQ(StoreJson(*host, "/network/switches/0/uplinks"), json({"zennic0", "zennic1", "zennic3"}));
}

TEST(NetworkUplinks, VlanIsCheckedAndTheInterfaceRestartsForANewOne) {
    auto host = MakeHost("default");
    ASSERT_TRUE(OpenNetwork(*host)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kVlanDowns, kVlanMark)) << host->Term().Dump();
    // Letters never arrive.
    host->Term().Type("ab");
    TypeShown(*host, "4096");
    EXPECT_FALSE(host->Term().Screen().Contains("ab4096"));
    for (const char* refused : {"4096", "0"}) {
        SCOPED_TRACE(refused);
        if (std::string(refused) == "0") TypeShown(*host, refused);
        host->Term().Press(Key::Enter);
        ASSERT_TRUE(ShowsMessage(*host, "Invalid VLAN ID", "Please reenter a valid VLAN ID (1-4095)."))
            << host->Term().Dump();
        ASSERT_TRUE(Acknowledge(*host, "Please reenter a valid VLAN ID"));
        EXPECT_TRUE(host->Term().Screen().Contains(kVlanMark));
    }
    // 4095 takes the warning first.
    TypeShown(*host, "4095");
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(ShowsMessage(*host, "Warning", "You entered a VLAN ID of 4095.")) << host->Term().Dump();
    ASSERT_TRUE(Acknowledge(*host, "You entered a VLAN ID of 4095."));
    ASSERT_TRUE(host->Term().WaitForTextGone(kVlanMark)) << host->Term().Dump();
    EXPECT_TRUE(host->Term().WaitForText("4095")) << host->Term().Dump();
    BackToTop(*host, 0);

    ASSERT_TRUE(OpenFromMenu(*host, 0, kVlanMark)) << host->Term().Dump();
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
    Press(*host, Key::Down, kVlanDowns);
    EXPECT_TRUE(host->Term().WaitForText("Not set")) << host->Term().Dump();
    ApplyAndWait(*host, 2);
    EXPECT_EQ(StoreJson(*host, "/network/switches/0/portGroups/0/vlanId"), 0);
}

TEST(NetworkUplinks, ADistributedSwitchKeepsItsAdaptersMacAndVlanAndTakesIpAndDns) {
    auto host = MakeHost("dvs");
    ASSERT_TRUE(OpenNetwork(*host)) << host->Term().Dump();
    const std::string dvsBefore = StoreValue(*host, "/network/dvs");
    const std::string switchesBefore = StoreValue(*host, "/network/switches");
    // zennic2 chosen first (it is the standard switch's: asked and taken), and a VLAN.
    ASSERT_TRUE(OpenFromMenu(*host, 0, kAdaptersMark)) << host->Term().Dump();
    Toggle(*host);
    Press(*host, Key::Down, 2);
    Toggle(*host);
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForText(kWarningTitle)) << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitForQuiet(200ms));
    AcceptAdapters(*host);
    ASSERT_TRUE(OpenFromMenu(*host, kVlanDowns, kVlanMark)) << host->Term().Dump();
    TypeShown(*host, "30");
    Accept(*host, kVlanMark, kVlanDowns);
    EditIpv4Field(*host, 1, "10.20.30.61");
    EditSuffixes(*host, "dvs.example");

    ApplyAndWait(*host, 1);
    EXPECT_TRUE(host->SyslogLines({"]: Setting adapters to"}).empty()) << host->Syslog();
    EXPECT_TRUE(host->SyslogLines({"]: Changed vlan"}).empty()) << host->Syslog();
    EXPECT_EQ(host->SyslogLines({"]: Setting ipv4 configuration to 10.20.30.61"}).size(), 1u);
    EXPECT_EQ(StoreValue(*host, "/network/dvs"), dvsBefore);
    EXPECT_EQ(StoreValue(*host, "/network/switches"), switchesBefore);
    EXPECT_EQ(StoreJson(*host, "/network/zenkNics/0/mac"), "00:1b:21:4a:10:00");
    EXPECT_EQ(StoreJson(*host, "/network/dns/searchDomains"), json({"lab.example", "dvs.example"}));
}

}  // namespace
