// Logging in at the real console on simulated hosts, through the real PAM stack and the host's accounts:
// each outcome with its screen, log lines, audit records and host events.
#include <gtest/gtest.h>

#include <string>

#include "HostSteps.h"

using namespace KovoE2e;

namespace {

constexpr const char* kInvalid = "Invalid login or password.";
constexpr const char* kNoPermission = "User does not have permission to login to KOVO.";
constexpr const char* kExpired = "Password has expired.";
constexpr const char* kFailedEvent = "@&!*@*@(obs.user.kovo.login.failed)";

}  // namespace

// A dialog left with Esc first writes no log line or record: the login after it proves they would be
// written by now.
TEST(Login, EscLeavesWithoutARecordAndTheRightPasswordOpensTheMenuWithLogLinesAndAnAuditRecord) {
    auto host = MakeHost("default");
    ASSERT_TRUE(OpenLogin(*host)) << host->Term().Dump();
    host->Term().Type("operator");
    host->Term().Press(Key::Escape);
    ASSERT_TRUE(host->Term().WaitForTextGone(kLoginTitle)) << host->Term().Dump();
    ASSERT_TRUE(OpenLogin(*host)) << host->Term().Dump();
    Submit(*host, "", kRootPassword);
    ASSERT_TRUE(host->Term().WaitFor(MenuShown)) << host->Term().Dump();

    auto succeeded =
        host->WaitForSyslog({" auth.emerg ", "KOVO[", "]: Authentication of user root succeeded"});
    ASSERT_TRUE(succeeded) << host->Syslog();
    auto loggedIn = host->WaitForSyslog({" user.info ", "]: User root logged in"});
    ASSERT_TRUE(loggedIn) << host->Syslog();
    EXPECT_LT(host->Syslog().find(*succeeded), host->Syslog().find(*loggedIn));
    ASSERT_TRUE(WaitForRecords(*host, "audit.log", "login.connect")) << HostRecords(*host, "audit.log");
    EXPECT_EQ(Lines(HostRecords(*host, "audit.log"), "login.connect"),
              std::vector<std::string>{"login.connect user=\"root\" result=success"});
    EXPECT_TRUE(Lines(HostRecords(*host, "events.log"), kFailedEvent).empty());
    EXPECT_TRUE(host->SyslogLines({"operator"}).empty()) << host->Syslog();
    EXPECT_EQ(host->SyslogLines({"Authentication of user"}).size(), 1u) << host->Syslog();
    ExpectSecretNowhere(*host, kRootPassword);
}

TEST(Login, WrongPasswordThreeTimesGivesThreeOfEverythingAndNeverLocks) {
    auto host = MakeHost("default");
    ASSERT_TRUE(OpenLogin(*host)) << host->Term().Dump();
    auto& term = host->Term();
    const std::string wrong[] = {"Wrong-One1", "Wrong-Two2", "Wrong-Six3"};
    term.Press(Key::Enter);
    for (const std::string& password : wrong) {
        term.Type(password);
        term.Press(Key::Enter);
        ASSERT_TRUE(Acknowledge(*host, kInvalid)) << term.Dump();
        ASSERT_TRUE(term.WaitForText(kLoginTitle)) << term.Dump();
    }
    const std::vector<std::string> failed = {" auth.err ", "]: Authentication of user root failed"};
    ASSERT_TRUE(WaitForSyslogCount(*host, failed, 3)) << host->Syslog();
    ASSERT_TRUE(WaitForRecords(*host, "audit.log", "login.connect", 3));
    EXPECT_EQ(Lines(HostRecords(*host, "audit.log"),
                    "login.connect user=\"root\" result=failure reason=\"Invalid Login\"")
                  .size(),
              3u);
    ASSERT_TRUE(WaitForRecords(*host, "events.log", "Authentication of user root failed", 3));
    EXPECT_EQ(Lines(HostRecords(*host, "events.log"),
                    std::string(kFailedEvent) + "Authentication of user root failed")
                  .size(),
              3u);
    // Still not locked: the right password now gets in, typed into a cleared field.
    term.Type(kRootPassword);
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitFor(MenuShown)) << term.Dump();
    EXPECT_EQ(host->SyslogLines(failed).size(), 3u);
    for (const std::string& password : wrong) ExpectSecretNowhere(*host, password);
}

TEST(Login, UserWithoutConsoleAccessIsDeniedWithItsEvent) {
    auto host = MakeHost("default");
    ASSERT_TRUE(OpenLogin(*host)) << host->Term().Dump();
    Submit(*host, "viewer", kViewerPassword);
    ASSERT_TRUE(Acknowledge(*host, kNoPermission)) << host->Term().Dump();
    ASSERT_TRUE(host->WaitForSyslog({" auth.err ", "]: Access denied for user viewer"})) << host->Syslog();
    ASSERT_TRUE(WaitForRecords(*host, "events.log", "viewer"));
    EXPECT_EQ(Lines(HostRecords(*host, "events.log"), "viewer"),
              std::vector<std::string>{std::string(kFailedEvent) + "Access denied for user viewer"});
    EXPECT_EQ(
        Lines(HostRecords(*host, "audit.log"), "login.connect"),
        std::vector<std::string>{"login.connect user=\"viewer\" result=failure reason=\"No permission\""});
    EXPECT_TRUE(host->SyslogLines({"User viewer logged in"}).empty());
    ExpectSecretNowhere(*host, kViewerPassword);
}

TEST(Login, ExpiredPasswordIsChangedThenTheNewOneLogsIn) {
    auto host = MakeHost("default");
    auto& term = host->Term();
    ASSERT_TRUE(OpenLogin(*host)) << term.Dump();
    Submit(*host, "newadmin", kExpiredPassword);
    ASSERT_TRUE(Acknowledge(*host, kExpired)) << term.Dump();
    ASSERT_TRUE(Settled(*host, "Configure Password")) << term.Dump();
    const std::string fresh = "Fresh-Admin7";
    for (const std::string& field : {std::string(kExpiredPassword), fresh, fresh}) {
        term.Type(field);
        term.Press(Key::Enter);
    }
    // Back in the login fields, not in the menu.
    ASSERT_TRUE(term.WaitForTextGone("Configure Password")) << term.Dump();
    ASSERT_TRUE(term.WaitForText(kLoginTitle)) << term.Dump();
    EXPECT_FALSE(term.Screen().Contains(kMenuTitle));
    ASSERT_TRUE(host->WaitForSyslog({" auth.err ", "]: Password has expired for user newadmin"}))
        << host->Syslog();
    ASSERT_TRUE(host->WaitForSyslog({" user.info ", "]: Login password for user newadmin has changed"}))
        << host->Syslog();
    EXPECT_EQ(Lines(HostRecords(*host, "audit.log"), "login.connect"),
              std::vector<std::string>{
                  "login.connect user=\"newadmin\" result=failure reason=\"Password expired\""});
    // The expiry posts the access-denied event text.
    EXPECT_EQ(Lines(HostRecords(*host, "events.log"), kFailedEvent),
              std::vector<std::string>{std::string(kFailedEvent) + "Access denied for user newadmin"});

    ASSERT_TRUE(term.WaitForQuiet(300ms));
    term.Type(fresh);  // the password field has focus and was cleared
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitFor(MenuShown)) << term.Dump();
    ASSERT_TRUE(host->WaitForSyslog({"]: User newadmin logged in"})) << host->Syslog();
    ExpectSecretNowhere(*host, kExpiredPassword);
    ExpectSecretNowhere(*host, fresh);
}

TEST(Login, WithoutTheMarkerTheConsoleRefusesEveryLogin) {
    auto host = MakeHost("login-disabled");
    auto& term = host->Term();
    for (Key key : {Key::F2, Key::F12}) {
        term.Press(key);
        ASSERT_TRUE(Settled(*host, "Authentication Denied")) << term.Dump();
        EXPECT_FALSE(term.Screen().Contains("Login Name:"));
        term.Press(key == Key::F2 ? Key::Enter : Key::Escape);
        ASSERT_TRUE(Closed(*host, "Authentication Denied")) << term.Dump();
    }
    EXPECT_TRUE(host->SyslogLines({"Authentication of user"}).empty());
}

TEST(Login, KeyboardLineOpensTheLayoutDialogAndShowsTheLayoutAfterwards) {
    ConsoleStart start;
    start.term = "xterm";  // the machine's own keyboard
    auto host = MakeHost("default", {}, start);
    auto& term = host->Term();
    ASSERT_TRUE(PressFor(*host, Key::F2, "Configured Keyboard (US Default)")) << term.Dump();
    // Enter on the keyboard line opens the layout dialog (that typing there goes nowhere is the unit
    // tests', LoginKeyRouting).
    ASSERT_TRUE(SetStore(*host, "/system/keyboard/layout", "\"German\""));
    ASSERT_TRUE(PressFor(*host, Key::Enter, "(o) German")) << term.Dump();
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitForText("Configured Keyboard (German)")) << term.Dump();
    EXPECT_TRUE(term.Screen().Contains(kLoginTitle));
    ASSERT_TRUE(term.WaitForQuiet(300ms));
    // Then down to the fields: the name is still root, and the login goes through.
    term.Press(Key::Down);
    Submit(*host, "", kRootPassword);
    ASSERT_TRUE(term.WaitFor(MenuShown)) << term.Dump();
    ASSERT_TRUE(host->WaitForSyslog({"]: User root logged in"})) << host->Syslog();
}
