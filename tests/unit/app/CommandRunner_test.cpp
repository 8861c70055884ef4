#include "terminal/CommandRunner.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "platform/hostctl/HostPrograms.h"

namespace Kovo {
namespace {

// Runs a shell snippet through RunCommand, capturing both streams.
struct ShellRun {
    int status;
    std::string out;
    std::string err;
};

ShellRun Sh(const std::string& script, int outCapacity = 4096, int timeout = 0,
            const std::string& input = "") {
    const char* argv[] = {"sh", "-c", script.c_str(), nullptr};
    std::string out(static_cast<size_t>(outCapacity), '\0'), err(4096, '\0');
    int outLen = outCapacity, errLen = static_cast<int>(err.size());
    int status = RunCommand("/bin/sh", argv, out.data(), &outLen, err.data(), &errLen,
                            input.empty() ? nullptr : input.data(), static_cast<int>(input.size()), timeout);
    out.resize(static_cast<size_t>(outLen));
    err.resize(static_cast<size_t>(errLen));
    return {status, out, err};
}

// A host whose hcl-cmd is a shell line of its own, and which has nothing else.
class RenamingPrograms : public HostCtl::HostPrograms {
  public:
    HostCtl::Program Resolve(const HostCtl::Program& documented) const override {
        if (documented.path != "/bin/hcl-cmd") return documented;
        HostCtl::Program own{"/bin/sh", {"sh", "-c", "echo \"$0 $*\"; exit 5", "own-tool"}};
        own.argv.insert(own.argv.end(), documented.argv.begin() + 1, documented.argv.end());
        return own;
    }
};

TEST(CommandRunner, EveryProgramRunsAsTheInstalledPlatformSaysAndAsNamedWithoutOne) {
    const RenamingPrograms programs;
    InstallHostPrograms(&programs);
    std::string out, err;
    EXPECT_EQ(RunCaptured("/bin/hcl-cmd", {"hcl-cmd", "-U", "root", "a/b"}, out, err, 256), 5);
    EXPECT_EQ(out, "own-tool -U root a/b\n");
    // Programs the platform keeps as they are still run, with their own arguments.
    EXPECT_EQ(Sh("exit 3").status, 3);
    InstallHostPrograms(nullptr);
    EXPECT_NE(RunCaptured("/bin/hcl-cmd", {"hcl-cmd"}, out, err, 256),
              5);  // this machine has no such program
}

TEST(CommandRunner, ReturnsTheStatusAndBothStreamsCutToCapacity) {
    const struct {
        const char* script;
        int capacity, timeout;
        std::string input;
        int status;
        std::string out, err;
    } runs[] = {
        {"echo hello; echo oops >&2; exit 7", 4096, 0, "", 7, "hello\n", "oops\n"},
        {"printf 0123456789", 4, 0, "", 0, "0123", ""},
        {"kill -TERM $$", 16, 0, "", -1, "", ""},  // killed by a signal
        {"exec sleep 30", 16, 1, "", -1, "", ""},  // killed at the time-out
        // 1 MB on each stream, far beyond a pipe's capacity, with only a small part kept: no hang.
        {"head -c 1048576 /dev/zero; head -c 1048576 /dev/zero >&2; exit 3", 100, 60, "", 3,
         std::string(100, '\0'), std::string(4096, '\0')},
        {"read line; echo \"got:$line\"", 64, 10, "secret\n", 0, "got:secret\n", ""},
        // A child that ignores its input does not kill the caller.
        {"exit 0", 16, 10, std::string(1 << 20, 'x'), 0, "", ""},
    };
    for (const auto& r : runs) {
        SCOPED_TRACE(r.script);
        const auto start = std::chrono::steady_clock::now();
        const ShellRun run = Sh(r.script, r.capacity, r.timeout, r.input);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
        EXPECT_EQ(run.status, r.status);
        EXPECT_EQ(run.out, r.out);
        EXPECT_EQ(run.err, r.err);
    }
    EXPECT_EQ(RunShell("exit 4"), 4);
    const char* argv[] = {"nothing-here", nullptr};
    EXPECT_NE(RunCommand("/nonexistent/nothing-here", argv), 0);
}

TEST(CommandRunner, ChildSeesExactlyTheOneEntryEnvironment) {
    setenv("KOVO_RUNNER_TEST_LEAK", "1", 1);
    // /usr/bin/env prints the environment it was given; the shell itself would add PWD and friends.
    const char* argv[] = {"env", nullptr};
    char out[256] = {};
    int outLen = sizeof out;
    ASSERT_EQ(RunCommand("/usr/bin/env", argv, out, &outLen), 0);
    EXPECT_EQ(std::string(out, static_cast<size_t>(outLen)), "PYTHONHOME=/\n");
}

TEST(CommandRunner, ChildHasOnlyStandardDescriptors) {
    // A descriptor of ours that is not close-on-exec must still not reach the child.
    int leaked = dup(1);
    ASSERT_GE(leaked, 3);
    const char* argv[] = {"ls", "/proc/self/fd", nullptr};
    char out[256] = {};
    int outLen = sizeof out;
    ASSERT_EQ(RunCommand("/usr/bin/ls", argv, out, &outLen), 0);
    close(leaked);
    // ls itself opens one descriptor for the directory it lists.
    std::string listing(out, static_cast<size_t>(outLen));
    EXPECT_EQ(listing.substr(0, 6), "0\n1\n2\n") << listing;
    EXPECT_LE(listing.size(), 8u) << listing;
}

TEST(CommandRunner, ChildGetsDefaultSignalMask) {
    sigset_t set, old;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &set, &old);
    ShellRun r = Sh("grep SigBlk /proc/self/status");
    pthread_sigmask(SIG_SETMASK, &old, nullptr);
    EXPECT_EQ(r.out, "SigBlk:\t0000000000000000\n");
}

TEST(CommandRunner, QueryAnswerIsTrueOnlyWhenItStartsWithTrue) {
    const std::pair<std::string, bool> answers[] = {
        {"true", true},   {"true\n", true}, {"trueish and more", true},
        {" true", false}, {"tru", false},   {"false", false},
        {"TRUE", false},  {"", false}};
    for (const auto& [text, yes] : answers)
        EXPECT_EQ(IsTrueAnswer(text.data(), static_cast<int>(text.size())), yes) << '"' << text << '"';
}

}  // namespace
}  // namespace Kovo
