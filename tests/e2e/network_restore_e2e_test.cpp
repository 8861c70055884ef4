// Network Restore Options on the simulated host: which entries a host is offered, and the factory
// network restore with its running-VM question, its progress lines, its record, and a host that can be
// reached afterwards.
#include <gtest/gtest.h>

#include <thread>

#include "NetworkSteps.h"

namespace {

using namespace KovoE2e;

constexpr int kRestoreDowns = 5;
constexpr const char* kFactoryEntry = "Restore Network Settings";
constexpr const char* kConfirmTitle = "Restore Network Factory Settings";
constexpr const char* kWarningTitle = "Warning: VMs running on the host";
constexpr const char* kProgressMark = "Please wait while the factory network settings are restored.";
constexpr const char* kRestoredEvent =
    "@&!*@*@(obs.user.kovo.factory.network.restored)Restoring factory network settings";

bool OpenRestore(HostConsole& host) {
    return LogIn(host, "", kRootPassword) && OpenFromMenu(host, kRestoreDowns, kFactoryEntry);
}

// From the window: Enter on the factory restore and F11 on its question.
void ConfirmFactoryRestore(HostConsole& host) {
    host.Term().Press(Key::Enter);
    ASSERT_TRUE(host.Term().WaitForText(kConfirmTitle)) << host.Term().Dump();
    ASSERT_TRUE(host.Term().WaitForQuiet(200ms));
    host.Term().Press(Key::F11);
}

// The progress lines as the dialog shows them, from the first to the last non-empty one.
std::vector<std::string> ProgressLines(const VirtualTerminal& screen) {
    int row = 0, column = 0;
    std::vector<std::string> lines;
    if (!screen.Find(kProgressMark, row, column)) return lines;
    // The content sits one column left of the header's text.
    const size_t start = screen.RowText(row).find(kProgressMark) - 1;
    // The content starts two rows below the header's last text row.
    for (row += 3; row < screen.Rows(); ++row) {
        std::string text = screen.RowText(row).substr(start);
        text = text.substr(0, text.find("\u2502"));
        while (!text.empty() && text.back() == ' ') text.pop_back();
        if (text.find("<Enter>") != std::string::npos) break;
        if (!text.empty()) lines.push_back(text);
    }
    return lines;
}

// From the window, out of the menu to the welcome screen. A frame back at the front drops keys typed
// before it got there, so each key waits for the screen to settle.
void LeaveToWelcome(HostConsole& host) {
    ASSERT_TRUE(host.Term().WaitForQuiet(200ms));
    host.Term().Press(Key::Escape);
    ASSERT_TRUE(host.Term().WaitFor(MenuShown)) << host.Term().Dump();
    ASSERT_TRUE(host.Term().WaitForQuiet(200ms));
    host.Term().Press(Key::Escape);
}

bool RestoreEnded(const VirtualTerminal& screen) {
    return screen.Contains(kProgressMark) && screen.Contains("<Enter> OK");
}

nlohmann::json Network(const HostConsole& host) {
    return StoreJson(host, "/network");
}

TEST(NetworkRestore, DistributedSwitchRepairsAreOfferedOnlyOnADistributedSwitch) {
    auto standard = MakeHost("default");
    ASSERT_TRUE(OpenRestore(*standard)) << standard->Term().Dump();
    ASSERT_TRUE(standard->Term().WaitForQuiet(200ms));
    EXPECT_TRUE(standard->Term().Screen().Contains("Restoring the network settings will"));
    EXPECT_FALSE(standard->Term().Screen().Contains("Restore Standard Switch")) << standard->Term().Dump();
    EXPECT_FALSE(standard->Term().Screen().Contains("Restore xDS"));

    auto distributed = MakeHost("dvs");
    ASSERT_TRUE(OpenRestore(*distributed)) << distributed->Term().Dump();
    EXPECT_TRUE(distributed->Term().WaitForText("Restore Standard Switch")) << distributed->Term().Dump();
    EXPECT_TRUE(distributed->Term().Screen().Contains("Restore xDS"));
    // Each entry explains itself in the detail pane as the cursor reaches it.
    distributed->Term().Press(Key::Down);
    EXPECT_TRUE(distributed->Term().WaitForText("interfaces apart from management"))
        << distributed->Term().Dump();
    distributed->Term().Press(Key::Down);
    EXPECT_TRUE(distributed->Term().WaitForText("misconfigured xDS Management network"))
        << distributed->Term().Dump();
}

TEST(NetworkRestore, RunningVmsAreAskedForThenPoweredOffBeforeTheNetworkIsRebuilt) {
    auto host = MakeHost("default");
    const auto before = Network(*host);
    ASSERT_TRUE(OpenRestore(*host)) << host->Term().Dump();
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForText(kConfirmTitle)) << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitForQuiet(200ms));
    // Enter is no answer to the question: only F11 resets.
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForQuiet(300ms));
    EXPECT_FALSE(host->Term().Screen().Contains(kWarningTitle));

    // Declining the warning changes nothing, yet the restore is recorded.
    host->Term().Press(Key::F11);
    ASSERT_TRUE(host->Term().WaitForText(kWarningTitle)) << host->Term().Dump();
    EXPECT_TRUE(host->Term().WaitForText("Host has VMs running.")) << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitForQuiet(200ms));
    host->Term().Press(Key::Escape);
    ASSERT_TRUE(host->Term().WaitForTextGone(kConfirmTitle)) << host->Term().Dump();
    ASSERT_TRUE(WaitForRecords(*host, "events.log", kRestoredEvent, 1)) << HostRecords(*host, "events.log");
    EXPECT_EQ(Network(*host), before);
    EXPECT_EQ(CommandCount(*host, {"powerOffVms"}), 0u);
    EXPECT_TRUE(host->WaitForSyslog({"user.info", "]: Restoring factory network settings"}))
        << host->Syslog();

    ASSERT_TRUE(host->Term().WaitForQuiet(200ms));
    ConfirmFactoryRestore(*host);
    ASSERT_TRUE(host->Term().WaitForText(kWarningTitle)) << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitForQuiet(200ms));
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitFor(RestoreEnded)) << host->Term().Dump();
    EXPECT_EQ(ProgressLines(host->Term().Screen()),
              (std::vector<std::string>{"Powering Off VMs. Done.", "Auto-configuring network. Done."}))
        << host->Term().Dump();
    // Powered off, not terminated, through the path the restore names.
    EXPECT_EQ(CommandCount(*host, {"\"path\":\"/sbin/powerOffVms\"", "\"argv\":[\"powerOffVms\"]"}), 1u)
        << HostRecords(*host, "commands.log");
    for (const auto& vm : StoreJson(*host, "/vms")) EXPECT_NE(vm["powerState"], "poweredOn") << vm;
    EXPECT_TRUE(InOrder(*host, {"]: Clearing Network Config", "]: Auto-Configuring Network"}))
        << host->Syslog();

    const auto after = Network(*host);
    ASSERT_EQ(after["switches"].size(), 1u) << after;
    EXPECT_EQ(after["switches"][0]["name"], "xSwitch0");
    EXPECT_EQ(after["switches"][0]["uplinks"], nlohmann::json::parse(R"(["zennic0"])"));
    ASSERT_EQ(after["zenkNics"].size(), 1u) << after;
    EXPECT_EQ(after["zenkNics"][0]["ipConfig"]["ipv4"]["mode"], "dhcp");
    EXPECT_EQ(after["netDumper"]["enabled"], false);

    // Only Enter ends the result; the outer dialog records the restore a second time.
    host->Term().Press(Key::Escape);
    ASSERT_TRUE(host->Term().WaitForQuiet(300ms));
    EXPECT_TRUE(host->Term().Screen().Contains(kProgressMark));
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForTextGone(kProgressMark)) << host->Term().Dump();
    EXPECT_TRUE(WaitForRecords(*host, "events.log", kRestoredEvent, 2)) << HostRecords(*host, "events.log");

    // No IPv4 lease on this network: the welcome screen says the interface waits for one.
    LeaveToWelcome(*host);
    EXPECT_TRUE(host->Term().WaitForText("https://0.0.0.0/ (Waiting for DHCP...)")) << host->Term().Dump();
}

TEST(NetworkRestore, FailedPowerOffLeavesTheNetworkAsItWas) {
    auto host = MakeHost("default", {{"/simulation/faults/powerOffVms", R"("VM web01 does not respond")"}});
    const auto before = Network(*host);
    ASSERT_TRUE(OpenRestore(*host)) << host->Term().Dump();
    ConfirmFactoryRestore(*host);
    ASSERT_TRUE(host->Term().WaitForText(kWarningTitle)) << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitForQuiet(200ms));
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitFor(RestoreEnded)) << host->Term().Dump();
    EXPECT_EQ(ProgressLines(host->Term().Screen()), (std::vector<std::string>{"Powering Off VMs. Failed."}))
        << host->Term().Dump();
    EXPECT_TRUE(host->WaitForSyslog({"user.err", "]: Error powering off VMs"})) << host->Syslog();
    EXPECT_EQ(Network(*host), before);
    host->Term().Press(Key::Enter);
    EXPECT_TRUE(WaitForRecords(*host, "events.log", kRestoredEvent, 1)) << HostRecords(*host, "events.log");
}

TEST(NetworkRestore, WithoutRunningVmsTheHostComesBackOnItsLease) {
    auto host = MakeHost("dhcp-server", {{"/vms", "[]"}});
    ASSERT_TRUE(OpenRestore(*host)) << host->Term().Dump();
    ConfirmFactoryRestore(*host);
    ASSERT_TRUE(host->Term().WaitFor(RestoreEnded)) << host->Term().Dump();
    EXPECT_EQ(ProgressLines(host->Term().Screen()),
              (std::vector<std::string>{"Auto-configuring network. Done."}))
        << host->Term().Dump();
    EXPECT_EQ(CommandCount(*host, {"powerOffVms"}), 0u);
    // The address the network's DHCP server hands out runs inside the host, and the welcome screen shows it.
    bool answers = false;
    for (int tries = 0; tries < 50 && !(answers = Answers(*host, "10.20.30.77")); ++tries)
        std::this_thread::sleep_for(100ms);
    EXPECT_TRUE(answers);
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForTextGone(kProgressMark)) << host->Term().Dump();
    LeaveToWelcome(*host);
    EXPECT_TRUE(host->Term().WaitForText("https://10.20.30.77/ (DHCP)")) << host->Term().Dump();
}

}  // namespace
