// The idle dimming of the real console, with its clock sped up twentyfold (the console alone; the
// host around it keeps real time).
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <string>

#include "HostSteps.h"

using namespace KovoE2e;

namespace {

constexpr int kSpeedUp = 20;

// Active, the welcome screen's upper half is dark grey and its bottom line amber; dimmed, the whole
// screen is dark grey on black. Both ends of the screen are checked so a half-finished repaint does not
// count.
bool Active(const VirtualTerminal& screen) {
    auto upper = screen.CellAt(0, 0);
    auto bottom = screen.CellAt(screen.Rows() - 1, 0);
    return upper.bg.IsIndex(6) && bottom.bg.IsIndex(3) && bottom.fg.IsIndex(0);
}

bool Dimmed(const VirtualTerminal& screen) {
    auto upper = screen.CellAt(0, 0);
    auto bottom = screen.CellAt(screen.Rows() - 1, 0);
    return upper.bg.IsIndex(0) && bottom.bg.IsIndex(0) && bottom.fg.IsIndex(6);
}

}  // namespace

// F4 switches the welcome screen to black and white: pressed on the dimmed screen it must both wake it
// and take effect, not be used up by the wake-up.
TEST(ConsoleDimming, DimsAfterAMinuteWithoutKeysAndTheKeyThatWakesItAlsoActs) {
    HostConsole host(FreshHostDir(), FastClock(kSpeedUp));
    ASSERT_TRUE(host.WaitForFirstPaint()) << host.Term().Dump();
    ASSERT_TRUE(Active(host.Term().Screen())) << host.Term().Dump();
    const auto painted = std::chrono::steady_clock::now();

    ASSERT_TRUE(host.Term().WaitFor(Dimmed)) << host.Term().Dump();
    // A minute of the console's clock is three seconds here; dimming far earlier would be a fault.
    EXPECT_GE(std::chrono::steady_clock::now() - painted, std::chrono::seconds(60 / kSpeedUp) - 1s);

    // Keys typed while the screen is being redrawn are discarded by design; let the dimming finish.
    ASSERT_TRUE(host.Term().WaitForQuiet(300ms));
    host.Term().Press(Key::F4);
    EXPECT_TRUE(host.Term().WaitFor([](const VirtualTerminal& screen) {
        return screen.CellAt(0, 0).reverse && !screen.CellAt(screen.Rows() - 1, 0).reverse;
    })) << host.Term().Dump();
    EXPECT_TRUE(host.Term().Running());
}

TEST(ConsoleDimming, ResizeKeyOnTheDimmedScreenStillEndsTheConsole) {
    HostConsole host(FreshHostDir(), FastClock(kSpeedUp));
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
