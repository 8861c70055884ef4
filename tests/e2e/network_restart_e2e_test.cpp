// Restart Management Network on the simulated host: the confirmation, the result, the event, and a host
// that fails the restart without ending the console. Which addresses the result lists for which host is
// the unit tests' business, how it looks the golden screens'.
#include <gtest/gtest.h>

#include "NetworkSteps.h"

namespace {

using namespace KovoE2e;

constexpr const char* kConfirmTitle = "Restart Management Network: Confirm";
constexpr const char* kRestartTitle = "Please wait while the management network restarts.";
constexpr const char* kRestartEvent = "@&!*@*@(obs.user.kovo.network.restart)Restarting zk0";
constexpr const char* kErrorTitle = "Restart Management Network: Error";

TEST(NetworkRestart, OnlyF11RestartsAndOnlyEnterClosesTheResult) {
    auto host = MakeHost("default");
    ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kRestartDowns, kConfirmTitle)) << host->Term().Dump();
    // Enter is no answer here: only F11 restarts.
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForQuiet(300ms));
    EXPECT_TRUE(host->Term().Screen().Contains(kConfirmTitle));
    EXPECT_EQ(StoreJson(*host, "/network/zenkNics/0/commits"), nullptr);

    ASSERT_TRUE(PressFor(*host, Key::F11, "<Enter> OK")) << host->Term().Dump();
    // The result stays until Enter: Esc does not close it, so the Down after it does not reach the menu,
    // whose selection stays on the entry.
    host->Term().Press(Key::Escape);
    host->Term().Press(Key::Down);
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(Closed(*host, kRestartTitle)) << host->Term().Dump();
    // The detail pane's title, on the first row, names the selected entry.
    EXPECT_NE(host->Term().Screen().RowText(1).find("Restart Management Network"), std::string::npos)
        << host->Term().Dump();
    EXPECT_FALSE(host->Term().Screen().Contains(kConfirmTitle));

    EXPECT_EQ(Lines(HostRecords(*host, "events.log"), kRestartEvent).size(), 1u)
        << HostRecords(*host, "events.log");
    EXPECT_EQ(host->SyslogLines({"user.info", "]: Restarting zk0"}).size(), 1u) << host->Syslog();
    EXPECT_EQ(StoreJson(*host, "/network/zenkNics/0/enabled"), true);
    EXPECT_EQ(StoreJson(*host, "/network/zenkNics/0/commits"), 1);
    EXPECT_TRUE(Answers(*host, "10.20.30.41"));
}

TEST(NetworkRestart, FailuresAreReportedAndTheConsoleStays) {
    for (const std::string fault : {"ZenkNic.Disable", "ZenkNic.Enable"}) {
        SCOPED_TRACE(fault);
        auto host = MakeHost("default", {{"/simulation/faults/" + fault, R"("the host refused")"}});
        const pid_t console = host->WaitForConsole();
        const auto enabledBefore = StoreJson(*host, "/network/zenkNics/0/enabled");
        ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << host->Term().Dump();
        ASSERT_TRUE(OpenFromMenu(*host, kRestartDowns, kConfirmTitle)) << host->Term().Dump();
        host->Term().Press(Key::F11);
        ASSERT_TRUE(ShowsMessage(*host, kErrorTitle, "Operation on the management network interface failed."))
            << host->Term().Dump();
        EXPECT_TRUE(host->WaitForSyslog(
            {"user.err", "]: Restarting the management network failed: the host refused"}))
            << host->Syslog();
        ASSERT_TRUE(Acknowledge(*host, "Operation on the management network interface failed."));
        EXPECT_TRUE(host->Term().WaitFor(MenuShown)) << host->Term().Dump();
        EXPECT_EQ(host->WaitForConsole(), console);
        // A failed enable leaves the interface down, as the host has it; a failed disable leaves it be.
        if (fault == "ZenkNic.Enable")
            EXPECT_EQ(StoreJson(*host, "/network/zenkNics/0/enabled"), false);
        else
            EXPECT_EQ(StoreJson(*host, "/network/zenkNics/0/enabled"), enabledBefore);
    }
}

TEST(NetworkRestart, InterfaceGoneSinceTheMenuOpenedIsReported) {
    auto host = MakeHost("default");
    ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << host->Term().Dump();
    ASSERT_TRUE(SetStore(*host, "/network/zenkNics", "[]"));
    ASSERT_TRUE(OpenFromMenu(*host, kRestartDowns, kErrorTitle)) << host->Term().Dump();
    EXPECT_TRUE(ShowsMessage(*host, kErrorTitle, "Management network interface cannot be found."));
    EXPECT_TRUE(Lines(HostRecords(*host, "events.log"), "network.restart").empty());
}

}  // namespace
