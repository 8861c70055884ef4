// The launcher's own pieces: its command line, a host's directory, and when the console starts again.
#include "launcher/LauncherOptions.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>

#include "helpers/Subprocess.h"
#include "launcher/HostLayout.h"
#include "launcher/RestartPolicy.h"

using KovoSim::HostLayout;
using KovoSim::LauncherOptions;
using KovoSim::RestartPolicy;
using KovoSim::Test::TempDir;
using Command = LauncherOptions::Command;
using Action = RestartPolicy::Action;
using Strings = std::vector<std::string>;
using namespace std::chrono_literals;

namespace {

LauncherOptions Parse(std::vector<std::string> argv) {
    return LauncherOptions::Parse(argv);
}

TEST(LauncherOptionsTest, RunWithDefaultsAndWithEveryOption) {
    const auto plain = Parse({});
    EXPECT_EQ(plain.command, Command::Run);
    EXPECT_EQ(plain.dir, "sim-host");
    EXPECT_EQ(plain.scenario, "default");
    EXPECT_FALSE(plain.once);
    EXPECT_TRUE(plain.kovo.empty());
    EXPECT_TRUE(plain.args.empty());

    for (const auto& argv :
         {Strings{"run", "--dir", "/h", "--scenario", "dvs", "--once", "--kovo", "/k", "--", "2", "--dir",
                  "x"},
          Strings{"--once", "--scenario", "dvs", "--dir", "/h", "--kovo", "/k", "--", "2", "--dir", "x"}}) {
        const auto options = Parse(argv);
        EXPECT_EQ(options.command, Command::Run);
        EXPECT_EQ(options.dir, "/h");
        EXPECT_EQ(options.scenario, "dvs");
        EXPECT_TRUE(options.scenarioGiven);
        EXPECT_TRUE(options.once);
        EXPECT_EQ(options.kovo, "/k");
        // Everything after "--" belongs to the console, options included.
        EXPECT_EQ(options.args, (Strings{"2", "--dir", "x"}));
    }
    EXPECT_TRUE(Parse({"run", "--"}).args.empty());
    EXPECT_EQ(Parse({"--help"}).command, Command::Help);
    EXPECT_EQ(Parse({"help"}).command, Command::Help);
}

// get, set and exec on a host's directory are how every end-to-end test reaches its host; what they do
// not use is here.
TEST(LauncherOptionsTest, AnEmptyPointerIsTheWholeDocumentAndExecKeepsALaterDoubleDash) {
    EXPECT_EQ(Parse({"get", "/h", ""}).pointer, "");
    const auto exec = Parse({"exec", "/h", "--", "sh", "-c", "echo --"});
    EXPECT_EQ(exec.command, Command::Exec);
    EXPECT_EQ(exec.args, (Strings{"sh", "-c", "echo --"}));
    EXPECT_EQ(Parse({"paths", "/h"}).command, Command::Paths);
}

TEST(LauncherOptionsTest, WhatItDoesNotKnowIsRefusedWithItsReason) {
    const std::pair<Strings, const char*> refused[] = {
        {{"--dir"}, "--dir needs a value"},
        {{"--dir", ""}, "--dir needs a directory"},
        {{"--scenario", ""}, "--scenario"},
        {{"--bogus"}, "unknown option \"--bogus\""},
        {{"run", "2"}, "after \"--\""},
        {{"2"}, "unknown command \"2\""},
        {{"get"}, "needs the host's directory"},
        {{"get", "/h"}, "takes 2 arguments, got 1"},
        {{"get", "/h", "no-slash"}, "JSON pointer"},
        {{"set", "/h", "/a"}, "takes 3 arguments"},
        {{"set", "/h", "/a", "1", "2"}, "takes 3 arguments"},
        {{"paths"}, "needs the host's directory"},
        {{"paths", "/h", "x"}, "takes 1 argument,"},
        {{"exec", "/h"}, "usage: exec DIR --"},
        {{"exec", "/h", "--"}, "usage: exec DIR --"},
        {{"exec", "/h", "sh"}, "usage: exec DIR --"},
        {{"exec", "--", "sh"}, "needs the host's directory"},
        {{"in-host-set", "/a"}, "wrong number"},
    };
    for (const auto& [argv, reason] : refused) {
        try {
            LauncherOptions::Parse(argv);
            ADD_FAILURE() << reason << ": accepted";
        } catch (const LauncherOptions::Error& e) {
            EXPECT_NE(std::string(e.what()).find(reason), std::string::npos) << e.what();
        }
    }
}

TEST(HostLayoutTest, RelativeDirectoryIsTakenFromTheWorkingDirectory) {
    TempDir dir;
    const auto previous = std::filesystem::current_path();
    std::filesystem::current_path(dir.Path());
    const HostLayout layout("sim-host");
    std::filesystem::current_path(previous);
    EXPECT_EQ(layout.Dir(), std::filesystem::canonical(dir.Path()).string() + "/sim-host");
}

TEST(HostLayoutTest, RejectsDirectoriesThatCannotCarryTheOverlays) {
    TempDir dir;
    for (const std::string& bad :
         {dir / "a,b", dir / "a:b", std::string("/"), std::string("/etc/sim"), std::string("/usr"),
          std::string("/var"), std::string("/var/log/x"), std::string("/usr/lib/kovo"), std::string("")}) {
        EXPECT_THROW(HostLayout{bad}, std::invalid_argument) << bad;
    }
    // A symbolic link is followed before the check.
    std::filesystem::create_directory_symlink("/usr/lib", dir / "link");
    EXPECT_THROW(HostLayout{dir / "link/host"}, std::invalid_argument);
    // Names that only start like an overlaid directory are fine.
    EXPECT_NO_THROW(HostLayout{"/etcetera/host"});
    EXPECT_NO_THROW(HostLayout{"/var/lib/host"});
}

// The launcher takes a directory for a host only when every layer is there.
TEST(HostLayoutTest, ADirectoryMissingALayerIsNoHost) {
    TempDir dir;
    const HostLayout layout(dir / "host");
    EXPECT_FALSE(layout.Prepared());
    layout.Prepare();
    EXPECT_TRUE(layout.Prepared());
    std::filesystem::remove(layout.Work("/var/log"));
    EXPECT_FALSE(layout.Prepared());
}

constexpr int Exited(int code) {
    return code << 8;
}

TEST(RestartPolicyTest, RestartsAtOnceAfterALongRunAndAfterAPauseWhenQuick) {
    const RestartPolicy policy(false);
    EXPECT_EQ(policy.ConsoleEnded(Exited(0), 5s).action, Action::Restart);
    EXPECT_EQ(policy.ConsoleEnded(SIGSEGV, 1000ms).action, Action::Restart);
    EXPECT_EQ(policy.ConsoleEnded(Exited(1), 999ms).action, Action::RestartLater);
    EXPECT_EQ(policy.ConsoleEnded(Exited(0), 0ms).action, Action::RestartLater);
}

TEST(RestartPolicyTest, StoppingEndsWithZeroAndOnceEndsWithTheConsolesStatus) {
    RestartPolicy stopping(false);
    stopping.Stop();
    EXPECT_EQ(stopping.ConsoleEnded(Exited(3), 5s).action, Action::Stop);
    EXPECT_EQ(stopping.ConsoleEnded(Exited(3), 5s).exitCode, 0);

    const RestartPolicy once(true);
    EXPECT_EQ(once.ConsoleEnded(Exited(7), 10ms).action, Action::Stop);
    EXPECT_EQ(once.ConsoleEnded(Exited(7), 10ms).exitCode, 7);
    EXPECT_EQ(once.ConsoleEnded(SIGKILL, 10s).exitCode, 128 + SIGKILL);
}

}  // namespace
