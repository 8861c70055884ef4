#include "main/Startup.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
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

TEST_F(TerminalDecision, UnsetTermBecomesVt102WithTerminfo) {
    EXPECT_FALSE(DecideTerminal(false));
    EXPECT_EQ(Env("TERM"), "vt102");
    EXPECT_EQ(Env("TERMINFO"), "/usr/share/terminfo");
}

TEST_F(TerminalDecision, ExistingTerminfoIsKept) {
    setenv("TERMINFO", "/opt/terminfo", 1);
    setenv("TERM", "xterm-256color", 1);
    EXPECT_FALSE(DecideTerminal(false));
    EXPECT_EQ(Env("TERMINFO"), "/opt/terminfo");
    EXPECT_EQ(Env("TERM"), "xterm-256color");
}

TEST_F(TerminalDecision, LinuxConsoleUsesKeyboardAndLinuxTerm) {
    setenv("TERM", "xterm", 1);
    EXPECT_TRUE(DecideTerminal(true));
    EXPECT_EQ(Env("TERM"), "linux");
}

TEST_F(TerminalDecision, RemoteLinuxTermIsDrivenAsVt102) {
    setenv("TERM", "linux", 1);
    EXPECT_FALSE(DecideTerminal(false));
    EXPECT_EQ(Env("TERM"), "vt102");
}

TEST_F(TerminalDecision, LocalXtermUsesKeyboardButSshDoesNot) {
    setenv("TERM", "xterm", 1);
    EXPECT_TRUE(DecideTerminal(false));
    EXPECT_EQ(Env("TERM"), "xterm");

    setenv("SSH_CLIENT", "192.0.2.1 50000 22", 1);
    EXPECT_FALSE(DecideTerminal(false));
    EXPECT_EQ(Env("TERM"), "xterm");
}

TEST(VtArgument, AcceptsOneToSixtyThree) {
    EXPECT_EQ(ParseVtArgument("1"), 1);
    EXPECT_EQ(ParseVtArgument("63"), 63);
    EXPECT_EQ(ParseVtArgument("0"), -1);
    EXPECT_EQ(ParseVtArgument("64"), -1);
    EXPECT_EQ(ParseVtArgument("abc"), -1);
    EXPECT_EQ(ParseVtArgument("-3"), -1);
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

TEST_F(PidFile, MissingFileIsClaimed) {
    GuardPidFile(path_.c_str());
    EXPECT_EQ(Read(), std::to_string(getpid()));
}

TEST_F(PidFile, LiveProcessIsLeftAlone) {
    Write(std::to_string(getppid()));
    GuardPidFile(path_.c_str());
    EXPECT_EQ(Read(), std::to_string(getppid()));
}

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

}  // namespace
}  // namespace Kovo
