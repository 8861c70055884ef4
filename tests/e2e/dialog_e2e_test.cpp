// A dialog over the welcome screen: the screen behind it greys out, comes back in its own colours when
// the dialog closes, and a termination signal while the dialog is open still ends the console cleanly.
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
using KovoTerm::VirtualTerminal;
using namespace std::chrono_literals;

namespace {

// Row 0 lies behind every dialog: the welcome screen's upper panel, dark grey when active.
bool WelcomeActive(const VirtualTerminal& screen) {
    return screen.CellAt(0, 0).bg.IsIndex(6);
}
bool WelcomeGreyed(const VirtualTerminal& screen) {
    auto cell = screen.CellAt(0, 0);
    auto bottom = screen.CellAt(screen.Rows() - 1, 0);
    return cell.bg.IsIndex(0) && bottom.bg.IsIndex(0) && bottom.fg.IsIndex(6);
}

}  // namespace

TEST(DialogOverWelcome, GreysTheScreenBehindAndRestoresItOnClose) {
    HostConsole host(FreshHostDir(), ConsoleStart{});
    ASSERT_TRUE(host.WaitForFirstPaint()) << host.Term().Dump();
    ASSERT_TRUE(WelcomeActive(host.Term().Screen())) << host.Term().Dump();

    host.Term().Press(Key::F2);
    ASSERT_TRUE(host.Term().WaitForText("Authentication Required")) << host.Term().Dump();
    EXPECT_TRUE(host.Term().WaitFor(WelcomeGreyed)) << host.Term().Dump();

    ASSERT_TRUE(host.Term().WaitForQuiet(300ms));
    host.Term().Press(Key::Escape);
    ASSERT_TRUE(host.Term().WaitForTextGone("Authentication Required")) << host.Term().Dump();
    EXPECT_TRUE(host.Term().WaitFor(WelcomeActive)) << host.Term().Dump();
}

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
