// The console's terminal going away (a closed terminal window, a dropped SSH session or serial line):
// whatever the console is showing, it ends with status 0 for the host to start it again, and it does
// not spin on the dead terminal meanwhile.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "HostSteps.h"
#include "ProcessTree.h"

using namespace KovoE2e;
using KovoTerm::ProcessTree;

namespace {

// Far above the few milliseconds a clean end takes, far below what a spinning key loop burns before
// the host's grace period runs out.
constexpr auto kCpuBound = 500ms;

// Waits for `console` to be gone, reading its processor time as long as it lasts; the most it was seen
// to have used, or nullopt when it did not end in time.
std::optional<std::chrono::milliseconds> CpuUntilGone(HostConsole& host, pid_t console) {
    std::chrono::milliseconds most{0};
    const bool gone = host.Term().WaitUntil(
        [&] {
            auto used = ProcessTree::CpuTime(console);
            if (!used) return true;
            most = std::max(most, *used);
            return false;
        },
        30s, 5ms);
    if (!gone) return std::nullopt;
    return most;
}

// After the terminal hung up, the console ends with status 0 (the launcher runs it once and exits with
// its status), having used less than kCpuBound.
void ExpectCleanEnd(HostConsole& host, pid_t console) {
    auto used = CpuUntilGone(host, console);
    ASSERT_TRUE(used) << "still running after the terminal hung up\n" << host.Term().Dump();
    EXPECT_LT(*used, kCpuBound) << "processor time used by the console";
    auto status = host.Term().WaitExit();
    ASSERT_TRUE(status);
    EXPECT_TRUE(status->IsExitCode(0)) << status->Describe() << "\n" << host.Syslog();
}

}  // namespace

// Where the console is when the terminal goes: what `reach` opened from the welcome screen.
struct HangUpCase {
    const char* name;
    std::function<bool(HostConsole&)> reach;
};

class TerminalHangUp : public ::testing::TestWithParam<HangUpCase> {};

TEST_P(TerminalHangUp, EndsTheConsoleCleanly) {
    auto host = MakeHost("default");
    const pid_t console = host->WaitForConsole();
    ASSERT_GT(console, 0);
    ASSERT_TRUE(GetParam().reach(*host)) << host->Term().Dump();
    host->Term().HangUp();
    ExpectCleanEnd(*host, console);
}

INSTANTIATE_TEST_SUITE_P(
    Screens, TerminalHangUp,
    ::testing::Values(HangUpCase{"OnTheWelcomeScreen", [](HostConsole&) { return true; }},
                      HangUpCase{"WithADialogOpen", [](HostConsole& host) { return OpenLogin(host); }},
                      HangUpCase{"WhileThePagerShowsALog",
                                 [](HostConsole& host) {
                                     if (!LogIn(host, "", kRootPassword) ||
                                         !OpenFromMenu(host, kSystemLogsDowns, "<1> Syslog"))
                                         return false;
                                     host.Term().Type("1");
                                     return host.Term().WaitForText(kPagerPrompt);
                                 }}),
    [](const ::testing::TestParamInfo<HangUpCase>& info) { return std::string(info.param.name); });

// A host command already running is not abandoned halfway: it finishes, and then the console ends.
TEST(TerminalHangUpDuringACommand, LetsItFinishFirst) {
    auto host = MakeHost("default");
    const pid_t console = host->WaitForConsole();
    ASSERT_GT(console, 0);
    const std::string record = StartHeldReset(*host);
    ASSERT_FALSE(record.empty()) << "the reset command did not start\n" << host->Term().Dump();

    host->Term().HangUp();
    ASSERT_TRUE(HostConsole::WriteHostFile(console, "/run/go-on", "go\n"));
    ExpectCleanEnd(*host, console);
    EXPECT_EQ(FileLines(record), (std::vector<std::string>{"started", "finished"}))
        << "the command was cut short";
}
