// Restart Management Network on the simulated host: the confirmation, the progress lines the operator
// reads afterwards, the event, and a host that fails the restart without ending the console. Which
// addresses the lines list for which host is the unit tests' business.
#include <gtest/gtest.h>

#include "NetworkSteps.h"

namespace {

using namespace KovoE2e;

constexpr int kRestartDowns = 3;
constexpr const char* kConfirmTitle = "Restart Management Network: Confirm";
constexpr const char* kRestartTitle = "Please wait while the management network restarts.";
constexpr const char* kRestartEvent = "@&!*@*@(obs.user.kovo.network.restart)Restarting zk0";
constexpr const char* kErrorTitle = "Restart Management Network: Error";

// The progress lines as the dialog shows them, from the first, without the blanks that end each row.
std::vector<std::string> ProgressLines(const VirtualTerminal& screen) {
    int row = 0, column = 0;
    std::vector<std::string> lines;
    if (!screen.Find("Stopping management network.", row, column)) return lines;
    // In bytes: the rows hold box-drawing characters, and the same ones before the dialog's text.
    const size_t start = screen.RowText(row).find("Stopping management network.");
    for (; row < screen.Rows(); ++row) {
        std::string text = screen.RowText(row).substr(start);
        // Up to the dialog's right border, without the blanks before it.
        text = text.substr(0, text.find("\u2502"));
        while (!text.empty() && text.back() == ' ') text.pop_back();
        lines.push_back(text);
        if (text == "Done.") break;
    }
    return lines;
}

TEST(NetworkRestart, StaticHostShowsItsAddressesAndOnlyEnterCloses) {
    // Five static IPv6 addresses and no router advertisement: the list is the link-local one and five.
    const StoreChanges changes = {{"/network/zenkNics/0/ipConfig/ipv6",
                                   R"({"dhcp": false, "routerAdvertised": false, "gateway": "", "networks": [
             {"address": "2001:db8:20:30::51", "prefixLength": 64, "type": 0, "scope": 3},
             {"address": "2001:db8:20:30::52", "prefixLength": 64, "type": 0, "scope": 3},
             {"address": "2001:db8:20:30::53", "prefixLength": 64, "type": 0, "scope": 3},
             {"address": "2001:db8:20:30::54", "prefixLength": 64, "type": 0, "scope": 3},
             {"address": "2001:db8:20:30::55", "prefixLength": 64, "type": 0, "scope": 3}]})"}};
    auto host = MakeHost("default", changes);
    ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kRestartDowns, kConfirmTitle)) << host->Term().Dump();
    EXPECT_TRUE(host->Term().Screen().Contains("Restart management network now?"));
    // Enter is no answer here: only F11 restarts.
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForQuiet(300ms));
    EXPECT_TRUE(host->Term().Screen().Contains(kConfirmTitle));
    EXPECT_EQ(StoreJson(*host, "/network/zenkNics/0/commits"), nullptr);

    host->Term().Press(Key::F11);
    ASSERT_TRUE(host->Term().WaitFor([](const VirtualTerminal& screen) {
        return !ProgressLines(screen).empty() && ProgressLines(screen).back() == "Done.";
    })) << host->Term().Dump();
    EXPECT_EQ(
        ProgressLines(host->Term().Screen()),
        (std::vector<std::string>{"Stopping management network. Done.", "Starting management network.",
                                  "   IP address is  10.20.30.41", "   IP address is  2001:db8:20:30::51",
                                  "   IP address is  2001:db8:20:30::52", "   ...", "Done."}))
        << host->Term().Dump();
    // The result stays until Enter: Esc does not close it, so the Down after it does not reach the menu,
    // whose selection stays on the entry.
    host->Term().Press(Key::Escape);
    host->Term().Press(Key::Down);
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForTextGone(kRestartTitle)) << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitForQuiet(300ms));
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
