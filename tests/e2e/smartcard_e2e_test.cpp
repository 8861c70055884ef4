// Smart-card login at the real console on a simulated host: a card inserted while nobody is logged in
// is found at the next host notification and offered in PIN mode; removing the card of a smart-card
// session ends the console, which the host then starts afresh.
#include <gtest/gtest.h>
#include <signal.h>

#include <string>

#include "HostSteps.h"

using namespace KovoE2e;

namespace {

constexpr const char* kToken = "/hardware/smartCards/slots/0/token";
// A card whose first user id is empty: the first non-empty one is offered.
constexpr const char* kRootCard =
    R"({"label": "PIV Card", "serialNumber": "5120-7731", "userIds": ["", "root"]})";
constexpr const char* kPinPrompt = "Enter the smart card login PIN for";
constexpr const char* kPasswordPrompt = "Enter an authorized login name and password for";

// Changes the card in the reader and tells the console, as the host does.
bool ChangeCard(HostConsole& host, const std::string& token) {
    const pid_t console = host.WaitForConsole();
    return console > 0 && SetStore(host, kToken, token) && host.Term().Signal(SIGUSR1, console);
}

bool Shows(HostConsole& host, const std::vector<std::string>& texts) {
    return host.Term().WaitFor([&](const VirtualTerminal& screen) {
        for (const auto& text : texts)
            if (!screen.Contains(text)) return false;
        return true;
    });
}

}  // namespace

TEST(SmartCard, InsertedCardOpensPinModeAndF3SwitchesBothWays) {
    auto host = MakeHost("default");
    auto& term = host->Term();
    ASSERT_TRUE(ChangeCard(*host, kRootCard));
    ASSERT_TRUE(host->WaitForSyslog({" user.info ", "]: Found smart card with user id 'root'"}))
        << host->Syslog();

    ASSERT_TRUE(OpenLogin(*host)) << term.Dump();
    ASSERT_TRUE(Shows(*host, {kPinPrompt, "Login Id:", "PIN:", "<F3> Switch PIN/Password Login"}))
        << term.Dump();
    term.Press(Key::F3);
    ASSERT_TRUE(Shows(*host, {kPasswordPrompt, "Login Name:", "Password:"})) << term.Dump();
    EXPECT_FALSE(term.Screen().Contains("Login Id:"));
    term.Press(Key::F3);
    ASSERT_TRUE(Shows(*host, {kPinPrompt, "Login Id:", "PIN:"})) << term.Dump();
    ASSERT_TRUE(term.WaitForQuiet(300ms));

    // The login id is filled in; the PIN goes through PAM like a password.
    Submit(*host, "", kRootPassword);
    ASSERT_TRUE(term.WaitFor(MenuShown)) << term.Dump();
    ASSERT_TRUE(host->WaitForSyslog({"]: Authentication of user root succeeded"})) << host->Syslog();
    ExpectSecretNowhere(*host, kRootPassword);
}

TEST(SmartCard, RemovingTheCardEndsTheSmartCardSessionWithStatusZero) {
    auto host = MakeHost("default");
    auto& term = host->Term();
    ASSERT_TRUE(ChangeCard(*host, kRootCard));
    ASSERT_TRUE(host->WaitForSyslog({"]: Found smart card with user id 'root'"})) << host->Syslog();
    ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << term.Dump();

    ASSERT_TRUE(ChangeCard(*host, "null"));
    auto status = term.WaitExit();
    ASSERT_TRUE(status) << term.Dump();
    EXPECT_TRUE(status->IsExitCode(0)) << status->Describe();
    EXPECT_TRUE(host->WaitForSyslog({" user.info ", "]: Logging out user id 'root'"})) << host->Syslog();
}

TEST(SmartCard, CardsComingAndGoingDuringAPasswordSessionChangeNothing) {
    auto host = MakeHost("default");
    auto& term = host->Term();
    ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << term.Dump();
    const pid_t console = host->WaitForConsole();
    ASSERT_TRUE(ChangeCard(*host, kRootCard));
    ASSERT_TRUE(ChangeCard(*host, "null"));
    // A key after the notifications: the menu still answers, so the console is still this one.
    ASSERT_TRUE(term.WaitForQuiet(300ms));
    term.Press(Key::Down);
    ASSERT_TRUE(term.WaitForQuiet(300ms));
    EXPECT_TRUE(term.Running());
    EXPECT_TRUE(MenuShown(term.Screen())) << term.Dump();
    EXPECT_EQ(host->WaitForConsole(), console);
    EXPECT_TRUE(host->SyslogLines({"Logging out user id"}).empty()) << host->Syslog();
    EXPECT_TRUE(host->SyslogLines({"Found smart card"}).empty()) << "looked for a card while logged in";
}
