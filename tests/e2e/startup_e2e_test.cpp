// Start-up of the real console on a simulated host: its argument, terminal type and pid file.
#include <gtest/gtest.h>
#include <signal.h>
#include <termios.h>

#include <optional>
#include <string>
#include <vector>

#include "HostConsole.h"

using namespace KovoE2e;

namespace {

constexpr const char* kStarting = "]: Starting KOVO";
constexpr const char* kInvalidVt = "Invalid VT specified for KOVO: ";
constexpr const char* kPidFile = "/var/run/kovo.pid";
constexpr const char* kMultiple = "Attempt to run multiple KOVO instances, not updating /var/run/kovo.pid";
constexpr cc_t kCtrlZ = 032;

}  // namespace

// --- the console number -------------------------------------------------------------------------------

struct VtArgumentCase {
    const char* name;
    std::vector<std::string> arguments;
    bool invalid;     // logged as such, and ignored
    cc_t suspendKey;  // the terminal's suspend character while the console runs
};

class ConsoleNumber : public ::testing::TestWithParam<VtArgumentCase> {};

TEST_P(ConsoleNumber, IsCheckedLoggedAndDecidesWhetherCtrlZIsDisabled) {
    const auto& param = GetParam();
    ConsoleStart start;
    start.arguments = param.arguments;
    HostConsole host(FreshHostDir(), start);
    ASSERT_TRUE(host.WaitForFirstPaint()) << host.Term().Dump();
    auto starting = host.WaitForSyslog({"user.info", kStarting});
    ASSERT_TRUE(starting) << host.Syslog();
    const pid_t console = host.WaitForConsole();
    auto inner = HostConsole::PidInsideHost(console);
    ASSERT_TRUE(inner);
    // The start's log line carries the console's own process id, which its pid file holds.
    EXPECT_NE(starting->find("KOVO[" + std::to_string(*inner) + "]"), std::string::npos) << *starting;
    EXPECT_EQ(HostConsole::ReadHostFile(console, kPidFile), std::to_string(*inner));
    EXPECT_TRUE(host.SyslogLines({kMultiple}).empty());

    auto invalid = host.SyslogLines({kInvalidVt});
    ASSERT_EQ(invalid.size(), param.invalid ? 1u : 0u) << host.Syslog();
    if (param.invalid) {
        const std::string expected = kInvalidVt + param.arguments[0];
        const std::string& line = invalid[0];
        EXPECT_EQ(line.substr(line.size() - expected.size()), expected) << line;
        EXPECT_NE(line.find(" user.err "), std::string::npos) << line;
        // Checked before logging is set up for good, and start-up went on after it.
        const std::string log = host.Syslog();
        EXPECT_LT(log.find(line), log.find(*starting)) << log;
    }
    auto attributes = host.Term().TerminalAttributes();
    ASSERT_TRUE(attributes);
    EXPECT_EQ(attributes->c_cc[VSUSP], param.suspendKey);
}

// Which numbers are valid is the unit tests' business; here one of each, the valid one with extra
// arguments that are ignored. With a console number the suspend character is switched off for good; an
// ignored number must not touch the terminal.
INSTANTIATE_TEST_SUITE_P(Arguments, ConsoleNumber,
                         ::testing::Values(VtArgumentCase{"None", {}, false, kCtrlZ},
                                           VtArgumentCase{"Invalid", {"64"}, true, kCtrlZ},
                                           VtArgumentCase{"ValidWithExtras", {"2", "abc", "99"}, false, 0}),
                         [](const auto& info) { return std::string(info.param.name); });

// --- the terminal type --------------------------------------------------------------------------------
//
// The type the console settles on shows in what it writes: "xterm" switches to the alternate screen,
// "vt102" cannot; "linux" would load its palette with ESC ] P; only a terminal that can redefine colours
// gets palette sets (the golden screens hold the redefined shades), and one that cannot is drawn in black
// and white (standout).

namespace {

constexpr const char* kXtermAlternateScreen = "\x1b[?1049h\x1b[22;0;0t";
constexpr const char* kLinuxPaletteSet = "\x1b]P";
constexpr const char* kPaletteSet = "\x1b]4;";

// The welcome screen's upper half has a dark grey background and its bottom line a yellow one: in black
// and white the first is drawn in standout, the second plain.
bool DrawnInBlackAndWhite(const KovoTerm::VirtualTerminal& screen) {
    return screen.CellAt(0, 0).reverse && !screen.CellAt(screen.Rows() - 1, 0).reverse;
}

}  // namespace

// The TERM the console is started with; without one it is driven as a VT102 (which types become one is
// the unit tests' business). Neither can redefine colours: black and white.
class MonochromeTerminal : public ::testing::TestWithParam<std::optional<std::string>> {};

TEST_P(MonochromeTerminal, IsDrivenAsItsTypeInBlackAndWhite) {
    ConsoleStart start;
    start.term = GetParam();
    HostConsole host(FreshHostDir(), start);
    ASSERT_TRUE(host.WaitForFirstPaint()) << host.Term().Dump();
    const std::string& out = host.Term().Output();
    if (GetParam() == "xterm")
        EXPECT_NE(out.find(kXtermAlternateScreen), std::string::npos) << "not driven as xterm";
    else
        EXPECT_EQ(out.find("\x1b[?1049h"), std::string::npos) << "a VT102 has no alternate screen";
    EXPECT_EQ(out.find(kLinuxPaletteSet), std::string::npos) << "the palette of a real console was loaded";
    EXPECT_EQ(out.find(kPaletteSet), std::string::npos);
    EXPECT_TRUE(DrawnInBlackAndWhite(host.Term().Screen())) << host.Term().Dump();
}

INSTANTIATE_TEST_SUITE_P(Types, MonochromeTerminal,
                         ::testing::Values(std::nullopt, std::optional<std::string>("xterm")),
                         [](const auto& info) { return info.param.value_or("Unset"); });

// --- the pid file -------------------------------------------------------------------------------------

TEST(ConsolePidFile, SecondInstanceLeavesALiveOnesFileAloneAndStillRuns) {
    HostConsole host(FreshHostDir(), ConsoleStart{});
    ASSERT_TRUE(host.WaitForFirstPaint()) << host.Term().Dump();
    pid_t first = host.WaitForConsole();
    ASSERT_GT(first, 0);
    const std::string firstId = std::to_string(*HostConsole::PidInsideHost(first));
    ASSERT_EQ(HostConsole::ReadHostFile(first, kPidFile), firstId);

    auto second = host.ExecInHost({HostConsole::ConsoleProgram()}, ConsoleStart{});
    ASSERT_TRUE(second->WaitForText("<F12> Shut Down/Restart")) << second->Dump();
    auto line = host.WaitForSyslog({"user.err", "KOVO[", kMultiple});
    ASSERT_TRUE(line) << host.Syslog();
    EXPECT_EQ(line->find("KOVO[" + firstId + "]"), std::string::npos) << "logged by the wrong instance";
    EXPECT_EQ(HostConsole::ReadHostFile(first, kPidFile), firstId);
    EXPECT_TRUE(second->Running());
    EXPECT_TRUE(host.Term().Running());
}

// The ended console's own id is left behind: a pid file of a dead process. The other kinds of stale
// contents are the unit tests' business.
TEST(StalePidFile, IsTakenOverByTheNextConsole) {
    ConsoleStart start;
    start.once = false;  // the host starts the console again, as a real one does
    HostConsole host(FreshHostDir(), start);
    ASSERT_TRUE(host.WaitForFirstPaint()) << host.Term().Dump();
    pid_t first = host.WaitForConsole();
    ASSERT_GT(first, 0);
    ASSERT_TRUE(host.Term().Signal(SIGTERM, first));

    pid_t next = host.WaitForConsole(first);
    ASSERT_GT(next, 0) << host.Syslog();
    auto inner = HostConsole::PidInsideHost(next);
    ASSERT_TRUE(inner);
    const std::string expected = std::to_string(*inner);
    EXPECT_TRUE(host.Term().WaitUntil([&] { return HostConsole::ReadHostFile(next, kPidFile) == expected; }))
        << "pid file holds '" << HostConsole::ReadHostFile(next, kPidFile).value_or("(missing)") << "'";
    EXPECT_TRUE(host.SyslogLines({kMultiple}).empty()) << host.Syslog();
}
