#include "network/NetworkWindow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../support/Recording.h"
#include "WatchedDialog.h"
#include "network/ApplyChangesDialog.h"
#include "text/TextArea.h"

namespace Kovo {
namespace {

using namespace Testing;
using ::testing::HasSubstr;

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

const std::string kLeave = Keys::kEsc, kDown = Keys::kDown, kUp = Keys::kUp;
using Keys::Times;
const std::string kDrop = "\tn";  // a key nothing takes first: a dialog coming to the front flushes

TEST_F(NetworkWindowTest, EachEntryShowsItsPendingValues) {
    auto window = Run(Times(6, kDown) + kLeave);
    const auto& panes = window->panes;
    ASSERT_GE(panes.size(), 7u);
    EXPECT_THAT(panes[0], HasSubstr("zennic0"));
    EXPECT_THAT(panes[0], HasSubstr("(Sample 82599 10 Gigabit Network Connection)"));
    EXPECT_THAT(panes[1], HasSubstr("Not set"));  // VLAN 0
    EXPECT_THAT(panes[2], HasSubstr("IPv4 Address: {/color}{color:light-grey}10.20.30.41"));
    EXPECT_THAT(panes[2], HasSubstr("Default Gateway: {/color}{color:light-grey}10.20.30.1"));
    EXPECT_THAT(panes[3], HasSubstr("IPv6 is enabled."));
    EXPECT_THAT(panes[3], HasSubstr("2001:db8:20:30:21b:21ff:fe4a:1000"));
    EXPECT_THAT(panes[4], HasSubstr("Hostname: {/color}{color:light-grey}kovo-host-01.lab.example"));
    EXPECT_THAT(panes[4], HasSubstr("Alternate DNS Server: {/color}{color:light-grey}10.20.30.3"));
    // The host's own domain always leads the search list; there are no suffixes beyond it.
    EXPECT_THAT(panes[5], HasSubstr("Not set"));
    // Down stops at the last entry.
    EXPECT_EQ(panes[6], panes[5]);
    EXPECT_FALSE(Wrote());
}

TEST_F(NetworkWindowTest, CancelledDialogsKeepThePendingRecordAndNoDropsIt) {
    // A new suffix accepted; then the IPv4 and DNS dialogs edited and cancelled, twice; then leaving:
    // Esc at the question goes back, N drops everything.
    const std::string keys = Times(5, kDown) + "\nx.example\n" + Times(3, kUp) + "\n" + kDown + "9.9.9.9" +
                             Keys::kEsc + "\n" + Keys::kEsc + Times(2, kDown) + "\n" + kDown + "1.1.1.1" +
                             Keys::kEsc + kLeave + "\t" + Keys::kEsc + kLeave + kDrop;
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
    auto window = Run(Times(5, kDown) + "\n\n" + Times(3, kUp) + "\n\n" + kLeave);
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
    store_.Fault("VirtualSwitchInfo.GetTeamingPolicy", "policy unreadable");
    store_.Fault("VirtualSwitchInfo.GetPortGroupVlan", "port unreadable");
    auto window = Run(Times(5, kDown) + "\nx.example\n" + Times(5, kUp) + kLeave + "\ty");
    ASSERT_GE(window->panes.size(), 2u);
    EXPECT_THAT(window->panes.at(0), HasSubstr("Unknown"));
    EXPECT_THAT(window->panes.at(1), HasSubstr("Unknown"));
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
    store_.Fault("VirtualSwitchInfo.GetPortGroupSwitch", "port group lost");
    // Enter opens nothing; Space, which the dialog would have taken, reaches the window and is ignored.
    auto window = Run("\n \n" + kLeave);
    EXPECT_TRUE(host_.Made("error: Getting switch name failed: port group lost"));
    EXPECT_FALSE(window->Pending().changed);
}

TEST_F(NetworkWindowTest, Ipv6EditsArePendingAndShownUntilApplied) {
    // Static with one address, the gateway left as it was.
    auto window =
        Run(Times(3, kDown) + "\n" + Times(2, kDown) + " " + kDown + "2001:db8::9/64\n" + kLeave + kDrop);
    const PendingNetwork& pending = window->Pending();
    EXPECT_TRUE(pending.changed);
    EXPECT_FALSE(pending.ipv6GatewayChanged);
    EXPECT_FALSE(pending.modes.GetUseIpv6RouterAdvertised());
    const std::string& pane = window->panes.back();
    // The router's address goes with router advertisement; the link-local address stays.
    EXPECT_THAT(pane, HasSubstr("2001:db8::9"));
    EXPECT_EQ(pane.find("2001:db8:20:30:21b:21ff:fe4a:1000"), std::string::npos) << pane;
    EXPECT_THAT(pane, HasSubstr("fe80::"));
    EXPECT_THAT(pane, HasSubstr("Default Gateway: {/color}{color:light-grey}2001:db8:20:30::1"));
    EXPECT_FALSE(Wrote());

    // Switched off: the pane says what happens at the next boot.
    auto off = Run(Times(3, kDown) + "\n" + kUp + " \n" + kLeave + kDrop);
    EXPECT_TRUE(off->Pending().Ipv6StateChanges());
    EXPECT_THAT(off->panes.back(), HasSubstr("The support for IPv6 will be enabled after the next reboot."));
}

TEST_F(NetworkWindowTest, AHostThatCannotBeReadIsReportedAndTheWindowCloses) {
    store_.Fault("ZenkNic.GetIpConfig", "busy");
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

// The question on leaving with changes.
class ApplyChanges : public NetworkDialogs {};

TEST_F(ApplyChanges, OnlyYNAndEscapeAnswer) {
    // Enter, Space, letters and arrows are no answer; the first Y or N (either case) is.
    auto yes = Run<ApplyChangesDialog>("\n xq" + Keys::kDown + "y", false);
    EXPECT_EQ(yes.result, ApplyChangesDialog::kYes);
    const std::pair<std::string, int> answers[] = {
        {"\tN", ApplyChangesDialog::kNo},
        {"\tn", ApplyChangesDialog::kNo},
        {"\tY", ApplyChangesDialog::kYes},
        {"\t" + Keys::kEsc, ApplyChangesDialog::kCancel},
    };
    for (const auto& [keys, result] : answers) EXPECT_EQ(Run<ApplyChangesDialog>(keys, false).result, result);
}

}  // namespace
}  // namespace Kovo
