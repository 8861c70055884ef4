// Signals and resize reaching the real console on a simulated host, on the welcome screen or with a
// dialog over it: how it ends, what it leaves behind.
// The host's notification signal is walked by the smart-card tests, the key map's resize sequence by
// the dimming tests.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <string>

#include "HostSteps.h"

using namespace KovoE2e;

namespace {

constexpr const char* kPaletteReset = "\x1b]R";
constexpr const char* kLeaveAlternateScreen = "\x1b[?1049l";

// Starts the console and returns its process id; the test fails when it does not come up.
pid_t StartConsole(HostConsole& host) {
    EXPECT_TRUE(host.WaitForFirstPaint()) << host.Term().Dump();
    pid_t console = host.WaitForConsole();
    EXPECT_GT(console, 0);
    return console;
}

// Signals sent to `pid` that none of its threads has taken yet (the shared pending set).
unsigned long long SharedPending(pid_t pid) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("ShdPnd:", 0) == 0) return std::stoull(line.substr(7), nullptr, 16);
    return 0;
}

bool Pending(pid_t pid, int signal) {
    return SharedPending(pid) & (1ULL << (signal - 1));
}

}  // namespace

struct Termination {
    int signal;
    bool dialogOpen;  // the login dialog over the welcome screen
};

class TerminationSignal : public ::testing::TestWithParam<Termination> {};

TEST_P(TerminationSignal, EndsWithStatusZeroTerminalRestoredAndPaletteReset) {
    HostConsole host(FreshHostDir(), ConsoleStart{});
    pid_t console = StartConsole(host);
    ASSERT_GT(console, 0);
    if (GetParam().dialogOpen) {
        host.Term().Press(KovoTerm::Key::F2);
        ASSERT_TRUE(host.Term().WaitForText(kLoginTitle) && host.Term().WaitForQuiet(300ms))
            << host.Term().Dump();
    }
    auto during = host.Term().TerminalAttributes();
    ASSERT_TRUE(during);
    ASSERT_EQ(during->c_lflag & (ICANON | ECHO), 0u) << "the console reads keys one by one, unechoed";
    const std::size_t before = host.Term().Output().size();

    ASSERT_TRUE(host.Term().Signal(GetParam().signal, console));
    auto status = host.Term().WaitExit();
    ASSERT_TRUE(status) << host.Term().Dump();
    EXPECT_TRUE(status->IsExitCode(0)) << status->Describe();

    // Everything written after the signal: the screen handed back, then the palette reset.
    const std::string tail = host.Term().Output().substr(before);
    const auto leave = tail.find(kLeaveAlternateScreen);
    const auto reset = tail.rfind(kPaletteReset);
    EXPECT_NE(leave, std::string::npos) << host.Term().Dump();
    ASSERT_NE(reset, std::string::npos) << host.Term().Dump();
    EXPECT_LT(leave, reset) << "palette reset must follow the restored screen";
    EXPECT_EQ(tail.find(kPaletteReset), reset) << "palette reset written more than once";

    auto after = host.Term().TerminalAttributes();
    ASSERT_TRUE(after);
    EXPECT_EQ(after->c_lflag & (ICANON | ECHO), tcflag_t(ICANON | ECHO)) << "terminal left in raw mode";
}

INSTANTIATE_TEST_SUITE_P(Signals, TerminationSignal,
                         // SIGUSR2 is the host's restart request: with nobody logged in, it ends at once.
                         ::testing::Values(Termination{SIGTERM, false}, Termination{SIGINT, false},
                                           Termination{SIGQUIT, false}, Termination{SIGUSR2, false},
                                           Termination{SIGTERM, true}),
                         [](const auto& info) {
                             return std::string(sigabbrev_np(info.param.signal)) +
                                    (info.param.dialogOpen ? "WithADialogOpen" : "");
                         });

// A console that crashes gives the terminal back all the same: the host's next console, or a shell it
// was started from, gets a usable line.
class FatalSignal : public ::testing::TestWithParam<int> {};

TEST_P(FatalSignal, LeavesTheTerminalAsTheConsoleFoundIt) {
    HostConsole host(FreshHostDir(), ConsoleStart{});
    pid_t console = StartConsole(host);
    ASSERT_GT(console, 0);
    const std::size_t before = host.Term().Output().size();
    ASSERT_TRUE(host.Term().Signal(GetParam(), console));
    ASSERT_TRUE(host.Term().WaitExit()) << host.Term().Dump();
    EXPECT_NE(host.Term().Output().substr(before).find(kLeaveAlternateScreen), std::string::npos)
        << host.Term().Dump();
    auto after = host.Term().TerminalAttributes();
    ASSERT_TRUE(after);
    EXPECT_EQ(after->c_lflag & (ICANON | ECHO), tcflag_t(ICANON | ECHO)) << "terminal left in raw mode";
}

INSTANTIATE_TEST_SUITE_P(Signals, FatalSignal, ::testing::Values(SIGSEGV, SIGABRT),
                         [](const auto& info) { return std::string(sigabbrev_np(info.param)); });

TEST(ConsoleResize, SignalAt100x37LogsTheNewSizeAndEnds) {
    HostConsole host(FreshHostDir(), ConsoleStart{});
    pid_t console = StartConsole(host);
    ASSERT_GT(console, 0);
    host.Term().Resize(100, 37, console);
    auto status = host.Term().WaitExit();
    ASSERT_TRUE(status) << host.Term().Dump();
    EXPECT_TRUE(status->IsExitCode(0)) << status->Describe();
    auto line = host.WaitForSyslog({"user.info", "KOVO[", "]: Resized window to 100x37"});
    EXPECT_TRUE(line) << host.Syslog();
    EXPECT_EQ(host.SyslogLines({"Resized window to"}).size(), 1u) << host.Syslog();
}

// A program the console runs on the terminal (the log pager) has it in the foreground, so the resize
// signal reaches the program and not the console: the console takes it up once the program ends.
TEST(ConsoleResize, WhileThePagerRunsIsTheConsolesOnceThePagerEnds) {
    auto host = MakeHost("default");
    ASSERT_GT(host->WaitForConsole(), 0);
    ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << host->Term().Dump();
    ASSERT_TRUE(OpenFromMenu(*host, kSystemLogsDowns, "<1> Syslog")) << host->Term().Dump();
    host->Term().Type("1");
    ASSERT_TRUE(Settled(*host, kPagerPrompt)) << host->Term().Dump();
    host->Term().Resize(100, 37);
    host->Term().Pause(300ms);
    host->Term().Type("q");
    EXPECT_TRUE(host->WaitForSyslog({"user.info", "KOVO[", "]: Resized window to 100x37"})) << host->Syslog();
}

// A host notification with a smart card in the reader and nobody logged in looks for the card's user
// and logs it: one line per handled notification. The host's store lock, held from outside, stops the
// first one halfway, so the whole burst and the termination queue up behind it.
TEST(NotificationBurst, CollapsesIntoOneRedrawAndTerminationActsAtOnce) {
    auto host = MakeHost("default");
    const pid_t console = host->WaitForConsole();
    ASSERT_GT(console, 0);
    ASSERT_TRUE(SetStore(*host, "/hardware/smartCards/slots/0/token",
                         R"({"label": "PIV Card", "serialNumber": "1", "userIds": ["root"]})"));
    const std::string lockPath = "/proc/" + std::to_string(console) + "/root/etc/halvor/host.json.lock";
    const int lock = open(lockPath.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(lock, 0) << lockPath;
    ASSERT_EQ(flock(lock, LOCK_EX), 0);

    constexpr int kBurst = 5000;
    for (int i = 0; i < kBurst; ++i) ASSERT_TRUE(host->Term().Signal(SIGUSR1, console));
    // Every notification taken by the console's signal thread, then the termination too.
    EXPECT_TRUE(host->Term().WaitUntil([&] { return !Pending(console, SIGUSR1); }));
    ASSERT_TRUE(host->Term().Signal(SIGTERM, console));
    EXPECT_TRUE(host->Term().WaitUntil([&] { return !Pending(console, SIGTERM); }));
    EXPECT_TRUE(host->SyslogLines({"Found smart card"}).empty()) << "a notification got past the lock";
    close(lock);

    auto status = host->Term().WaitExit(std::chrono::seconds(60));
    ASSERT_TRUE(status) << "still running after the burst\n" << host->Term().Dump();
    EXPECT_TRUE(status->IsExitCode(0)) << status->Describe();
    // The one notification under way when the burst came, and none of those queued behind it.
    EXPECT_EQ(host->SyslogLines({"]: Found smart card with user id 'root'"}).size(), 1u);
}
