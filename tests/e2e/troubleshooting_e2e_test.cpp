// The troubleshooting options of the real console on the simulated host: the service toggles, the
// time-out dialogs, the agents restart and lockdown mode, checked in the host's store, commands and logs.
// The toggles' fall-backs when the host tool fails are the unit tests' business.
#include <gtest/gtest.h>

#include "NetworkSteps.h"

namespace {

using namespace KovoE2e;

constexpr const char* kTimeoutsDetail = "Modify the number of minutes that";
constexpr const char* kKovoDetail = "Modify the number of idle minutes";

TEST(Troubleshooting, WithSshOnTheTimeoutsAreSkippedUntilSshIsDisabled) {
    auto host = MakeHost("default", {{"/services/SSH", R"({"enabled": true, "running": true})"}});
    ASSERT_TRUE(OpenTroubleshooting(*host)) << host->Term().Dump();
    // Two Downs from the shell pass SSH and skip the greyed time-outs.
    Press(*host, Key::Down, 2);
    EXPECT_TRUE(host->Term().WaitForText(kKovoDetail)) << host->Term().Dump();

    Press(*host, Key::Up);
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForText("Enable SSH")) << host->Term().Dump();
    ASSERT_TRUE(Settled(*host, "SSH is Disabled", 200ms)) << host->Term().Dump();
    Press(*host, Key::Down);
    EXPECT_TRUE(host->Term().WaitForText(kTimeoutsDetail)) << host->Term().Dump();

    EXPECT_EQ(CommandCount(*host, {R"("hcl-cmd","-U","root","hostsvc/stop_ssh")"}), 1u);
    EXPECT_EQ(CommandCount(*host, {R"("hcl-cmd","-U","root","hostsvc/disable_ssh")"}), 1u);
    EXPECT_EQ(StoreValue(*host, "/services/SSH/running"), "false");
    EXPECT_EQ(host->SyslogLines({"user.info", "]: User root disabled SSH"}).size(), 1u) << host->Syslog();
}

TEST(Troubleshooting, ShellTimeoutsRefuseOutOfRangeButApplyTheValidOne) {
    auto host = MakeHost("default");
    ASSERT_TRUE(OpenTroubleshooting(*host)) << host->Term().Dump();
    Press(*host, Key::Down, 2);
    ASSERT_TRUE(PressFor(*host, Key::Enter, "Availability timeout", 200ms)) << host->Term().Dump();
    // Letters and control keys reach no field.
    host->Term().Type("ab-");
    host->Term().Press(Key::Tab);
    host->Term().Type("1441");
    Press(*host, Key::Down);
    host->Term().Type("x5");
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(Acknowledge(*host, "Timeout value must be between 0 (disabled) and 1440 minutes"))
        << host->Term().Dump();
    ASSERT_TRUE(host->WaitForSyslog({"]: Modified shell interactive timeout to 5 minutes"}))
        << host->Syslog();
    EXPECT_EQ(StoreValue(*host, "/advancedOptions/UserVars/QoriShellInteractiveTimeOut/value"), "300");
    EXPECT_EQ(StoreValue(*host, "/advancedOptions/UserVars/QoriShellTimeOut/value"), "0");
    EXPECT_TRUE(host->SyslogLines({"Shell timeout"}).empty()) << host->Syslog();
}

TEST(Troubleshooting, CurrentValuesWriteNothingAndZeroDisables) {
    auto host = MakeHost("default", {{"/advancedOptions/UserVars/QoriShellTimeOut/value", "600"},
                                     {"/advancedOptions/UserVars/KovoTimeOut/value", "90"}});
    ASSERT_TRUE(OpenTroubleshooting(*host)) << host->Term().Dump();
    Press(*host, Key::Down, 2);
    ASSERT_TRUE(PressFor(*host, Key::Enter, "[ 10    ]", 200ms)) << host->Term().Dump();
    ASSERT_TRUE(PressFor(*host, Key::Enter, kTimeoutsDetail)) << host->Term().Dump();
    EXPECT_EQ(CommandCount(*host, {"qorcli"}), 0u);
    EXPECT_EQ(CommandCount(*host, {"qorlocalcli"}), 0u);

    ASSERT_TRUE(PressFor(*host, Key::Enter, "[ 10    ]", 200ms)) << host->Term().Dump();
    host->Term().Type("0");
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->WaitForSyslog({"user.info", "]: Disabled Shell timeout"})) << host->Syslog();
    EXPECT_EQ(StoreValue(*host, "/advancedOptions/UserVars/QoriShellTimeOut/value"), "0");

    // 90 seconds of console time-out show as one minute.
    ASSERT_TRUE(host->Term().WaitForQuiet(300ms));
    Press(*host, Key::Down);
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForText("KOVO idle timeout")) << host->Term().Dump();
    EXPECT_TRUE(host->Term().WaitForText("[ 1     ]")) << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitForQuiet(200ms));
    host->Term().Type("0");
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->WaitForSyslog({"user.info", "]: Disabled Kovo timeout"})) << host->Syslog();
    EXPECT_EQ(StoreValue(*host, "/advancedOptions/UserVars/KovoTimeOut/value"), "0");
}

TEST(Troubleshooting, NewConsoleTimeoutLogsTheOperatorOutAfterThatTime) {
    auto host = MakeHost("default", {{"/advancedOptions/UserVars/KovoTimeOut/value", "0"}}, FastClock());
    ASSERT_TRUE(OpenTroubleshooting(*host)) << host->Term().Dump();
    Press(*host, Key::Down, 3);
    ASSERT_TRUE(PressFor(*host, Key::Enter, "KOVO idle timeout", 200ms)) << host->Term().Dump();
    host->Term().Type("2");
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->WaitForSyslog({"]: Modified Kovo timeout to 2 minutes"})) << host->Syslog();
    EXPECT_EQ(StoreValue(*host, "/advancedOptions/UserVars/KovoTimeOut/value"), "120");
    // Two minutes at twenty times the speed: about six seconds without a key.
    EXPECT_TRUE(host->WaitForSyslog({"]: User root logged out due to time out"}, 60s)) << host->Syslog();
    EXPECT_TRUE(host->Term().WaitForText(kWelcomeKeys)) << host->Term().Dump();
}

TEST(Troubleshooting, AgentsRestartRunsTheCaptureOnlyWhenAskedAndIsDoneWhateverTheScripts) {
    auto host = MakeHost("default");
    ASSERT_TRUE(OpenTroubleshooting(*host)) << host->Term().Dump();
    Press(*host, Key::Down, 4);
    ASSERT_TRUE(PressFor(*host, Key::Enter, "Restart management agents now?", 200ms)) << host->Term().Dump();
    ASSERT_TRUE(PressFor(*host, Key::F11, "Starting management agents. Done.", 200ms)) << host->Term().Dump();
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForTextGone("Starting management agents. Done.")) << host->Term().Dump();
    EXPECT_EQ(CommandCount(*host, {R"("/sbin/services.sh","stop")"}), 1u)
        << HostRecords(*host, "commands.log");
    EXPECT_EQ(CommandCount(*host, {R"("/sbin/services.sh","start")"}), 1u);
    EXPECT_EQ(CommandCount(*host, {"zenkbacktrace"}), 0u);
    EXPECT_TRUE(
        WaitForRecords(*host, "events.log", "(obs.user.kovo.restarting.hostagents)Restarting host agents"));

    // Now with the capture, and with scripts that fail.
    ASSERT_TRUE(ReplaceHostProgram(*host, "/usr/sbin/services.sh", "exit 1"));
    ASSERT_TRUE(host->Term().WaitForQuiet(200ms));
    ASSERT_TRUE(PressFor(*host, Key::Enter, "Restart management agents now?", 200ms)) << host->Term().Dump();
    host->Term().Type(" ");
    host->Term().Press(Key::F11);
    ASSERT_TRUE(host->Term().WaitForText("Starting management agents. Done.")) << host->Term().Dump();
    EXPECT_TRUE(WaitForRecords(*host, "commands.log", "zenkbacktrace")) << HostRecords(*host, "commands.log");
    EXPECT_TRUE(host->WaitForSyslog({"]: Executing zenkbacktrace -c against hagentd"})) << host->Syslog();
}

TEST(Lockdown, EnterWithoutAChangeRunsNothingAndAFailedEnterIsTriedAgain) {
    auto host = MakeHost("default");
    ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kLockdownDowns, "Enable lockdown mode")) << host->Term().Dump();
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(Closed(*host, "Enable lockdown mode")) << host->Term().Dump();
    EXPECT_EQ(CommandCount(*host, {"lockdown_mode"}), 0u);

    // Lockdown becomes impossible after the menu was built: entering fails on the host.
    ASSERT_TRUE(SetStore(*host, "/services/lockdown/possible", "false"));
    for (size_t attempt = 1; attempt <= 2; ++attempt) {
        host->Term().Press(Key::Enter);
        ASSERT_TRUE(host->Term().WaitForText("[ ] Enable lockdown mode")) << host->Term().Dump();
        ASSERT_TRUE(host->Term().WaitForQuiet(200ms));
        host->Term().Type(" ");
        ASSERT_TRUE(host->Term().WaitForText("[X] Enable lockdown mode")) << host->Term().Dump();
        host->Term().Press(Key::Enter);
        ASSERT_TRUE(
            WaitForSyslogCount(*host, {"user.err", "]: Enabling lockdown mode failed with error:"}, attempt))
            << host->Syslog();
        ASSERT_TRUE(Closed(*host, "Enable lockdown mode")) << host->Term().Dump();
    }
    EXPECT_EQ(CommandCount(*host, {R"("hcl-cmd","-U","kovo","hclsvc/auth/lockdown_mode_enter")"}), 2u)
        << HostRecords(*host, "commands.log");
    EXPECT_EQ(StoreValue(*host, "/services/lockdown/enabled"), "false");
}

}  // namespace
