#include "main/Startup.h"

#include <curses.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <syslog.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "../platform/TempDir.h"
#include "platform/hostctl/WholeFile.h"

namespace Kovo {
namespace {

TEST(TerminalDecision, TermAndKeyboardFollowTheConsoleAndTheConnection) {
    const auto set = [](const char* name, const char* value) {
        value ? setenv(name, value, 1) : unsetenv(name);
    };
    // The test's own values, put back at the end.
    std::vector<std::pair<const char*, std::optional<std::string>>> saved;
    for (const char* name : {"TERM", "TERMINFO", "SSH_CLIENT"})
        saved.emplace_back(name, getenv(name) ? std::optional<std::string>(getenv(name)) : std::nullopt);
    const struct {
        const char *term, *terminfo, *ssh;
        bool linuxConsole, keyboard;
        const char *termAfter, *terminfoAfter;
    } cases[] = {
        {nullptr, nullptr, nullptr, false, false, "vt102", "/usr/share/terminfo"},
        {"xterm-256color", "/opt/terminfo", nullptr, false, false, "xterm-256color", "/opt/terminfo"},
        {"xterm", nullptr, nullptr, false, true, "xterm", "/usr/share/terminfo"},  // local
        {"xterm", nullptr, nullptr, true, true, "linux", "/usr/share/terminfo"},
        {"linux", nullptr, nullptr, false, false, "vt102", "/usr/share/terminfo"},  // remote
        {"xterm", nullptr, "192.0.2.1 50000 22", false, false, "xterm", "/usr/share/terminfo"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.term ? c.term : "<unset>") + (c.ssh ? " over ssh" : ""));
        set("TERM", c.term);
        set("TERMINFO", c.terminfo);
        set("SSH_CLIENT", c.ssh);
        EXPECT_EQ(DecideTerminal(c.linuxConsole), c.keyboard);
        EXPECT_STREQ(getenv("TERM"), c.termAfter);
        EXPECT_STREQ(getenv("TERMINFO"), c.terminfoAfter);
    }
    for (const auto& [name, value] : saved) set(name, value ? value->c_str() : nullptr);
}

TEST(VtArgument, AcceptsOneToSixtyThree) {
    const std::pair<const char*, int> cases[] = {{"1", 1},   {"63", 63},  {"0", -1},
                                                 {"64", -1}, {"abc", -1}, {"-3", -1}};
    for (const auto& [text, vt] : cases) EXPECT_EQ(ParseVtArgument(text), vt) << text;
}

TEST(PidFile, DeadZeroNegativeOrGarbageIsOverwritten) {
    TempDir dir;
    const std::string path = dir.File("kovo.pid");
    pid_t child = fork();
    if (child == 0) _exit(0);
    waitpid(child, nullptr, 0);
    for (std::string stale : {std::to_string(child), std::string("0"), std::string("-5"),
                              std::string("bogus"), std::string("99999999999")}) {
        std::ofstream(path) << stale;
        GuardPidFile(path.c_str());
        EXPECT_EQ(HostCtl::ReadWholeFile(path), std::to_string(getpid())) << "after " << stale;
    }
}

// An error nothing caught, in a child on a terminal of its own that curses has put in raw mode: the
// child ends with status 1, says why in the log, and the terminal is as the child found it.
TEST(UnexpectedEnd, GivesTheTerminalBackAndLogsTheReason) {
    int master = -1, terminal = -1;
    ASSERT_EQ(openpty(&master, &terminal, nullptr, nullptr, nullptr), 0);
    termios before{};
    ASSERT_EQ(tcgetattr(terminal, &before), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        if (login_tty(terminal) != 0) _exit(4);
        openlog("KOVO", LOG_PERROR, LOG_USER);  // the log's line on the terminal too
        const int status = RunToTheEnd([]() -> int {
            SCREEN* screen = newterm("xterm", stdout, stdin);
            if (!screen) _exit(3);
            raw();
            noecho();
            throw std::runtime_error("the host's answer made no sense");
        });
        _exit(status);
    }
    close(terminal);
    std::string said;
    char buffer[512];
    for (ssize_t n; (n = read(master, buffer, sizeof buffer)) > 0;)
        said.append(buffer, static_cast<size_t>(n));
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << status;
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_NE(said.find("KOVO ended by an unexpected error: the host's answer made no sense"),
              std::string::npos)
        << said;
    termios after{};
    ASSERT_EQ(tcgetattr(master, &after), 0);
    EXPECT_EQ(after.c_lflag & (ICANON | ECHO | ISIG), before.c_lflag & (ICANON | ECHO | ISIG));
    EXPECT_EQ(after.c_iflag, before.c_iflag);
    EXPECT_EQ(after.c_oflag, before.c_oflag);
    close(master);
}

}  // namespace
}  // namespace Kovo
