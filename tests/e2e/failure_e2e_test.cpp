// A platform failure passing out of a dialog to a screen that catches it: the screen is given back as
// it was, active and in its own colours, and keeps working.
#include <gtest/gtest.h>
#include <signal.h>

#include "HostSteps.h"

using namespace KovoE2e;

namespace {

// On a black-and-white terminal an active dialog body is plain; a greyed one is in standout.
bool LoginBodyActive(const KovoTerm::VirtualTerminal& screen) {
    int row = 0, column = 0;
    return screen.Find("Login Name", row, column) && !screen.CellAt(row, column).reverse;
}

}  // namespace

TEST(PlatformFailure, UnderTheLoginsKeyboardDialogLeavesTheLoginActiveAndWorking) {
    ConsoleStart start;
    start.term = "xterm";  // at the machine's keyboard: the login dialog offers the keyboard layout
    auto host =
        MakeHost("default",
                 {{"/simulation/faults/SystemInfo.LoadKeyboardMappings", "\"mappings unreadable\""}}, start);
    ASSERT_TRUE(host->WaitForFirstPaint()) << host->Term().Dump();
    pid_t console = host->WaitForConsole();
    ASSERT_TRUE(PressFor(*host, Key::F2, kLoginTitle)) << host->Term().Dump();
    host->Term().Press(Key::Enter);  // the keyboard line is focused first
    ASSERT_TRUE(Settled(*host, kKeyboardDialogText)) << host->Term().Dump();

    host->Term().Press(Key::Enter);
    EXPECT_TRUE(
        host->WaitForSyslog({"user.err", "Unable to change the keyboard layout: mappings unreadable"}))
        << host->Syslog();
    // The host's refusal is shown over the login until the operator has read it.
    ASSERT_TRUE(host->Term().WaitForTextGone(kKeyboardDialogText)) << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitForText("mappings unreadable")) << host->Term().Dump();
    EXPECT_TRUE(host->Term().Screen().Contains("Configure Keyboard")) << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitForQuiet(300ms));
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForTextGone("mappings unreadable")) << host->Term().Dump();
    EXPECT_TRUE(host->Term().WaitFor(LoginBodyActive)) << "login left greyed\n" << host->Term().Dump();
    EXPECT_EQ(StoreValue(*host, "/system/keyboard/layout"), "\"US Default\"");

    // A host notification goes to the login dialog, not to the dialog that is gone; then the operator
    // logs in as usual.
    ASSERT_TRUE(host->Term().Signal(SIGUSR1, console));
    ASSERT_TRUE(host->Term().WaitForQuiet(300ms));
    host->Term().Press(Key::Down);
    host->Term().Press(Key::Down);
    host->Term().Type(kRootPassword);
    host->Term().Press(Key::Enter);
    EXPECT_TRUE(host->Term().WaitForText("System Customization")) << host->Term().Dump();
}
