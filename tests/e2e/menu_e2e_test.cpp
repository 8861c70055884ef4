// The System Customization menu of the real console on simulated hosts: its entries and what disables
// them, the log pager behind View System Logs and the pages of View Support Information.
// Every test logs in through the real login dialog and PAM.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "HostSteps.h"

using namespace std::chrono_literals;
using KovoE2e::ConsoleStart;
using KovoE2e::FreshHostDir;
using KovoE2e::HostConsole;
using KovoE2e::StoreChanges;
using KovoTerm::Key;
using KovoTerm::VirtualTerminal;

namespace {

// root's password on every host made here (the hash is of this password, made with its own salt).
constexpr const char* kPassword = "Menu-Pass1";
constexpr const char* kPasswordHash =
    "\"$6$kovomenu$67oiz3OXRlS/m.C8ed7OlBtPj7D2HsJTN0VQrzCD59uSats95fQMeZtYeSG0QxLRGMsRMJ3hF0Sn8AX6NH4qg1\"";

using KovoE2e::kMenuTitle;
// Where the menu's entry list starts on the screen.
constexpr int kListRow = 4, kListColumn = 2, kListWidth = 37;

// A host made from `scenario` with root's password set as above and `changes` made to its store.
std::unique_ptr<HostConsole> MenuHost(const std::string& scenario, StoreChanges changes = {},
                                      const ConsoleStart& start = ConsoleStart{}) {
    changes.emplace_back("/users/0/passwordHash", kPasswordHash);
    return KovoE2e::MakeHost(scenario, changes, start);
}

// The text of the entry list's cells on `row` (rows hold multi-byte box characters, so cells, not bytes).
std::string ListCells(const VirtualTerminal& screen, int row) {
    std::string text;
    for (int column = kListColumn; column < kListColumn + kListWidth; ++column) {
        const std::string cell = screen.CellAt(row, column).text;
        text += cell.empty() ? " " : cell;
    }
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

// The selection: the entry drawn white on black, or in standout on a terminal without colours. Empty
// when none is (a dimmed or covered menu, where the pane's border is dark too).
std::string SelectedEntry(const VirtualTerminal& screen) {
    auto dark = [](const KovoTerm::Cell& cell) { return cell.reverse || cell.bg.IsIndex(0); };
    for (int row = kListRow; row < screen.Rows() - 3; ++row) {
        const auto cell = screen.CellAt(row, kListColumn);
        if (dark(cell) && (cell.reverse || cell.fg.IsIndex(7)) && !dark(screen.CellAt(row, 0)))
            return ListCells(screen, row);
    }
    return {};
}

bool MenuShown(const VirtualTerminal& screen) {
    return screen.Contains(kMenuTitle) && !SelectedEntry(screen).empty();
}

// Logged in as root, with the selection shown.
bool LogIn(HostConsole& host) {
    return KovoE2e::LogIn(host, "", kPassword) && host.Term().WaitFor(MenuShown);
}

// Moves the selection down until `entry` is selected; false when the selection stops elsewhere.
bool SelectDown(HostConsole& host, const std::string& entry) {
    auto& term = host.Term();
    // Keys typed while the menu repaints are discarded.
    if (!term.WaitForQuiet(200ms)) return false;
    for (int presses = 0; presses < 20; ++presses) {
        const std::string now = SelectedEntry(term.Screen());
        if (now == entry) return term.WaitForQuiet(100ms);
        term.Press(Key::Down);
        // Mid-repaint no line may look selected; wait for the new selection itself.
        auto moved = [&](const VirtualTerminal& s) {
            const std::string next = SelectedEntry(s);
            return !next.empty() && next != now;
        };
        if (!term.WaitFor(moved, 3000ms)) return false;
    }
    return false;
}

}  // namespace

// --- entries ------------------------------------------------------------------------------------------

// The selection walks every entry the host offers, in order, and skips the ones it cannot use. (How the
// entries look is the golden screens' business, and that the selection stops at the last entry the item
// list's unit tests'.)
struct HostCase {
    const char* name;
    const char* scenario;
    StoreChanges changes;
    bool remote;                          // reached over SSH rather than at the machine's keyboard
    std::vector<std::string> selections;  // every entry Down reaches from the top, in order
};

void PrintTo(const HostCase& c, std::ostream* out) {
    *out << c.name;
}

class MenuOnHost : public ::testing::TestWithParam<HostCase> {};

TEST_P(MenuOnHost, SelectionReachesWhatTheHostCanDoAndSkipsTheRest) {
    const HostCase& c = GetParam();
    ConsoleStart start;
    start.term = "xterm";  // the machine's own keyboard, unless the session came over SSH
    // Over SSH in colours: in black and white a greyed entry is in standout, like the selection.
    if (c.remote) {
        start.environment = {{"SSH_CLIENT", "192.0.2.7 50022 22"}};
        start.term = "xterm-256color";
    }
    auto host = MenuHost(c.scenario, c.changes, start);
    ASSERT_TRUE(LogIn(*host)) << host->Term().Dump();
    auto& term = host->Term();
    ASSERT_EQ(SelectedEntry(term.Screen()), "Configure Password") << term.Dump();
    for (const std::string& next : c.selections) {
        term.Press(Key::Down);
        ASSERT_TRUE(term.WaitFor([&](const VirtualTerminal& s) { return SelectedEntry(s) == next; }))
            << next << "\n"
            << term.Dump();
    }
}

const std::vector<std::string> kBelowNetwork{"Troubleshooting Options", "View System Logs",
                                             "View Support Information", "Reset System Configuration"};

std::vector<std::string> Walk(std::vector<std::string> head,
                              const std::vector<std::string>& tail = kBelowNetwork) {
    head.insert(head.end(), tail.begin(), tail.end());
    return head;
}

const std::vector<std::string> kNetworkEntries{"Configure Lockdown Mode", "Configure Management Network",
                                               "Restart Management Network", "Test Management Network",
                                               "Network Restore Options"};

INSTANTIATE_TEST_SUITE_P(
    Hosts, MenuOnHost,
    ::testing::Values(
        HostCase{"LocalKeyboard", "default", {}, false, Walk(Walk(kNetworkEntries, {"Configure Keyboard"}))},
        HostCase{"OverSsh", "default", {}, true, Walk(kNetworkEntries)},
        HostCase{"NoManagementInterface",
                 "no-nic",
                 {},
                 true,
                 Walk({"Configure Lockdown Mode", "Network Restore Options"})},
        HostCase{"LockdownImpossible",
                 "default",
                 {{"/services/lockdown/possible", "false"}},
                 true,
                 Walk({"Configure Management Network", "Restart Management Network",
                       "Test Management Network", "Network Restore Options"})},
        // A host in lockdown must let the operator leave it, even when entering it would be impossible.
        HostCase{"InLockdown",
                 "default",
                 {{"/services/lockdown/possible", "false"}, {"/services/lockdown/enabled", "true"}},
                 true,
                 Walk(kNetworkEntries)},
        HostCase{"NetworkBoot",
                 "pxe-boot",
                 {},
                 true,
                 Walk(kNetworkEntries,
                      {"Troubleshooting Options", "View System Logs", "View Support Information"})}),
    [](const ::testing::TestParamInfo<HostCase>& info) { return std::string(info.param.name); });

// --- host notifications and View Support Information ----------------------------------------------------

// A host notification redraws the details with the host's new values, the selection kept; then the
// support pages turn with the page keys and stop at both ends.
TEST(MainMenu, HostNotificationRedrawsTheDetailsAndSupportPagesStopAtBothEnds) {
    auto host = MenuHost("default");
    ASSERT_TRUE(LogIn(*host)) << host->Term().Dump();
    auto& term = host->Term();
    ASSERT_TRUE(SelectDown(*host, "Configure Management Network")) << term.Dump();
    ASSERT_TRUE(term.WaitForText("kovo-host-01.lab.example")) << term.Dump();
    ASSERT_TRUE(KovoE2e::SetStore(*host, "/network/dns/hostname", "\"renamed-01\""));
    ASSERT_TRUE(term.Signal(SIGUSR1, host->WaitForConsole()));
    EXPECT_TRUE(term.WaitForText("renamed-01.lab.example")) << term.Dump();
    EXPECT_EQ(SelectedEntry(term.Screen()), "Configure Management Network");

    ASSERT_TRUE(SelectDown(*host, "View Support Information")) << term.Dump();
    ASSERT_TRUE(term.WaitForText("Page 1 of 3")) << term.Dump();
    // Page Up on the first page and Page Down on the last do nothing: each is followed by a step the
    // other way, which lands on page 2 only if the page did not move.
    term.Press(Key::PageUp);
    term.Press(Key::PageDown);
    ASSERT_TRUE(term.WaitForText("Page 2 of 3")) << term.Dump();
    term.Press(Key::PageDown);
    ASSERT_TRUE(term.WaitForText("Page 3 of 3")) << term.Dump();
    term.Press(Key::PageDown);
    term.Press(Key::PageUp);
    EXPECT_TRUE(term.WaitForText("Page 2 of 3")) << term.Dump();
}

// --- View System Logs ---------------------------------------------------------------------------------

class SystemLogsMenu : public ::testing::Test {
  protected:
    // A host with the logs at `rows` (1-based) present, each holding a line that names it, and at
    // `pipeRow` (when given) a pipe instead of a file; logged in, with View System Logs selected.
    // In black and white, where the selection is standout: after the pager has had the terminal the line
    // must come back marked, or an operator on a serial line cannot see where he is.
    void Start(const std::vector<int>& rows, int pipeRow = 0) {
        ConsoleStart start;
        start.term = "xterm";
        _host = MenuHost("default", {}, start);
        const pid_t console = _host->WaitForConsole();
        ASSERT_GT(console, 0);
        const char* paths[] = {"/var/log/syslog.log",  "/var/log/zenkernel.log",  "/var/log/sysboot.log",
                               "/var/log/hagentd.log", "/var/log/hostagent2.log", "/var/log/haagent.log",
                               "/var/log/obsd.log"};
        for (int row : rows) {
            if (row == 1) continue;  // the host's own syslog is always there
            ASSERT_TRUE(HostConsole::WriteHostFile(console, paths[row - 1], Marker(row) + "\n"));
        }
        if (pipeRow) {
            const std::string pipe = "/proc/" + std::to_string(console) + "/root" + paths[pipeRow - 1];
            ASSERT_EQ(mkfifo(pipe.c_str(), 0644), 0) << pipe;
        }
        ASSERT_TRUE(LogIn(*_host)) << _host->Term().Dump();
        ASSERT_TRUE(SelectDown(*_host, "View System Logs")) << _host->Term().Dump();
    }
    static std::string Marker(int row) { return "marker line of log row " + std::to_string(row); }
    // Types `digit`, waits for the pager to show the log of `row`, quits it and waits for the menu to be
    // back as it was.
    void ExpectDigitOpens(char digit, int row) {
        auto& term = _host->Term();
        term.Type(std::string(1, digit));
        ASSERT_TRUE(term.WaitForText(Marker(row))) << term.Dump();
        ASSERT_TRUE(term.WaitForText("<Q> Quit </> RegExp Search <H> Help")) << term.Dump();
        term.Type("q");
        ASSERT_TRUE(term.WaitFor([](const VirtualTerminal& s) {
            return MenuShown(s) && SelectedEntry(s) == "View System Logs";
        })) << term.Dump();
        ASSERT_TRUE(term.WaitForQuiet(200ms));
    }

    std::unique_ptr<HostConsole> _host;
};

// The fourth log is a pipe, not a file: not offered, so 3 opens the fifth (a pager on the pipe would wait
// for a writer). Where a digit past the present logs goes is the unit tests' (SystemLogDigits).
TEST_F(SystemLogsMenu, DigitsCountOnlyThePresentLogsAndThePagerGivesTheMenuBackIntact) {
    Start({1, 3, 5}, 4);
    auto& term = _host->Term();
    ExpectDigitOpens('2', 3);
    ExpectDigitOpens('3', 5);
    // The menu still takes keys.
    term.Press(Key::Down);
    EXPECT_TRUE(term.WaitFor([](const VirtualTerminal& s) {
        return SelectedEntry(s) == "View Support Information";
    })) << term.Dump();
}

TEST_F(SystemLogsMenu, PagerCannotRunCommandsOrOpenOtherFiles) {
    Start({1});
    auto& term = _host->Term();
    term.Type("1");
    ASSERT_TRUE(term.WaitForText("<Q> Quit </> RegExp Search <H> Help")) << term.Dump();
    term.Type("!");
    EXPECT_TRUE(term.WaitForText("Command not available")) << term.Dump();
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitForQuiet(200ms));
    term.Type(":e");
    EXPECT_TRUE(term.WaitForText("Command not available")) << term.Dump();
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitForQuiet(200ms));
    term.Type("q");
    EXPECT_TRUE(term.WaitFor(MenuShown)) << term.Dump();
}
