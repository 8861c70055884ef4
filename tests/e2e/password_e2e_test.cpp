// Changing the login password from the menu of the real console, through the real PAM stack and the
// simulated host's password rule: every refusal, the warning for an unchanged password, and a change
// with its records, after which only the new password logs in.
#include <gtest/gtest.h>

#include <string>

#include "HostSteps.h"

using namespace KovoE2e;

namespace {

constexpr const char* kDialogText = "Setting the password will prevent unauthorized access";
constexpr const char* kSameWarning = "New password is same as old password. Are you sure?";
constexpr const char* kChanged = "]: Login password for user root has changed";
// The backup program is a script: the host records it by its path, whatever name it was started with.
constexpr const char* kBackup = "\"program\":\"backup.sh\"";
constexpr const char* kRefresh = "\"argv\":[\"hcl-cmd\",\"-U\",\"root\",\"internalsvc/refresh\"]";
constexpr const char* kChangedEvent =
    "@&!*@*@(obs.user.kovo.login.passwd.changed)Login password for user root changed";

// Logs in as root and opens Configure Password, the menu's first entry.
bool OpenPasswordDialog(HostConsole& host) {
    return LogIn(host, "", kRootPassword) && PressFor(host, Key::Enter, kDialogText);
}

void Enter(HostConsole& host, const std::string& text) {
    host.Term().Type(text);
    host.Term().Press(Key::Enter);
}

}  // namespace

// The host's refusals keep the dialog and change nothing; then the same password, confirmed, is set again.
TEST(PasswordChange, TheHostsRefusalsChangeNothingAndTheSamePasswordConfirmedIsSetAgain) {
    auto host = MakeHost("default");
    auto& term = host->Term();
    ASSERT_TRUE(OpenPasswordDialog(*host)) << term.Dump();

    Enter(*host, "Not-It-42");
    ASSERT_TRUE(Acknowledge(*host, "The old password you entered is incorrect")) << term.Dump();
    // Too weak for the host's rule, with the old password now right: the old password field was cleared
    // and keeps the focus. (The refusals made before the host is asked are the unit tests' business.)
    Enter(*host, kRootPassword);
    Enter(*host, "weak");
    Enter(*host, "weak");
    ASSERT_TRUE(Acknowledge(*host, "The password change operation failed.")) << term.Dump();
    EXPECT_TRUE(term.Screen().Contains(kDialogText));

    term.Press(Key::Escape);
    ASSERT_TRUE(term.WaitForTextGone(kDialogText)) << term.Dump();
    ASSERT_TRUE(term.WaitFor(MenuShown)) << term.Dump();
    ASSERT_TRUE(term.WaitForQuiet(300ms));
    EXPECT_TRUE(host->SyslogLines({kChanged}).empty()) << host->Syslog();
    EXPECT_TRUE(Lines(HostRecords(*host, "commands.log"), kBackup).empty())
        << HostRecords(*host, "commands.log");
    EXPECT_TRUE(Lines(HostRecords(*host, "events.log"), "passwd.changed").empty());
    ExpectSecretNowhere(*host, "Not-It-42");

    ASSERT_TRUE(PressFor(*host, Key::Enter, kDialogText)) << term.Dump();
    Enter(*host, kRootPassword);
    Enter(*host, kRootPassword);
    Enter(*host, kRootPassword);
    ASSERT_TRUE(Settled(*host, kSameWarning)) << term.Dump();
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitForTextGone(kDialogText)) << term.Dump();
    ASSERT_TRUE(host->WaitForSyslog({" user.info ", kChanged})) << host->Syslog();
    EXPECT_TRUE(WaitForRecords(*host, "commands.log", kBackup)) << HostRecords(*host, "commands.log");
    ExpectSecretNowhere(*host, kRootPassword);
}

TEST(PasswordChange, ChangeIsSavedAnnouncedAndOnlyTheNewPasswordLogsIn) {
    auto host = MakeHost("default");
    auto& term = host->Term();
    ASSERT_TRUE(OpenPasswordDialog(*host)) << term.Dump();
    const std::string fresh = "Brand-New5";
    Enter(*host, kRootPassword);
    Enter(*host, fresh);
    Enter(*host, fresh);
    ASSERT_TRUE(term.WaitForTextGone(kDialogText)) << term.Dump();
    ASSERT_TRUE(term.WaitFor(MenuShown)) << term.Dump();

    ASSERT_TRUE(host->WaitForSyslog({" user.info ", kChanged})) << host->Syslog();
    ASSERT_TRUE(WaitForRecords(*host, "commands.log", kRefresh)) << HostRecords(*host, "commands.log");
    const std::string commands = HostRecords(*host, "commands.log");
    ASSERT_EQ(Lines(commands, kBackup).size(), 1u) << commands;
    // The configuration is saved before the host agent is told.
    EXPECT_LT(commands.find(kBackup), commands.find(kRefresh)) << commands;
    ASSERT_TRUE(WaitForRecords(*host, "events.log", "passwd.changed"));
    EXPECT_EQ(Lines(HostRecords(*host, "events.log"), "passwd.changed"),
              std::vector<std::string>{kChangedEvent});

    // Out of the menu, then the old password is refused and the new one accepted.
    ASSERT_TRUE(term.WaitForQuiet(300ms));
    term.Press(Key::Escape);
    ASSERT_TRUE(term.WaitForText(kWelcomeKeys)) << term.Dump();
    ASSERT_TRUE(Closed(*host, kMenuTitle)) << term.Dump();
    ASSERT_TRUE(OpenLogin(*host)) << term.Dump();
    Submit(*host, "", kRootPassword);
    ASSERT_TRUE(Acknowledge(*host, "Invalid login or password.")) << term.Dump();
    Enter(*host, fresh);
    ASSERT_TRUE(term.WaitFor(MenuShown)) << term.Dump();
    EXPECT_EQ(host->SyslogLines({"]: User root logged in"}).size(), 2u) << host->Syslog();
    ExpectSecretNowhere(*host, fresh);
}
