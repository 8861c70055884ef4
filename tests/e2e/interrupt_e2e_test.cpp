// Ctrl-C is the console's key (it ends the console, which the host starts again). It never reaches a
// program the console runs: a host command goes on to its end, and the pager, which has a use for
// Ctrl-C of its own, hands the terminal back to the same console. Ctrl-Z never suspends the console,
// whatever the terminal.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "HostSteps.h"

using namespace KovoE2e;

namespace {

TEST(CtrlC, DuringAHostCommandLetsItFinish) {
    auto host = MakeHost("default");
    const pid_t console = host->WaitForConsole();
    ASSERT_GT(console, 0);
    const std::string record = StartHeldReset(*host);
    ASSERT_FALSE(record.empty()) << "the reset command did not start\n" << host->Term().Dump();

    host->Term().SendRaw("\x03");
    // Long enough for an interrupt to have ended the command, had it reached it.
    host->Term().Pause(500ms);
    ASSERT_TRUE(HostConsole::WriteHostFile(console, "/run/go-on", "go\n"));
    EXPECT_TRUE(host->Term().WaitUntil([&] { return FileLines(record).size() == 2; }))
        << "the command was cut short";
    EXPECT_EQ(FileLines(record), (std::vector<std::string>{"started", "finished"}));
}

TEST(CtrlC, InThePagerIsThePagersAndTheSessionGoesOn) {
    auto host = MakeHost("default");
    const pid_t console = host->WaitForConsole();
    ASSERT_GT(console, 0);
    ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kSystemLogsDowns, "<1> Syslog")) << host->Term().Dump();
    host->Term().Type("1");
    ASSERT_TRUE(Settled(*host, kPagerPrompt)) << host->Term().Dump();
    // Follow mode, left the only way it can be: Ctrl-C. Then the pager's own quit.
    host->Term().Type("F");
    host->Term().Pause(300ms);
    host->Term().SendRaw("\x03");
    ASSERT_TRUE(host->Term().WaitForQuiet(300ms));
    host->Term().Type("q");
    ASSERT_TRUE(host->Term().WaitFor(MenuShown)) << host->Term().Dump();
    // The same console, still logged in: it neither ended nor started again.
    host->Term().Pause(500ms);
    EXPECT_EQ(host->WaitForConsole(), console);
    EXPECT_EQ(host->SyslogLines({"Starting KOVO"}).size(), 1u) << host->Syslog();
}

// Started on a terminal that keeps its suspend character (no console number), as over SSH.
TEST(CtrlZ, NeitherStopsNorEndsTheConsole) {
    auto host = MakeHost("default");
    const pid_t console = host->WaitForConsole();
    ASSERT_GT(console, 0);
    host->Term().SendRaw("\x1a");
    host->Term().Pause(300ms);
    std::ifstream stat("/proc/" + std::to_string(console) + "/stat");
    std::string pid, name, state;
    stat >> pid >> name >> state;
    EXPECT_NE(state, "T") << "the console was stopped";
    EXPECT_TRUE(OpenLogin(*host)) << host->Term().Dump();
    EXPECT_EQ(host->WaitForConsole(), console);
    EXPECT_EQ(host->SyslogLines({"Starting KOVO"}).size(), 1u) << host->Syslog();
}

}  // namespace
