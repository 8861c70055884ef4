// Esc at the console: a key of its own soon after it is typed, and still the first half of the
// Esc-digit function keys when the digit follows at a typing pace.
#include <gtest/gtest.h>

#include "HostSteps.h"

using namespace KovoE2e;

namespace {

// A slow but deliberate typist's Esc-digit pair, somewhat under the console's escape delay.
constexpr auto kHumanPause = 300ms;
// Well past the console's escape delay, still under the one-second default of curses.
constexpr auto kLongPause = 700ms;

}  // namespace

// At a typing pace Esc and 2 are F2, which opens the login; once the digit comes too late to make F2
// (which the dialog ignores), Esc alone closes the dialog.
TEST(EscapeKey, EscThenTwoIsF2AtHumanPaceAndTwoKeysAfterTheDelay) {
    auto host = MakeHost("default");
    auto& term = host->Term();
    term.SendRaw("\x1b");
    term.Pause(kHumanPause);
    term.SendRaw("2");
    ASSERT_TRUE(term.WaitForText(kLoginTitle)) << term.Dump();
    // The dialog discards keys typed while it opens.
    ASSERT_TRUE(term.WaitForQuiet(300ms));
    term.SendRaw("\x1b");
    term.Pause(kLongPause);
    term.SendRaw("2");
    EXPECT_TRUE(term.WaitForTextGone(kLoginTitle, 10s)) << "Esc and 2 were taken as F2\n" << term.Dump();
    EXPECT_TRUE(term.WaitForText(kWelcomeKeys)) << term.Dump();
    EXPECT_TRUE(term.Running());
}
