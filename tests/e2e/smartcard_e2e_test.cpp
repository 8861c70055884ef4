// Smart-card login at the real console on a simulated host: a card inserted while nobody is logged in
// is found at the next host notification and offered in PIN mode; removing the card of a smart-card
// session ends the console, which the host then starts afresh. That a password session ignores the
// readers is the unit tests' business.
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

// Changes the card in the reader and tells the console, as the host does.
bool ChangeCard(HostConsole& host, const std::string& token) {
    const pid_t console = host.WaitForConsole();
    return console > 0 && SetStore(host, kToken, token) && host.Term().Signal(SIGUSR1, console);
}

}  // namespace

// Then removing the card ends the smart-card session, and the console with status 0.
TEST(SmartCard, InsertedCardOpensPinModeThePinLogsInAndRemovingTheCardEndsTheSession) {
    auto host = MakeHost("default");
    auto& term = host->Term();
    ASSERT_TRUE(ChangeCard(*host, kRootCard));
    ASSERT_TRUE(host->WaitForSyslog({" user.info ", "]: Found smart card with user id 'root'"}))
        << host->Syslog();

    ASSERT_TRUE(OpenLogin(*host)) << term.Dump();
    // What F3 switches is the unit tests' business.
    ASSERT_TRUE(Settled(*host, kPinPrompt)) << term.Dump();

    // The login id is filled in; the PIN goes through PAM like a password.
    Submit(*host, "", kRootPassword);
    ASSERT_TRUE(term.WaitFor(MenuShown)) << term.Dump();
    ASSERT_TRUE(host->WaitForSyslog({"]: Authentication of user root succeeded"})) << host->Syslog();
    ExpectSecretNowhere(*host, kRootPassword);

    ASSERT_TRUE(term.WaitForQuiet(300ms));
    ASSERT_TRUE(ChangeCard(*host, "null"));
    auto status = term.WaitExit();
    ASSERT_TRUE(status) << term.Dump();
    EXPECT_TRUE(status->IsExitCode(0)) << status->Describe();
    EXPECT_TRUE(host->WaitForSyslog({" user.info ", "]: Logging out user id 'root'"})) << host->Syslog();
}
