#include "network/AdaptersDialog.h"

#include <gtest/gtest.h>

#include "../support/Recording.h"
#include "WatchedDialog.h"
#include "network/AdapterInfoDialog.h"
#include "text/MarkupLayout.h"

namespace Kovo {
namespace {

using namespace Testing;
using nlohmann::json;

// A row as the list lays it out.
std::string Shown(const Adapter& adapter) {
    return LayoutMarkup(AdaptersDialog::RowText(adapter), 70, {});
}

TEST(AdapterRowTest, ColumnsLineUpAndWhatDoesNotFitIsCut) {
    struct Case {
        Adapter adapter;
        const char* row;
    };
    const std::string mac = "00:1b:21:4a:10:00";
    const Case cases[] = {
        // Short enough: as given, padded to the header's columns.
        {{"zennic0", "Dual", mac, true, "", true}, "zennic0      Dual (00:1b:21:4a:10:00)      Connected"},
        // The label gives way so the MAC address stays whole; the dots end the cut word.
        {{"zennic1", "Sample 82599 10 Gigabit Network Connection", mac, false, "", true},
         "zennic1      Sample... (00:1b:21:4a:10:00) Disconnected"},
        // Exactly the 29 columns of the field: nothing cut, one blank before the status.
        {{"zennic2", "Nine char", mac, true, "", true},
         "zennic2      Nine char (00:1b:21:4a:10:00) Connected"},
        // What the host did not give.
        {{"", "", "", false, "", true}, "N/A          N/A (N/A)                     Disconnected"},
        // A device name longer than its column, and a MAC address too long to keep whole.
        {{"zennic-uplink-17", "Label", std::string(30, 'f'), true, "", true},
         "zennic-up... Label (fffffffffffffffffff... Connected"},
    };
    for (const Case& c : cases) EXPECT_EQ(Shown(c.adapter), c.row) << c.adapter.name;
    // Characters, not bytes, are counted.
    EXPECT_EQ(AdaptersDialog::HardwareText({"n", "Carte réseau à deux ports gigabit", mac, true, "", true}),
              "Carte... (00:1b:21:4a:10:00)");
}

TEST(AdapterInfoTest, FiveLinesAndWhoUsesTheNic) {
    Adapter adapter{"zennic3", "Sample I350", "00:1b:21:4a:20:01", false, "", true};
    EXPECT_EQ(AdapterInfoDialog::Text(adapter, "Unknown"),
              "Device Name: zennic3\nHardware Label: Sample I350\nMAC Address: 00:1b:21:4a:20:01\n"
              "Connection Status: Disconnected\nUsed By: None");
    adapter.usedBy = "xds0";
    EXPECT_NE(AdapterInfoDialog::Text(adapter, "Unknown").find("\nUsed By: xds0"), std::string::npos);
    adapter.usedBy.clear();
    adapter.usedByKnown = false;
    EXPECT_NE(AdapterInfoDialog::Text(adapter, "Unknown").find("\nUsed By: Unknown"), std::string::npos);
}

class AdaptersDialogTest : public NetworkDialogs {
  protected:
    // The default host, with zennic3 on a second standard switch.
    void Make(const std::string& scenario = "default") {
        json document = Scenario(scenario);
        if (scenario == "default")
            document["network"]["switches"].push_back(
                {{"name", "xSwitch1"},
                 {"numPorts", 64},
                 {"mtu", 1500},
                 {"uplinks", {"zennic3"}},
                 {"teaming", {{"flags", 0}, {"uplinkOrder", json::array()}, {"maxActiveUplinks", 0}}},
                 {"portGroups", json::array()}});
        store_ = std::make_unique<ScratchStore>(Booted(document));
        host_ = std::make_unique<RecordingHost>(store_->Get(), true);
    }
    void Fault(const std::string& operation) { store_->Fault(operation, "scan refused"); }
    Ran<AdaptersDialog> Open(const std::string& keys,
                             std::vector<std::string> selected = {"zennic0", "zennic1"},
                             const std::string& managementSwitch = "xSwitch0") {
        return Run<AdaptersDialog>(keys, *host_, std::move(selected), managementSwitch);
    }
    bool LoggedError(const std::string& line) const { return host_->Made("error: " + line); }

    std::unique_ptr<ScratchStore> store_;
    std::unique_ptr<RecordingHost> host_;
};

TEST_F(AdaptersDialogTest, TheListKeepsTheOrderTheAdaptersWereChecked) {
    Make();
    // Uncheck both uplinks, then check zennic2 and zennic0: zennic2 comes first.
    auto d = Open(" " + Keys::kDown + " " + Keys::kDown + " " + Keys::kUp + Keys::kUp + " \n");
    EXPECT_EQ(d.result, 1);
    EXPECT_EQ(d->Selected(), (std::vector<std::string>{"zennic2", "zennic0"}));
    EXPECT_FALSE(d->Showed("Network Adapters: Warning"));  // none of them is used elsewhere

    // Esc returns the list unchanged, whatever was toggled.
    auto cancelled = Open(" " + Keys::kDown + " " + Keys::kEsc);
    EXPECT_EQ(cancelled.result, 0);
}

// Taking the NIC after the question is the end-to-end tests' (NetworkUplinks); Esc there goes back to
// the list, and a NIC unchecked again is no longer asked about.
TEST_F(AdaptersDialogTest, EscAtTheQuestionGoesBackAndAnUncheckedNicIsNotAsked) {
    Make();
    const std::string checkZennic3 = Keys::kDown + Keys::kDown + Keys::kDown + " ";
    auto d = Open(checkZennic3 + "\n\t" + Keys::kEsc + " \n");
    EXPECT_EQ(d.result, 1);
    EXPECT_TRUE(d->Showed("Network Adapters: Warning"));
    EXPECT_EQ(d->Selected(), (std::vector<std::string>{"zennic0", "zennic1"}));
}

TEST_F(AdaptersDialogTest, OnADistributedSwitchOnlyNicsOfOtherSwitchesAsk) {
    Make("dvs");
    // zennic0 and zennic1 belong to the management network's own distributed switch.
    auto own = Open("\n", {"zennic0", "zennic1"}, "xds0");
    EXPECT_EQ(own.result, 1);
    EXPECT_FALSE(own->Showed("Network Adapters: Warning"));
    // zennic2 is on the standard switch.
    auto other =
        Open(Keys::kDown + Keys::kDown + " \n\t" + Keys::kEsc + Keys::kEsc, {"zennic0", "zennic1"}, "xds0");
    EXPECT_EQ(other.result, 0);
    EXPECT_TRUE(other->Showed("Network Adapters: Warning"));
}

TEST_F(AdaptersDialogTest, WhatTheScansGatheredIsShownAndEachFailureLogged) {
    Make();
    Fault("VirtualSwitchInfo.GetVirtualSwitches");
    auto noStandard = Open(Keys::kEsc);
    EXPECT_TRUE(LoggedError("Scanning virtual switches failed: scan refused"));
    ASSERT_EQ(noStandard->Adapters().size(), 4u);
    EXPECT_FALSE(noStandard->Adapters()[0].usedByKnown);

    Make("dvs");
    Fault("VirtualSwitchInfo.GetDvSwitches");
    auto noDistributed = Open(Keys::kEsc);
    EXPECT_TRUE(LoggedError("Scanning dxswitches failed: scan refused"));
    ASSERT_EQ(noDistributed->Adapters().size(), 4u);
    EXPECT_EQ(noDistributed->Adapters()[2].usedBy, "xSwitch0");  // found on a switch that was scanned
    EXPECT_TRUE(noDistributed->Adapters()[2].usedByKnown);

    Fault("NetworkInfo.GetPnics");
    // No rows: Space and D have nothing to act on, Enter returns the list it was given.
    auto none = Open(" D\n", {"zennic0"}, "xds0");
    EXPECT_TRUE(LoggedError("Getting physical nics failed: scan refused"));
    EXPECT_TRUE(none->Adapters().empty());
    EXPECT_EQ(none.result, 1);
    EXPECT_EQ(none->Selected(), std::vector<std::string>{"zennic0"});
}

}  // namespace
}  // namespace Kovo
