#include "network/NetworkWindow.h"

#include <gtest/gtest.h>

#include "../support/Recording.h"
#include "WatchedDialog.h"
#include "text/TextArea.h"

namespace Kovo {
namespace {

using namespace Testing;

// The pane a Down reaches: the window rebuilds it for the selected entry.
class ObservedWindow : public NetworkWindow {
  public:
    using NetworkWindow::NetworkWindow;
    std::vector<std::string> panes;
    void UpdateDetails() override {
        NetworkWindow::UpdateDetails();
        panes.push_back(Details()->Text());
    }
};

class NetworkWindowTest : public ScriptedScreen {
  protected:
    std::unique_ptr<ObservedWindow> Run(const std::string& keys) {
        Type(keys);
        auto window = std::make_unique<ObservedWindow>(&root_, host_);
        window->RunModal();
        return window;
    }
    bool Wrote() const {
        for (const auto& call : host_.calls)
            if (call.rfind("DnsConfig.", 0) == 0 || call.rfind("ZenkNic.", 0) == 0 ||
                call.rfind("RoutingInfo.", 0) == 0 || call.rfind("NetworkInfo.", 0) == 0 || call == "refresh")
                return true;
        return false;
    }

    ScratchStore store_{Booted(Scenario("default"))};
    RecordingHost host_{store_.Get(), true};
    TestRootFrame root_;
};

const std::string kLeave = Keys::kEsc;
const std::string kDrop = "\tn";  // a key nothing takes first: a dialog coming to the front flushes

TEST_F(NetworkWindowTest, EachEntryShowsItsPendingValues) {
    auto window =
        Run(Keys::kDown + Keys::kDown + Keys::kDown + Keys::kDown + Keys::kDown + Keys::kDown + kLeave);
    const auto& panes = window->panes;
    ASSERT_GE(panes.size(), 7u);
    EXPECT_NE(panes[0].find("zennic0"), std::string::npos) << panes[0];
    EXPECT_NE(panes[0].find("(Sample 82599 10 Gigabit Network Connection)"), std::string::npos);
    EXPECT_NE(panes[1].find("Not set"), std::string::npos) << panes[1];  // VLAN 0
    EXPECT_NE(panes[2].find("IPv4 Address: {/color}{color:light-grey}10.20.30.41"), std::string::npos)
        << panes[2];
    EXPECT_NE(panes[2].find("Default Gateway: {/color}{color:light-grey}10.20.30.1"), std::string::npos);
    EXPECT_NE(panes[3].find("IPv6 is enabled."), std::string::npos) << panes[3];
    EXPECT_NE(panes[3].find("2001:db8:20:30:21b:21ff:fe4a:1000"), std::string::npos) << panes[3];
    EXPECT_NE(panes[4].find("Hostname: {/color}{color:light-grey}kovo-host-01.lab.example"),
              std::string::npos);
    EXPECT_NE(panes[4].find("Alternate DNS Server: {/color}{color:light-grey}10.20.30.3"), std::string::npos);
    // The host's own domain always leads the search list; there are no suffixes beyond it.
    EXPECT_NE(panes[5].find("Not set"), std::string::npos) << panes[5];
    // Down stops at the last entry.
    EXPECT_EQ(panes[6], panes[5]);
    EXPECT_FALSE(Wrote());
}

TEST_F(NetworkWindowTest, CancelledDialogsKeepThePendingRecordAndNoDropsIt) {
    // A new suffix accepted; then the IPv4 and DNS dialogs edited and cancelled, twice; then leaving:
    // Esc at the question goes back, N drops everything.
    const std::string down = Keys::kDown;
    const std::string keys = down + down + down + down + down + "\n" + "x.example\n" + Keys::kUp + Keys::kUp +
                             Keys::kUp + "\n" + down + "9.9.9.9" + Keys::kEsc + "\n" + Keys::kEsc + down +
                             down + "\n" + down + "1.1.1.1" + Keys::kEsc + kLeave + "\t" + Keys::kEsc +
                             kLeave + kDrop;
    auto window = Run(keys);
    const PendingNetwork& pending = window->Pending();
    EXPECT_EQ(pending.suffixes, "x.example");
    EXPECT_TRUE(pending.changed);
    EXPECT_EQ(pending.applied.GetIpv4Address().GetStringAddress(), "10.20.30.41");
    ASSERT_TRUE(pending.primaryDns);
    EXPECT_EQ(pending.primaryDns->GetStringAddress(), "10.20.30.2");
    EXPECT_FALSE(Wrote());
    EXPECT_EQ(store_.At("/network/dns/searchDomains"), nlohmann::json::array({"lab.example"}));
}

TEST_F(NetworkWindowTest, AnUnchangedDialogValueIsNoChange) {
    // The suffix dialog accepted as it was, the IPv4 dialog accepted as it was: Esc leaves at once.
    const std::string down = Keys::kDown;
    auto window =
        Run(down + down + down + down + down + "\n\n" + Keys::kUp + Keys::kUp + Keys::kUp + "\n\n" + kLeave);
    EXPECT_FALSE(window->Pending().changed);
    EXPECT_FALSE(Wrote());
}

TEST_F(NetworkWindowTest, ReadsEachNameServerOnceAndTheHostNameFullyQualified) {
    store_.Get()->Update([](nlohmann::json& d) {
        d["network"]["dns"]["nameServers"] = {"10.20.30.2", "10.20.30.2"};
        d["network"]["dns"]["ipv6NameServers"] = {"2001:db8::53"};
    });
    const PendingNetwork pending = PendingNetwork::Read(host_);
    ASSERT_TRUE(pending.primaryDns && pending.alternateDns);
    EXPECT_EQ(pending.primaryDns->GetStringAddress(), "10.20.30.2");
    EXPECT_EQ(pending.alternateDns->GetStringAddress(), "2001:db8::53");
    EXPECT_EQ(pending.hostname, "kovo-host-01.lab.example");

    store_.Get()->Update([](nlohmann::json& d) { d["network"]["dns"]["hostname"] = ""; });
    EXPECT_EQ(PendingNetwork::Read(host_).hostname, "");
}

TEST_F(NetworkWindowTest, UplinksAndVlanTheHostCannotTellAreUnknownAndLeftAlone) {
    store_.Get()->Update([](nlohmann::json& d) {
        d["simulation"]["faults"] = {{"VirtualSwitchInfo.GetTeamingPolicy", "policy unreadable"},
                                     {"VirtualSwitchInfo.GetPortGroupVlan", "port unreadable"}};
    });
    const std::string down = Keys::kDown;
    auto window = Run(down + down + down + down + down + "\nx.example\n" + Keys::kUp + Keys::kUp + Keys::kUp +
                      Keys::kUp + Keys::kUp + kLeave + "\ty");
    ASSERT_GE(window->panes.size(), 2u);
    EXPECT_NE(window->panes.at(0).find("Unknown"), std::string::npos) << window->panes.at(0);
    EXPECT_NE(window->panes.at(1).find("Unknown"), std::string::npos) << window->panes.at(1);
    EXPECT_TRUE(host_.Made("error: Getting uplinks failed: policy unreadable"));
    EXPECT_TRUE(host_.Made("DnsConfig.AddSearchDomain"));
    EXPECT_TRUE(host_.From("log: Setting adapters").empty());
    EXPECT_TRUE(host_.StartingWith("VirtualSwitchInfo.").empty());
}

TEST_F(NetworkWindowTest, TheAdapterListIsReplacedOnlyWhenItsOrderOrNamesDiffer) {
    // Accepted as it was: no change. Then zennic0 unchecked and checked again: it comes last now.
    auto same = Run("\n\n" + kLeave);
    EXPECT_FALSE(same->Pending().changed);
    auto reordered = Run("\n  \n" + kLeave + kDrop);
    EXPECT_TRUE(reordered->Pending().changed);
    EXPECT_EQ(reordered->Pending().adapters, (std::vector<std::string>{"zennic1", "zennic0"}));
    EXPECT_LT(reordered->panes.back().find("zennic1"), reordered->panes.back().find("zennic0"));
}

TEST_F(NetworkWindowTest, AdaptersOpenOnlyWhenTheManagementSwitchIsKnown) {
    store_.Get()->Update([](nlohmann::json& d) {
        d["simulation"]["faults"]["VirtualSwitchInfo.GetPortGroupSwitch"] = "port group lost";
    });
    // Enter opens nothing; Space, which the dialog would have taken, reaches the window and is ignored.
    auto window = Run("\n \n" + kLeave);
    EXPECT_TRUE(host_.Made("error: Getting switch name failed: port group lost"));
    EXPECT_FALSE(window->Pending().changed);
}

TEST_F(NetworkWindowTest, Ipv6EditsArePendingAndShownUntilApplied) {
    const std::string down = Keys::kDown;
    // Static with one address, the gateway left as it was.
    auto window =
        Run(down + down + down + "\n" + down + down + " " + down + "2001:db8::9/64\n" + kLeave + kDrop);
    const PendingNetwork& pending = window->Pending();
    EXPECT_TRUE(pending.changed);
    EXPECT_FALSE(pending.ipv6GatewayChanged);
    EXPECT_FALSE(pending.modes.GetUseIpv6RouterAdvertised());
    const std::string& pane = window->panes.back();
    // The router's address goes with router advertisement; the link-local address stays.
    EXPECT_NE(pane.find("2001:db8::9"), std::string::npos) << pane;
    EXPECT_EQ(pane.find("2001:db8:20:30:21b:21ff:fe4a:1000"), std::string::npos) << pane;
    EXPECT_NE(pane.find("fe80::"), std::string::npos) << pane;
    EXPECT_NE(pane.find("Default Gateway: {/color}{color:light-grey}2001:db8:20:30::1"), std::string::npos);
    EXPECT_FALSE(Wrote());

    // Switched off: the pane says what happens at the next boot.
    auto off = Run(down + down + down + "\n" + Keys::kUp + " \n" + kLeave + kDrop);
    EXPECT_TRUE(off->Pending().Ipv6StateChanges());
    EXPECT_NE(off->panes.back().find("The support for IPv6 will be enabled after the next reboot."),
              std::string::npos);
}

TEST_F(NetworkWindowTest, AHostThatCannotBeReadIsReportedAndTheWindowCloses) {
    store_.Get()->Update(
        [](nlohmann::json& d) { d["simulation"]["faults"]["ZenkNic.GetIpConfig"] = "busy"; });
    auto window = Run("\t\n");
    EXPECT_TRUE(host_.Made("error: Reading the management network failed: busy"));
    EXPECT_TRUE(window->panes.empty());

    store_.Get()->Update([](nlohmann::json& d) {
        d["simulation"]["faults"] = {{"NetworkInfo.UpdateManagementInterface", "no answer"}};
    });
    host_.calls.clear();
    window = Run("\t\n");
    EXPECT_TRUE(host_.Made("error: no answer"));
    EXPECT_TRUE(host_.Made("error: Could not get a suitable management interface"));
    EXPECT_TRUE(window->panes.empty());
    EXPECT_FALSE(Wrote());
}

}  // namespace
}  // namespace Kovo
