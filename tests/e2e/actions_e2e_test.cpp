// Shutting down, restarting and resetting the simulated host from the real console: what ran, in which
// order, what the host logged and posted, and what became of the host. Which keys the dialogs take and a
// power command that cannot run are the unit tests' business.
#include <gtest/gtest.h>

#include "HostSteps.h"

namespace {

using namespace KovoE2e;

const std::string kShutdownEvent = "@&!*@*@(obs.user.kovo.shutdown.host)Shutting down host";
const std::string kRebootEvent = "@&!*@*@(obs.user.kovo.reboot.host)Rebooting host";
const std::string kResetEvent = "@&!*@*@(obs.user.kovo.restore.factory.defaults)Restoring factory defaults";

TEST(Actions, ShutDownWithTheBoxClearPowersVmsOffGracefullyAndTheHostOff) {
    auto host = MakeHost("default", {}, Restarting());
    ASSERT_TRUE(OpenShutdown(*host)) << host->Term().Dump();
    host->Term().Press(Key::F2);
    EXPECT_TRUE(host->Term().WaitForText("Shutdown in progress...")) << host->Term().Dump();
    const auto exit = host->Term().WaitExit(60s);
    ASSERT_TRUE(exit && exit->IsExitCode(0)) << host->Term().Dump();

    EXPECT_EQ(CommandCount(*host, {"hcl-cmd", "\"-U\",\"root\"", "hostsvc/autostartmanager/autostop"}), 1u);
    EXPECT_EQ(CommandCount(*host, {"powerOffVms"}), 1u);
    EXPECT_EQ(CommandCount(*host, {"--terminate"}), 0u);
    EXPECT_EQ(CommandCount(*host, {"poweroff"}), 1u) << HostRecords(*host, "commands.log");
    EXPECT_EQ(Lines(HostRecords(*host, "events.log"), kShutdownEvent).size(), 1u);
    EXPECT_EQ(host->SyslogLines({"user.info", "]: Shutting down host"}).size(), 1u);
    EXPECT_FALSE(host->SyslogLines({"init: powering off"}).empty()) << host->Syslog();
    const nlohmann::json store = StoreOnDisk(*host);  // kept: the loop reads into it
    for (const auto& vm : store["vms"]) EXPECT_NE(vm.dump().find("poweredOff"), std::string::npos) << vm;
}

TEST(Actions, RestartWithTheBoxCheckedTerminatesVmsAndTheConsoleComesBack) {
    auto host = MakeHost("default", {}, Restarting());
    const pid_t first = host->WaitForConsole();
    ASSERT_TRUE(OpenShutdown(*host)) << host->Term().Dump();
    host->Term().Type(" ");
    ASSERT_TRUE(host->Term().WaitForText("[X] Forcefully terminate")) << host->Term().Dump();
    host->Term().Press(Key::F11);

    ASSERT_TRUE(host->WaitForSyslog({"init: host booted again"}, 60s)) << host->Syslog();
    EXPECT_NE(host->WaitForConsole(first), 0);
    EXPECT_TRUE(host->Term().WaitForText(kWelcomeKeys, 60s)) << host->Term().Dump();
    EXPECT_EQ(CommandCount(*host, {"powerOffVms", "--terminate"}), 1u) << HostRecords(*host, "commands.log");
    EXPECT_EQ(CommandCount(*host, {"\"reboot\""}), 1u) << HostRecords(*host, "commands.log");
    EXPECT_EQ(Lines(HostRecords(*host, "events.log"), kRebootEvent).size(), 1u);
    EXPECT_EQ(host->SyslogLines({"user.info", "]: Rebooting host"}).size(), 1u);
}

TEST(Actions, ResetEscAndAFailingResetLeaveTheHostAsItWas) {
    auto host = MakeHost("default", {}, Restarting());
    ASSERT_TRUE(host->WaitForConsole());
    ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kResetDowns, "Reset System Configuration: Confirm"))
        << host->Term().Dump();
    host->Term().Press(Key::Escape);
    ASSERT_TRUE(host->Term().WaitForTextGone("Reset System Configuration now?")) << host->Term().Dump();
    EXPECT_EQ(CommandCount(*host, {"firmwareConfig.py"}), 0u);

    ASSERT_TRUE(ReplaceHostProgram(*host, "/usr/sbin/firmwareConfig.py", "exit 1"));
    ASSERT_TRUE(host->Term().WaitForQuiet(200ms));
    ASSERT_TRUE(PressFor(*host, Key::Enter, "Reset System Configuration now?", 200ms)) << host->Term().Dump();
    host->Term().Press(Key::F11);
    // Straight back to the menu, without a message.
    ASSERT_TRUE(host->Term().WaitForTextGone("Reset System Configuration now?")) << host->Term().Dump();
    EXPECT_TRUE(host->Term().WaitForQuiet(300ms));
    EXPECT_TRUE(host->Term().Screen().Contains(kMenuTitle)) << host->Term().Dump();
    EXPECT_EQ(Lines(HostRecords(*host, "events.log"), kResetEvent).size(), 1u);
    EXPECT_EQ(CommandCount(*host, {"reboot"}), 0u);
    EXPECT_NE(StoreValue(*host, "/boot/pending/resetConfiguration"), "true");
}

TEST(Actions, ResetThenEnterRestartsTheHostWithItsDefaults) {
    auto host = MakeHost("default", {{"/network/dns/hostname", "\"changed-name\""}}, Restarting());
    const pid_t first = host->WaitForConsole();
    ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kResetDowns, "Reset System Configuration now?")) << host->Term().Dump();
    ASSERT_TRUE(PressFor(*host, Key::F11, "Default settings are restored.", 200ms)) << host->Term().Dump();
    EXPECT_EQ(CommandCount(*host, {"reboot"}), 0u);
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->WaitForSyslog({"init: host booted again"}, 60s)) << host->Syslog();
    EXPECT_NE(host->WaitForConsole(first), 0);
    EXPECT_TRUE(host->Term().WaitForText(kWelcomeKeys, 60s)) << host->Term().Dump();
    EXPECT_EQ(CommandCount(*host, {"firmwareConfig.py", "--reset-only"}), 1u);
    EXPECT_EQ(CommandCount(*host, {"reboot", "-f"}), 1u) << HostRecords(*host, "commands.log");
    EXPECT_EQ(Lines(HostRecords(*host, "events.log"), kResetEvent).size(), 1u);
    EXPECT_EQ(host->SyslogLines({"user.info", "]: Restoring factory defaults"}).size(), 1u);
    EXPECT_EQ(StoreValue(*host, "/network/dns/hostname"), "\"kovo-host-01\"");
}

}  // namespace
