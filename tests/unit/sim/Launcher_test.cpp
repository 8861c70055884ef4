// The launcher as operators and the end-to-end tests use it: a real kovo-sim booting a real host around
// a stand-in console.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>

#include "helpers/Subprocess.h"

namespace {

using namespace KovoSim::Test;
using namespace std::chrono_literals;

const std::string kSim = KOVO_SIM;
const std::string kFake = SIM_FAKE_CONSOLE;

std::map<std::string, std::string> ReadReport(const std::string& path) {
    std::map<std::string, std::string> report;
    std::istringstream in(ReadFile(path));
    for (std::string line; std::getline(in, line);) {
        const auto eq = line.find('=');
        if (eq != std::string::npos) report[line.substr(0, eq)] = line.substr(eq + 1);
    }
    return report;
}

class LauncherTest : public ::testing::Test {
  protected:
    std::string Host() const { return _tmp / "host"; }
    std::string Upper(const std::string& hostPath) const { return Host() + "/upper" + hostPath; }
    std::string Syslog() const { return Upper("/var/log/syslog.log"); }

    RunResult Once(const std::vector<std::string>& consoleArgs, const RunOptions& options = {},
                   const std::string& scenario = "default") {
        std::vector<std::string> argv = {kSim,     "--dir",  Host(), "--scenario", scenario,
                                         "--once", "--kovo", kFake,  "--"};
        argv.insert(argv.end(), consoleArgs.begin(), consoleArgs.end());
        return RunProgram(argv, options);
    }

    std::unique_ptr<PtyProcess> Demo(const std::vector<std::string>& consoleArgs) {
        std::vector<std::string> argv = {kSim, "--dir", Host(), "--kovo", kFake, "--"};
        argv.insert(argv.end(), consoleArgs.begin(), consoleArgs.end());
        return std::make_unique<PtyProcess>(argv);
    }

    pid_t ConsolePid() const {
        const std::string text = ReadFile(Host() + "/state/console.pid");
        return text.empty() ? -1 : std::stoi(text);
    }

    int CountLines(const std::string& path) const {
        const std::string text = ReadFile(path);
        return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    }

    TempDir _tmp;
};

TEST_F(LauncherTest, OnceRunsTheConsoleOnTheHostWithArgumentsEnvironmentAndStatus) {
    const std::string report = _tmp / "report";
    const auto result =
        Once({"report", report, "exit", "7"}, {.env = {"SIM_TEST_PROBE=through", "TERM=vt220"}});
    EXPECT_EQ(result.status, 7) << result.err;
    auto facts = ReadReport(report);
    EXPECT_EQ(facts["args"], "report " + report + " exit 7");
    EXPECT_EQ(facts["probe"], "through");
    EXPECT_EQ(facts["term"], "vt220");
    EXPECT_EQ(facts["uid"], "0");
    EXPECT_EQ(facts["fs:/run"], "tmpfs");
    EXPECT_EQ(facts["fs:/var/run"], "tmpfs");
    for (const char* overlaid : {"/etc", "/usr/bin", "/usr/sbin", "/usr/lib", "/var/log"})
        EXPECT_EQ(facts[std::string("fs:") + overlaid], "overlay") << overlaid;
    EXPECT_EQ(facts["fs:/dev"], "tmpfs");
    EXPECT_EQ(facts["console"], "1:3") << "the host's /dev/console must be the null device";
    EXPECT_EQ(facts["devlog"], "socket");
    EXPECT_EQ(facts["hostname"], "kovo-host-01") << "named as the default scenario says";
    // The stand-in ran as a child of the host's PID 1, not as PID 1.
    EXPECT_NE(facts["pid"], "1");
}

TEST_F(LauncherTest, WritesOfTheHostLandInItsDirectoryOnly) {
    const std::string name = "kovo-sim-test-" + std::to_string(::getpid());
    std::vector<std::string> args = {"pidfile"};
    for (const char* dir : {"/etc", "/usr/bin", "/usr/sbin", "/usr/lib", "/var/log", "/bin"}) {
        args.push_back("write");
        args.push_back(std::string(dir) + "/" + name);
        args.push_back("x");
    }
    ASSERT_EQ(Once(args).status, 0);

    for (const char* dir : {"/etc", "/usr/bin", "/usr/sbin", "/usr/lib", "/var/log"}) {
        EXPECT_EQ(ReadFile(Upper(std::string(dir) + "/" + name)), "x") << dir;
        EXPECT_FALSE(Exists(std::string(dir) + "/" + name)) << "written on the machine: " << dir;
    }
    // /bin is /usr/bin.
    EXPECT_FALSE(Exists("/bin/" + name));
    // The pid file was on the host's tmpfs: not on the host's disk, and gone at the next boot.
    for (const auto& entry : std::filesystem::recursive_directory_iterator(Host()))
        EXPECT_NE(entry.path().filename(), "kovo.pid") << entry.path();
    const auto next =
        RunProgram({kSim, "exec", Host(), "--", "sh", "-c", "test -e /var/run/kovo.pid; echo $?"});
    EXPECT_EQ(next.out, "1\n") << next.err;
}

TEST_F(LauncherTest, SyslogOfTheHostHasTimeHostFacilitySeverityTagAndMessage) {
    // The host takes its name from its configuration; a scenario may be a file, and sparse.
    std::ofstream(_tmp / "named.json") << R"({"network": {"dns": {"hostname": "lab-host-07"}}})";
    const std::string report = _tmp / "report";
    ASSERT_EQ(Once({"syslog", "3", "Invalid VT specified for KOVO: abc", "syslog", "6", "Starting KOVO",
                    "report", report},
                   {}, _tmp / "named.json")
                  .status,
              0);
    const std::string pid = ReadReport(report)["pid"];
    const std::string log = ReadFile(Syslog());
    const std::string stamp = R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}[+-]\d\d:\d\d)";
    EXPECT_TRUE(std::regex_search(log, std::regex("(^|\n)" + stamp + " lab-host-07 user\\.err KOVO\\[" + pid +
                                                  "\\]: Invalid VT specified for KOVO: abc\n")))
        << log;
    EXPECT_TRUE(std::regex_search(
        log, std::regex(stamp + " lab-host-07 user\\.info KOVO\\[" + pid + "\\]: Starting KOVO\n")))
        << log;
    // The error came first, as it was sent.
    EXPECT_LT(log.find("Invalid VT"), log.find("Starting KOVO"));
}

TEST_F(LauncherTest, SupervisorStartsTheConsoleAgainUntilCtrlC) {
    const std::string starts = _tmp / "starts";
    auto demo = Demo({"append", starts, "started", "wait"});
    ASSERT_TRUE(WaitFor([&] { return CountLines(starts) == 1 && ConsolePid() > 0; })) << demo->Output();

    // The console ends on its own (here: SIGTERM): the host starts it again. When it comes back at once
    // or after a pause is the restart policy's business.
    const pid_t first = ConsolePid();
    ASSERT_EQ(::kill(first, SIGTERM), 0);
    ASSERT_TRUE(
        WaitFor([&] { return CountLines(starts) == 2 && ConsolePid() > 0 && ConsolePid() != first; }));
    const pid_t second = ConsolePid();
    EXPECT_EQ(::kill(second, 0), 0);

    // Ctrl-C at the terminal ends the whole demo, and nothing is started again.
    demo->Write("\x03");
    EXPECT_EQ(demo->Wait(20s), 0);
    EXPECT_EQ(CountLines(starts), 2);
    EXPECT_NE(::kill(second, 0), 0);
    EXPECT_FALSE(Exists(Host() + "/state/console.pid"));
    EXPECT_FALSE(Exists(Host() + "/state/init.pid"));
    const std::string log = ReadFile(Syslog());
    EXPECT_NE(log.find("daemon.info init: interrupted at the terminal; stopping the host"), std::string::npos)
        << log;
}

TEST_F(LauncherTest, TerminatingTheLauncherStopsTheConsoleAndTheHost) {
    const std::string report = _tmp / "report";
    auto demo = Demo({"report", report, "wait"});
    ASSERT_TRUE(WaitFor([&] { return ConsolePid() > 0 && Exists(report); }));
    const pid_t console = ConsolePid();
    ASSERT_EQ(::kill(demo->Pid(), SIGTERM), 0);
    EXPECT_EQ(demo->Wait(20s), 0);
    EXPECT_NE(::kill(console, 0), 0);
    EXPECT_NE(ReadFile(Syslog()).find("init: " + kFake + " exited with status 0"), std::string::npos);
}

TEST_F(LauncherTest, OneHostPerDirectoryAndExecJoinsTheRunningOne) {
    auto demo = Demo({"pidfile", "wait"});
    ASSERT_TRUE(WaitFor([&] { return ConsolePid() > 0; }));

    const auto second = Once({"exit", "0"});
    EXPECT_EQ(second.status, 1);
    EXPECT_NE(second.err.find("is already running"), std::string::npos) << second.err;

    // exec sees the running host's tmpfs: the pid file the console wrote there.
    const auto inside = RunProgram({kSim, "exec", Host(), "--", "cat", "/var/run/kovo.pid"});
    ASSERT_EQ(inside.status, 0) << inside.err;
    const std::string log = ReadFile(Syslog());
    EXPECT_NE(log.find("started " + kFake + " as pid " + inside.out + "\n"), std::string::npos)
        << inside.out << log;

    const auto status = RunProgram({kSim, "exec", Host(), "--", "sh", "-c", "exit 9"});
    EXPECT_EQ(status.status, 9);
    demo->Write("\x03");
    EXPECT_EQ(demo->Wait(20s), 0);
}

TEST_F(LauncherTest, GetAndSetActOnTheHostsStore) {
    std::filesystem::create_directories(Upper("/etc/halvor"));
    ASSERT_EQ(Once({"exit", "0"}).status, 0);  // make the host
    std::ofstream(Upper("/etc/halvor/host.json")) << R"({"network": {"dns": {"hostname": "old"}}})";

    auto set = RunProgram({kSim, "set", Host(), "/network/dns/hostname", "\"lab\""});
    ASSERT_EQ(set.status, 0) << set.err;
    auto get = RunProgram({kSim, "get", Host(), "/network/dns/hostname"});
    EXPECT_EQ(get.status, 0) << get.err;
    EXPECT_EQ(get.out, "\"lab\"\n");
    EXPECT_NE(ReadFile(Upper("/etc/halvor/host.json")).find("\"lab\""), std::string::npos);

    // A new member, deep: created on the way.
    ASSERT_EQ(RunProgram({kSim, "set", Host(), "/advancedOptions/UserVars/KovoTimeOut", R"({"value": 900})"})
                  .status,
              0);
    EXPECT_EQ(RunProgram({kSim, "get", Host(), "/advancedOptions/UserVars/KovoTimeOut/value"}).out, "900\n");

    // Bad input: a clear message naming the pointer, the store unchanged. (Which values the store's
    // schema refuses, and with which words, is the schema's unit tests' business.)
    const std::string before = ReadFile(Upper("/etc/halvor/host.json"));
    auto bad = RunProgram({kSim, "set", Host(), "/network/dns/hostname", "not json"});
    EXPECT_EQ(bad.status, 2);
    EXPECT_NE(bad.err.find("not a JSON value"), std::string::npos) << bad.err;
    auto misspelt = RunProgram({kSim, "set", Host(), "/network/dns/hostName", "\"lab\""});
    EXPECT_EQ(misspelt.status, 2);
    EXPECT_NE(misspelt.err.find("/network/dns/hostName: not a member the host knows"), std::string::npos)
        << misspelt.err;
    EXPECT_EQ(ReadFile(Upper("/etc/halvor/host.json")), before);
    auto missing = RunProgram({kSim, "get", Host(), "/no/such"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.out, "null\n");
}

TEST_F(LauncherTest, BadInputGetsAMessageAndAUsageStatus) {
    auto comma = RunProgram({kSim, "--dir", _tmp / "a,b", "--once", "--kovo", kFake});
    EXPECT_EQ(comma.status, 2);
    EXPECT_NE(comma.err.find("may not contain ','"), std::string::npos) << comma.err;

    auto noConsole = RunProgram({kSim, "--dir", Host(), "--once", "--kovo", _tmp / "missing"});
    EXPECT_EQ(noConsole.status, 2);
    EXPECT_NE(noConsole.err.find("cannot run the console"), std::string::npos) << noConsole.err;

    auto noHost = RunProgram({kSim, "exec", _tmp / "empty", "--", "true"});
    EXPECT_EQ(noHost.status, 2);
    EXPECT_NE(noHost.err.find("there is no simulated host in"), std::string::npos) << noHost.err;

    auto unknown = RunProgram({kSim, "--verbose"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_NE(unknown.err.find("Usage:"), std::string::npos);

    auto paths = RunProgram({kSim, "paths", Host()});
    EXPECT_EQ(paths.status, 2);  // nothing booted there yet

    // Scenarios: an unknown name, a file that is not JSON, and another scenario for an existing host.
    auto unknownScenario = Once({"exit", "0"}, {}, "no-such-scenario");
    EXPECT_EQ(unknownScenario.status, 2);
    EXPECT_NE(unknownScenario.err.find("no scenario named \"no-such-scenario\""), std::string::npos);
    std::ofstream(_tmp / "broken.json") << "{ not json";
    auto broken = Once({"exit", "0"}, {}, _tmp / "broken.json");
    EXPECT_EQ(broken.status, 2);
    EXPECT_NE(broken.err.find("is not valid JSON"), std::string::npos) << broken.err;
    std::ofstream(_tmp / "misspelt.json")
        << R"({"network": {"dns": {"hostName": "lab"}}, "vms": [{"name": 3}]})";
    auto misspelt = Once({"exit", "0"}, {}, _tmp / "misspelt.json");
    EXPECT_EQ(misspelt.status, 2);
    EXPECT_NE(misspelt.err.find("/network/dns/hostName: not a member the host knows"), std::string::npos)
        << misspelt.err;
    ASSERT_EQ(Once({"exit", "0"}).status, 0);
    auto other = Once({"exit", "0"}, {}, "dvs");
    EXPECT_EQ(other.status, 2);
    EXPECT_NE(other.err.find("was made from the scenario \"default\""), std::string::npos) << other.err;

    // The store commands that work inside a host refuse to act on the machine.
    auto outside = RunProgram({kSim, "in-host-set", "/x", "1"});
    EXPECT_EQ(outside.status, 2);
    EXPECT_NE(outside.err.find("only inside a simulated host"), std::string::npos) << outside.err;
}

TEST_F(LauncherTest, AnUnprivilegedUserGetsTheSameHost) {
    if (::geteuid() != 0) GTEST_SKIP() << "already unprivileged: every other test covers it";
    constexpr uid_t kNobody = 65534;
    ASSERT_EQ(::chown(_tmp.Path().c_str(), kNobody, kNobody), 0);
    const std::string report = _tmp / "report";
    const auto result = Once({"write", "/etc/from-nobody", "y", "syslog", "4", "as nobody", "report", report},
                             {.env = {}, .uid = kNobody});
    ASSERT_EQ(result.status, 0) << result.err;
    auto facts = ReadReport(report);
    EXPECT_EQ(facts["uid"], "0") << "the caller is root inside its own user namespace";
    EXPECT_EQ(facts["fs:/etc"], "overlay");
    EXPECT_EQ(facts["fs:/run"], "tmpfs");
    EXPECT_EQ(facts["console"], "1:3");
    struct stat written {};
    ASSERT_EQ(::stat(Upper("/etc/from-nobody").c_str(), &written), 0);
    EXPECT_EQ(written.st_uid, kNobody);
    EXPECT_FALSE(Exists("/etc/from-nobody"));
    EXPECT_NE(ReadFile(Syslog()).find("user.warning KOVO[" + facts["pid"] + "]: as nobody"),
              std::string::npos);

    auto paths = RunProgram({kSim, "paths", Host()});
    EXPECT_NE(paths.out.find("syslog\t" + Syslog() + "\n"), std::string::npos) << paths.out;

    // The host's name server runs for the unprivileged user too.
    auto resolved = RunProgram({kSim, "exec", Host(), "--", "getent", "hosts", "ntp.lab.example"},
                               {.env = {}, .uid = kNobody});
    EXPECT_NE(resolved.out.find("10.20.30.5"), std::string::npos) << resolved.out << resolved.err;
}

}  // namespace
