// The keyboard layout from the menu, at the machine's own keyboard (a local xterm), where the menu
// offers it.
#include <gtest/gtest.h>

#include "HostSteps.h"

using namespace KovoE2e;

namespace {

TEST(Keyboard, EnterWithoutMovingReappliesTheCurrentLayoutAndLogs) {
    ConsoleStart start;
    start.term = "xterm";  // no remote session: the operator sits at the keyboard
    auto host = MakeHost("default", {{"/system/keyboard/mappingsLoaded", "false"}}, start);
    ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kKeyboardDowns, kKeyboardDialogText)) << host->Term().Dump();

    host->Term().Press(Key::Enter);
    EXPECT_TRUE(host->WaitForSyslog({"user.info", "]: Keyboard Layout changed to US Default"}))
        << host->Syslog();
    EXPECT_TRUE(host->Term().WaitForTextGone(kKeyboardDialogText)) << host->Term().Dump();
    EXPECT_EQ(StoreValue(*host, "/system/keyboard/layout"), "\"US Default\"");
    // The host records which layout's mappings it loaded last.
    EXPECT_EQ(StoreValue(*host, "/system/keyboard/mappingsLoaded"), "\"US Default\"")
        << "mappings not loaded again";
}

TEST(Keyboard, EscChangesNothing) {
    ConsoleStart start;
    start.term = "xterm";
    auto host = MakeHost("default", {}, start);
    ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kKeyboardDowns, kKeyboardDialogText)) << host->Term().Dump();
    host->Term().Press(Key::Down);
    ASSERT_TRUE(host->Term().WaitForQuiet(100ms));
    host->Term().Type(" ");
    ASSERT_TRUE(host->Term().WaitForQuiet(100ms));
    host->Term().Press(Key::Escape);
    EXPECT_TRUE(host->Term().WaitForTextGone(kKeyboardDialogText)) << host->Term().Dump();
    EXPECT_EQ(StoreValue(*host, "/system/keyboard/layout"), "\"US Default\"");
    EXPECT_TRUE(host->SyslogLines({"Keyboard Layout changed"}).empty()) << host->Syslog();
}

}  // namespace
