// A termination signal while a dialog is open over the welcome screen still ends the console cleanly.
// How a dialog greys the screen behind it and gives it back is the unit tests' business.
#include <gtest/gtest.h>
#include <signal.h>
#include <termios.h>

#include <chrono>
#include <string>

#include "HostConsole.h"

using KovoE2e::ConsoleStart;
using KovoE2e::FreshHostDir;
using KovoE2e::HostConsole;
using KovoTerm::Key;
using namespace std::chrono_literals;

TEST(DialogOverWelcome, TerminationWithTheDialogOpenEndsCleanly) {
    HostConsole host(FreshHostDir(), ConsoleStart{});
    ASSERT_TRUE(host.WaitForFirstPaint()) << host.Term().Dump();
    pid_t console = host.WaitForConsole();
    ASSERT_GT(console, 0);
    host.Term().Press(Key::F2);
    ASSERT_TRUE(host.Term().WaitForText("Authentication Required")) << host.Term().Dump();
    ASSERT_TRUE(host.Term().WaitForQuiet(300ms));
    const std::size_t before = host.Term().Output().size();

    ASSERT_TRUE(host.Term().Signal(SIGTERM, console));
    auto status = host.Term().WaitExit();
    ASSERT_TRUE(status) << host.Term().Dump();
    EXPECT_TRUE(status->IsExitCode(0)) << status->Describe();
    EXPECT_NE(host.Term().Output().find("\x1b]R", before), std::string::npos) << "palette not reset";
    auto after = host.Term().TerminalAttributes();
    ASSERT_TRUE(after);
    EXPECT_EQ(after->c_lflag & (ICANON | ECHO), tcflag_t(ICANON | ECHO)) << "terminal left in raw mode";
}
