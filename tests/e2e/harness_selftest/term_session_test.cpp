// The harness against a real curses program in a pseudo-terminal: what it reads, sends and waits for, where
// a fault would let a console test pass that should fail. (Raw bytes, resizes, pauses and hang-ups are
// proven by the console tests that use them: a fault there fails them.)
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>

#include "ProcessTree.h"
#include "TermSession.h"

using namespace std::chrono_literals;
using KovoTerm::Key;
using KovoTerm::ProcessTree;
using KovoTerm::SpawnOptions;
using KovoTerm::TermSession;

namespace {

SpawnOptions Probe(int columns = 80, int rows = 25) {
    SpawnOptions options;
    options.argv = {KOVO_TERM_PROBE};
    options.columns = columns;
    options.rows = rows;
    options.environment = {{"PROBE_MARK", "m1"}};
    return options;
}

SpawnOptions Shell(const std::string& script) {
    SpawnOptions options;
    options.argv = {"/bin/sh", "-c", script};
    return options;
}

// A process that is gone or only a zombie no longer runs.
bool ProcessRuns(pid_t pid) {
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string all;
    if (!std::getline(stat, all)) return false;
    auto close = all.rfind(')');
    return close != std::string::npos && close + 2 < all.size() && all[close + 2] != 'Z';
}

}  // namespace

TEST(TermSession, ReadsTextColoursRedefinedShadesAndStandout) {
    TermSession probe(Probe());
    ASSERT_TRUE(probe.WaitForText("PROBE READY 80x25")) << probe.Dump();
    // The corner is the last cell the probe draws; a refresh may reach the terminal in several writes.
    ASSERT_TRUE(probe.WaitFor([](const KovoTerm::VirtualTerminal& s) {
        return s.CellAt(24, 78).text == "Z";
    })) << probe.Dump();
    const auto& screen = probe.Screen();
    EXPECT_EQ(screen.RowText(4), "MARK=m1");

    auto red = screen.CellAt(1, 0);
    EXPECT_EQ(red.text, "R");
    EXPECT_TRUE(red.fg.IsIndex(7)) << red.Describe();
    EXPECT_TRUE(red.bg.IsIndex(1)) << red.Describe();
    EXPECT_TRUE(red.bold);

    // The probe redefines yellow as amber; the harness sees the new shade through the palette hook.
    auto amber = screen.CellAt(2, 0);
    EXPECT_TRUE(amber.fg.IsIndex(3)) << amber.Describe();
    EXPECT_TRUE(amber.fg.IsRgb(0xff, 0xcc, 0x00)) << amber.Describe();
    EXPECT_TRUE(amber.bg.IsIndex(0)) << amber.Describe();
    EXPECT_GE(screen.PaletteSets(), 1);

    EXPECT_TRUE(screen.CellAt(3, 0).reverse);
    EXPECT_FALSE(screen.CellAt(4, 0).reverse);
}

TEST(TermSession, TerminalWithoutColourRedefinitionKeepsStandardShades) {
    auto options = Probe();
    options.term = "tmux-256color";  // its terminfo entry cannot change colours
    TermSession probe(options);
    ASSERT_TRUE(probe.WaitForText("KEY 0: none")) << probe.Dump();
    EXPECT_EQ(probe.Screen().PaletteSets(), 0);
    auto amber = probe.Screen().CellAt(2, 0);
    EXPECT_TRUE(amber.fg.IsIndex(3));
    EXPECT_FALSE(amber.fg.IsRgb(0xff, 0xcc, 0x00)) << amber.Describe();
}

TEST(TermSession, KeysArriveAsTheProgramDecodesThem) {
    TermSession probe(Probe());
    ASSERT_TRUE(probe.WaitForText("KEY 0: none")) << probe.Dump();
    struct Case {
        Key key;
        const char* name;
    } cases[] = {
        // One key of each encoding family; the bytes of every key are the terminal model's own test.
        {Key::Up, "KEY_UP"},          {Key::Home, "KEY_HOME"}, {Key::End, "KEY_END"},
        {Key::PageDown, "KEY_NPAGE"}, {Key::Delete, "KEY_DC"}, {Key::Backspace, "KEY_BACKSPACE"},
        {Key::Enter, "^J"},           {Key::F1, "KEY_F(1)"},   {Key::F12, "KEY_F(12)"},
        {Key::Escape, "^["},
    };
    int count = 0;
    for (const auto& c : cases) {
        probe.Press(c.key);
        std::string expected = "KEY " + std::to_string(++count) + ": " + c.name;
        EXPECT_TRUE(probe.WaitForText(expected)) << expected << "\n" << probe.Dump();
    }
    probe.Type("x");
    EXPECT_TRUE(probe.WaitForText("KEY " + std::to_string(++count) + ": x")) << probe.Dump();
}

TEST(TermSession, ExitStatusAndLastBytesAreCollected) {
    TermSession probe(Probe());
    ASSERT_TRUE(probe.WaitForText("KEY 0: none")) << probe.Dump();
    EXPECT_TRUE(probe.Running());
    auto during = probe.TerminalAttributes();
    ASSERT_TRUE(during);
    EXPECT_EQ(during->c_lflag & (ICANON | ECHO), 0u) << "curses runs without line editing and echo";
    probe.Type("q");
    auto status = probe.WaitExit();
    ASSERT_TRUE(status) << probe.Dump();
    EXPECT_TRUE(status->IsExitCode(3)) << status->Describe();
    // The sequence written after curses ended is the very last thing in the output.
    ASSERT_GE(probe.Output().size(), 3u);
    EXPECT_EQ(probe.Output().substr(probe.Output().size() - 3), "\x1b]R");
    EXPECT_FALSE(probe.Running());
    // The settings outlive the program: the test can see that it restored them.
    auto after = probe.TerminalAttributes();
    ASSERT_TRUE(after);
    EXPECT_EQ(after->c_lflag & (ICANON | ECHO), tcflag_t(ICANON | ECHO));
}

TEST(TermSession, SignalsReachTheChild) {
    TermSession probe(Probe());
    ASSERT_TRUE(probe.WaitForText("KEY 0: none")) << probe.Dump();
    // curses catches the polite signals itself; one it cannot catch shows how the end is decoded.
    ASSERT_TRUE(probe.Signal(SIGKILL));
    auto status = probe.WaitExit();
    ASSERT_TRUE(status) << probe.Dump();
    EXPECT_FALSE(status->exited);
    EXPECT_EQ(status->signal, SIGKILL) << status->Describe();
    EXPECT_FALSE(probe.Signal(SIGTERM, 999999999));
}

TEST(TermSession, EnvironmentIsExactlyWhatTheTestGives) {
    setenv("KOVO_TERM_LEAK", "leaked", 1);
    {
        auto options = Shell("echo \"T=${TERM-unset} L=${KOVO_TERM_LEAK-none} A=${A-none}\"");
        options.term.reset();
        options.environment = {{"A", "1"}};
        TermSession shell(options);
        EXPECT_TRUE(shell.WaitForText("T=unset L=none A=1")) << shell.Dump();
        EXPECT_TRUE(shell.WaitExit());
    }
    {
        auto options = Shell("echo \"T=${TERM-unset} L=${KOVO_TERM_LEAK-none}\"");
        options.term = "xterm";
        options.inheritEnvironment = true;
        TermSession shell(options);
        EXPECT_TRUE(shell.WaitForText("T=xterm L=leaked")) << shell.Dump();
    }
    unsetenv("KOVO_TERM_LEAK");
}

TEST(TermSession, WaitsGiveUpAtTheirDeadlineAndNotLongAfter) {
    TermSession probe(Probe());
    ASSERT_TRUE(probe.WaitForText("KEY 0: none")) << probe.Dump();
    auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(probe.WaitForText("never shown", 300ms));
    EXPECT_FALSE(probe.WaitExit(300ms));
    auto took = std::chrono::steady_clock::now() - start;
    EXPECT_GE(took, 600ms);
    EXPECT_LT(took, 10s);  // a generous bound: only catches a wait that ignores its deadline
    EXPECT_TRUE(probe.WaitForQuiet(100ms));
    EXPECT_TRUE(probe.WaitForTextGone("never shown", 100ms));
}

TEST(TermSession, QuietWaitSeesAChattyProgramAsBusy) {
    TermSession chatty(Shell("while true; do echo tick; done"));
    EXPECT_FALSE(chatty.WaitForQuiet(300ms, 1500ms));
    EXPECT_GT(chatty.Output().size(), 100u);
}

TEST(TermSession, FindsProgramsStartedBelowTheChildAndCleansThemUp) {
    pid_t grandchild = 0;
    {
        TermSession shell(Shell("sleep 300; echo done"));
        grandchild = shell.WaitForDescendant("sleep");
        ASSERT_GT(grandchild, 0);
        EXPECT_EQ(ProcessTree::ParentOf(grandchild), shell.Pid());
        EXPECT_EQ(ProcessTree::CommandName(grandchild), "sleep");
        EXPECT_EQ(ProcessTree::FindDescendant(shell.Pid(), "no-such-program"), 0);
    }
    // The session's end took the grandchild down with it.
    auto end = std::chrono::steady_clock::now() + 10s;
    while (ProcessRuns(grandchild) && std::chrono::steady_clock::now() < end) poll(nullptr, 0, 10);
    EXPECT_FALSE(ProcessRuns(grandchild));
}

TEST(TermSession, CpuTimeTellsASleeperFromASpinner) {
    TermSession shell(Shell("sleep 300 & while :; do :; done"));
    pid_t sleeper = shell.WaitForDescendant("sleep");
    ASSERT_GT(sleeper, 0);
    EXPECT_TRUE(shell.WaitUntil([&] {
        auto used = ProcessTree::CpuTime(shell.Pid());
        return used && *used >= 300ms;
    })) << "the spinning shell never reached 300 ms";
    auto slept = ProcessTree::CpuTime(sleeper);
    ASSERT_TRUE(slept);
    EXPECT_LT(*slept, 100ms);
    ASSERT_TRUE(shell.Signal(SIGKILL));
    ASSERT_TRUE(shell.WaitExit());
    EXPECT_FALSE(ProcessTree::CpuTime(shell.Pid())) << "a reaped process has no processor time";
}
