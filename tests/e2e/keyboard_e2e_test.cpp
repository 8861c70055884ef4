// The keyboard layout from the menu, at the machine's own keyboard (a local xterm), where the menu
// offers it.
#include <gtest/gtest.h>

#include "HostSteps.h"

using namespace KovoE2e;

namespace {

// Esc after another layout was chosen changes nothing; Enter on the dialog opened again, without moving,
// applies the current layout again, and the host loads its mappings again.
TEST(Keyboard, EscChangesNothingAndEnterWithoutMovingReappliesTheCurrentLayout) {
    ConsoleStart start;
    start.term = "xterm";  // no remote session: the operator sits at the keyboard
    auto host = MakeHost("default", {{"/system/keyboard/mappingsLoaded", "false"}}, start);
    auto& term = host->Term();
    ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << term.Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kKeyboardDowns, kKeyboardDialogText)) << term.Dump();
    term.Press(Key::Down);
    ASSERT_TRUE(term.WaitForQuiet(100ms));
    term.Type(" ");
    ASSERT_TRUE(term.WaitForQuiet(100ms));
    term.Press(Key::Escape);
    ASSERT_TRUE(term.WaitForTextGone(kKeyboardDialogText)) << term.Dump();
    EXPECT_EQ(StoreValue(*host, "/system/keyboard/layout"), "\"US Default\"");
    EXPECT_TRUE(host->SyslogLines({"Keyboard Layout changed"}).empty()) << host->Syslog();

    // The menu discards keys typed while it comes back.
    ASSERT_TRUE(term.WaitForQuiet(300ms));
    ASSERT_TRUE(OpenFromMenu(*host, 0, kKeyboardDialogText)) << term.Dump();
    term.Press(Key::Enter);
    EXPECT_TRUE(host->WaitForSyslog({"user.info", "]: Keyboard Layout changed to US Default"}))
        << host->Syslog();
    EXPECT_TRUE(term.WaitForTextGone(kKeyboardDialogText)) << term.Dump();
    EXPECT_EQ(StoreValue(*host, "/system/keyboard/layout"), "\"US Default\"");
    // The host records which layout's mappings it loaded last.
    EXPECT_EQ(StoreValue(*host, "/system/keyboard/mappingsLoaded"), "\"US Default\"")
        << "mappings not loaded again";
}

}  // namespace
