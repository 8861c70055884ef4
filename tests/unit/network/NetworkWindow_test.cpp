#include "network/NetworkWindow.h"

#include <gtest/gtest.h>

#include "RecordingNetwork.h"
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
            if (call.rfind("Dns.", 0) == 0 || call.rfind("Nic.", 0) == 0 || call.rfind("Routing.", 0) == 0 ||
                call.rfind("Network.", 0) == 0 || call == "refresh")
                return true;
        return false;
    }

    ScratchStore store_{Booted(Scenario("default"))};
    RecordingNetworkHost host_{store_.Get()};
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

TEST_F(NetworkWindowTest, YesAppliesAndLogsTheChange) {
    const std::string down = Keys::kDown;
    auto window = Run(down + down + down + down + down + "\nx.example\n" + kLeave + "\ty");
    EXPECT_TRUE(host_.Made("Dns.AddSearchDomain x.example"));
    EXPECT_EQ(host_.calls.back(), "log: Network settings changed.");
    EXPECT_EQ(store_.At("/network/dns/searchDomains"), nlohmann::json::array({"lab.example", "x.example"}));
}

}  // namespace
}  // namespace Kovo
