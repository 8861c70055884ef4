// The factory network restore on the simulated host: its running-VM question, what it powers off and
// rebuilds, its record, and a host that can be reached afterwards. Which entries a host is offered, the
// keys of the question and a failed power-off are the unit tests' business.
#include <gtest/gtest.h>

#include "NetworkSteps.h"

namespace {

using namespace KovoE2e;

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
    ASSERT_TRUE(PressFor(host, Key::Enter, kConfirmTitle, 200ms)) << host.Term().Dump();
    host.Term().Press(Key::F11);
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

TEST(NetworkRestore, RunningVmsAreAskedForThenPoweredOffBeforeTheNetworkIsRebuilt) {
    auto host = MakeHost("default");
    const auto before = Network(*host);
    ASSERT_TRUE(OpenRestore(*host)) << host->Term().Dump();
    // Declining the warning changes nothing, yet the restore is recorded.
    ConfirmFactoryRestore(*host);
    ASSERT_TRUE(Settled(*host, kWarningTitle, 200ms)) << host->Term().Dump();
    host->Term().Press(Key::Escape);
    ASSERT_TRUE(host->Term().WaitForTextGone(kConfirmTitle)) << host->Term().Dump();
    ASSERT_TRUE(WaitForRecords(*host, "events.log", kRestoredEvent, 1)) << HostRecords(*host, "events.log");
    EXPECT_EQ(Network(*host), before);
    EXPECT_EQ(CommandCount(*host, {"powerOffVms"}), 0u);
    EXPECT_TRUE(host->WaitForSyslog({"user.info", "]: Restoring factory network settings"}))
        << host->Syslog();

    ASSERT_TRUE(host->Term().WaitForQuiet(200ms));
    ConfirmFactoryRestore(*host);
    ASSERT_TRUE(Settled(*host, kWarningTitle, 200ms)) << host->Term().Dump();
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitFor(RestoreEnded)) << host->Term().Dump();
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

    // The outer dialog records the restore a second time.
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForTextGone(kProgressMark)) << host->Term().Dump();
    EXPECT_TRUE(WaitForRecords(*host, "events.log", kRestoredEvent, 2)) << HostRecords(*host, "events.log");

    // No IPv4 lease on this network: the welcome screen says the interface waits for one.
    LeaveToWelcome(*host);
    EXPECT_TRUE(host->Term().WaitForText("https://0.0.0.0/ (Waiting for DHCP...)")) << host->Term().Dump();
}

TEST(NetworkRestore, WithoutRunningVmsTheHostComesBackOnItsLease) {
    auto host = MakeHost("dhcp-server", {{"/vms", "[]"}});
    ASSERT_TRUE(OpenRestore(*host)) << host->Term().Dump();
    ConfirmFactoryRestore(*host);
    ASSERT_TRUE(host->Term().WaitFor(RestoreEnded)) << host->Term().Dump();
    EXPECT_EQ(CommandCount(*host, {"powerOffVms"}), 0u);
    // The address the network's DHCP server hands out runs inside the host, and the welcome screen shows it.
    EXPECT_TRUE(host->Term().WaitUntil([&] { return Answers(*host, "10.20.30.77"); }, 10000ms));
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForTextGone(kProgressMark)) << host->Term().Dump();
    LeaveToWelcome(*host);
    EXPECT_TRUE(host->Term().WaitForText("https://10.20.30.77/ (DHCP)")) << host->Term().Dump();
}

}  // namespace
