// The idle dimming of the real console, with its clock sped up twentyfold (the console alone; the
// host around it keeps real time).
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <string>

#include "HostConsole.h"

using namespace std::chrono_literals;
using KovoE2e::ConsoleStart;
using KovoE2e::FreshHostDir;
using KovoE2e::HostConsole;
using KovoTerm::Key;
using KovoTerm::VirtualTerminal;

namespace {

constexpr int kSpeedUp = 20;

ConsoleStart FastClock() {
    ConsoleStart start;
    start.consoleOnlyEnvironment = {{"LD_PRELOAD", KOVO_E2E_FAKETIME},
                                    {"FAKETIME", "+0 x" + std::to_string(kSpeedUp)}};
    return start;
}

// The product line and the bottom line are white on black while active, dark grey on black once dimmed:
// the whole screen changes, not just part of it.
bool ScreenIs(const VirtualTerminal& screen, int foreground) {
    int row, column;
    if (!screen.Find("KOVO", row, column)) return false;
    for (auto cell : {screen.CellAt(row, column), screen.CellAt(screen.Rows() - 1, 0)})
        if (!cell.fg.IsIndex(foreground) || !cell.bg.IsIndex(0)) return false;
    return true;
}

bool Dimmed(const VirtualTerminal& screen) { return ScreenIs(screen, 6); }
bool Active(const VirtualTerminal& screen) { return ScreenIs(screen, 7); }

}  // namespace

TEST(ConsoleDimming, DimsAfterAMinuteWithoutKeysAndAKeyBringsItBack) {
    HostConsole host(FreshHostDir(), FastClock());
    ASSERT_TRUE(host.WaitForFirstPaint()) << host.Term().Dump();
    ASSERT_TRUE(Active(host.Term().Screen())) << host.Term().Dump();
    const auto painted = std::chrono::steady_clock::now();

    ASSERT_TRUE(host.Term().WaitFor(Dimmed)) << host.Term().Dump();
    // A minute of the console's clock is three seconds here; dimming far earlier would be a fault.
    EXPECT_GE(std::chrono::steady_clock::now() - painted, std::chrono::seconds(60 / kSpeedUp) - 1s);

    // Keys typed while the screen is being redrawn are discarded by design; let the dimming finish.
    ASSERT_TRUE(host.Term().WaitForQuiet(300ms));
    host.Term().Press(Key::Down);
    EXPECT_TRUE(host.Term().WaitFor(Active)) << host.Term().Dump();
    EXPECT_TRUE(host.Term().Running());
    // The welcome screen never logs anybody out and the console keeps running after the wake-up.
    EXPECT_TRUE(host.SyslogLines({"Resized window"}).empty());
}

// The stand-in welcome frame gives ordinary keys no visible effect; the key map's resize key has one.
TEST(ConsoleDimming, KeyPressedOnTheDimmedScreenStillActs) {
    HostConsole host(FreshHostDir(), FastClock());
    ASSERT_TRUE(host.WaitForFirstPaint()) << host.Term().Dump();
    ASSERT_TRUE(host.Term().WaitFor(Dimmed)) << host.Term().Dump();
    ASSERT_TRUE(host.Term().WaitForQuiet(300ms));
    // The key map's resize sequence, pressed on the dimmed screen, is not swallowed by the wake-up.
    host.Term().SendRaw("\x1bR");
    auto status = host.Term().WaitExit();
    ASSERT_TRUE(status) << host.Term().Dump();
    EXPECT_TRUE(status->IsExitCode(0)) << status->Describe();
    EXPECT_TRUE(host.WaitForSyslog({"user.info", "]: Resized window to 80x25"})) << host.Syslog();
}
