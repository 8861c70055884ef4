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
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Kovo {
namespace {

class TerminalDecision : public ::testing::Test {
  protected:
    void SetUp() override {
        for (const char* name : {"TERM", "TERMINFO", "SSH_CLIENT"}) {
            const char* v = getenv(name);
            saved_.emplace_back(name, v ? std::optional<std::string>(v) : std::nullopt);
            unsetenv(name);
        }
    }
    void TearDown() override {
        for (auto& [name, value] : saved_) {
            if (value)
                setenv(name.c_str(), value->c_str(), 1);
            else
                unsetenv(name.c_str());
        }
    }
    static std::string Env(const char* name) {
        const char* v = getenv(name);
        return v ? v : "<unset>";
    }
    std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
};

TEST_F(TerminalDecision, TermAndKeyboardFollowTheConsoleAndTheConnection) {
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
        for (const auto& [name, value] :
             {std::pair{"TERM", c.term}, std::pair{"TERMINFO", c.terminfo}, std::pair{"SSH_CLIENT", c.ssh}}) {
            if (value)
                setenv(name, value, 1);
            else
                unsetenv(name);
        }
        EXPECT_EQ(DecideTerminal(c.linuxConsole), c.keyboard);
        EXPECT_EQ(Env("TERM"), c.termAfter);
        EXPECT_EQ(Env("TERMINFO"), c.terminfoAfter);
    }
}

TEST(VtArgument, AcceptsOneToSixtyThree) {
    const std::pair<const char*, int> cases[] = {{"1", 1},   {"63", 63},  {"0", -1},
                                                 {"64", -1}, {"abc", -1}, {"-3", -1}};
    for (const auto& [text, vt] : cases) EXPECT_EQ(ParseVtArgument(text), vt) << text;
}

class PidFile : public ::testing::Test {
  protected:
    std::filesystem::path path_ =
        std::filesystem::temp_directory_path() / ("kovo-pid-test-" + std::to_string(getpid()));
    void TearDown() override { std::filesystem::remove(path_); }
    void Write(const std::string& text) { std::ofstream(path_) << text; }
    std::string Read() {
        std::ifstream in(path_);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
};

TEST_F(PidFile, DeadZeroNegativeOrGarbageIsOverwritten) {
    pid_t child = fork();
    if (child == 0) _exit(0);
    waitpid(child, nullptr, 0);
    for (std::string stale : {std::to_string(child), std::string("0"), std::string("-5"),
                              std::string("bogus"), std::string("99999999999")}) {
        Write(stale);
        GuardPidFile(path_.c_str());
        EXPECT_EQ(Read(), std::to_string(getpid())) << "after " << stale;
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
