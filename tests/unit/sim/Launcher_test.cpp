// The launcher as operators use it: a real kovo-sim booting a real host around a stand-in console. What
// the end-to-end tests lean on (arguments, terminal, exit status, syslog, restarts, the store from
// outside) they prove with the real console; here is what they would not notice.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>

#include "TermSession.h"
#include "helpers/Subprocess.h"
#include "host/HostPrograms.h"

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
    std::string Host() const { return _tmp / _host; }
    std::string Upper(const std::string& hostPath) const { return Host() + "/upper" + hostPath; }
    std::string Syslog() const { return ReadFile(Upper("/var/log/syslog.log")); }

    RunResult Once(const std::vector<std::string>& consoleArgs, const RunOptions& options = {},
                   const std::string& scenario = "default", const std::string& dir = {}) {
        std::vector<std::string> argv = {kSim,         "--dir",  dir.empty() ? Host() : dir,
                                         "--scenario", scenario, "--once",
                                         "--kovo",     kFake,    "--"};
        argv.insert(argv.end(), consoleArgs.begin(), consoleArgs.end());
        return RunProgram(argv, options);
    }
    // The demo at an operator's terminal.
    std::unique_ptr<KovoTerm::TermSession> Demo(const std::vector<std::string>& consoleArgs) {
        KovoTerm::SpawnOptions options;
        options.argv = {kSim, "--dir", Host(), "--kovo", kFake, "--"};
        options.argv.insert(options.argv.end(), consoleArgs.begin(), consoleArgs.end());
        options.inheritEnvironment = true;
        return std::make_unique<KovoTerm::TermSession>(options);
    }
    static bool EndedWithZero(KovoTerm::TermSession& demo) {
        const auto status = demo.WaitExit(20s);
        return status && status->IsExitCode(0);
    }
    pid_t ConsolePid() const {
        const std::string text = ReadFile(Host() + "/state/console.pid");
        return text.empty() ? -1 : std::stoi(text);
    }
    RunResult Inside(const std::string& script) { return RunInHost(kSim, Host(), {"/bin/sh", "-c", script}); }

    TempDir _tmp;
    std::string _host = "host";
};

// Root on the host's own file systems, named as its (sparse, file) scenario says, and nothing it writes
// reaches the machine. (That its /dev/log takes the console's lines, the end-to-end tests that wait for them
// prove: Login.* among them.)
TEST_F(LauncherTest, TheConsoleRunsOnTheHostsOwnFilesAndItsWritesLandInTheHostsDirectoryOnly) {
    std::ofstream(_tmp / "named.json") << R"({"network": {"dns": {"hostname": "lab-host-07"}}})";
    const std::string report = _tmp / "report";
    const std::string name = "kovo-sim-test-" + std::to_string(::getpid());
    const std::vector<const char*> overlaid = {"/etc", "/usr/bin", "/usr/sbin", "/usr/lib", "/var/log"};
    std::vector<std::string> args = {"pidfile", "report", report, "write", "/bin/" + name, "x"};
    for (const char* dir : overlaid) args.insert(args.end(), {"write", std::string(dir) + "/" + name, "x"});
    ASSERT_EQ(Once(args, {}, _tmp / "named.json").status, 0);

    auto facts = ReadReport(report);
    EXPECT_EQ(facts["uid"], "0");
    EXPECT_NE(facts["pid"], "1") << "the console is a child of the host's init";
    EXPECT_EQ(facts["hostname"], "lab-host-07");
    for (const char* fs : {"/run", "/var/run", "/dev"})
        EXPECT_EQ(facts[std::string("fs:") + fs], "tmpfs") << fs;
    EXPECT_EQ(facts["console"], "1:3") << "the host's /dev/console must be the null device";
    for (const char* dir : overlaid) {
        EXPECT_EQ(facts[std::string("fs:") + dir], "overlay") << dir;
        EXPECT_EQ(ReadFile(Upper(std::string(dir) + "/" + name)), "x") << dir;
        EXPECT_FALSE(Exists(std::string(dir) + "/" + name)) << "written on the machine: " << dir;
    }
    EXPECT_FALSE(Exists("/bin/" + name));  // /bin is /usr/bin
    // The pid file was on the host's tmpfs: not on the host's disk, and gone at the next boot.
    for (const auto& entry : std::filesystem::recursive_directory_iterator(Host()))
        EXPECT_NE(entry.path().filename(), "kovo.pid") << entry.path();
    EXPECT_EQ(Inside("test -e /var/run/kovo.pid; echo $?").out, "1\n");
    const auto paths = RunProgram({kSim, "paths", Host()});
    EXPECT_NE(paths.out.find("syslog\t" + Upper("/var/log/syslog.log") + "\n"), std::string::npos)
        << paths.out;
}

// What keeps the machine around a host safe, and what the host makes for itself at boot. Its PAM, name
// server, daemons and power are the end-to-end tests' to prove: every one of them logs in, resolves,
// records or powers off through them.
TEST_F(LauncherTest, NothingLeavesTheHostAndItsKeysAndPowerCommandsAreItsOwn) {
    ASSERT_EQ(RunProgram({kSim, "--dir", Host(), "--once", "--kovo", "/bin/true"}).status, 0);
    // The machine's interfaces are not there: only the host's own loopback.
    EXPECT_EQ(Inside("ip -o link | wc -l").out, "1\n");

    // Every place a shell without PATH looks for a power command, and the paths the console names.
    const std::filesystem::path beside = std::filesystem::path(kSim).parent_path();
    const auto found = Inside(
        "for n in poweroff reboot halt shutdown; do "
        "  for d in /usr/local/sbin /usr/local/bin /usr/sbin /usr/bin /sbin /bin; do "
        "    [ -e $d/$n ] && readlink -f $d/$n; "
        "  done; env -i /bin/sh -c \"command -v $n\"; "
        "done");
    std::istringstream lines(found.out);
    int count = 0, commandV = 0;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("/usr/sbin/", 0) == 0) {
            ++commandV;  // what "command -v" finds first
            continue;
        }
        ++count;
        EXPECT_EQ(line, (beside / "kovo-sim-host").string());
    }
    EXPECT_GE(count, 8) << found.out;  // /usr/sbin and /sbin at least, for each of the four
    EXPECT_EQ(commandV, 4) << found.out;

    // The support pages show only that these exist; that they are this host's is proved here.
    const auto subject = Inside("/bin/openssl x509 -in /etc/halvor/ssl/host.crt -noout -subject");
    EXPECT_NE(subject.out.find("kovo-host-01.lab.example"), std::string::npos) << subject.out << subject.err;
    const auto key = Inside("/usr/lib/halvor/openssh/bin/ssh-keygen -l -f /etc/ssh/ssh_host_rsa_key.pub");
    EXPECT_EQ(key.status, 0) << key.err;
    EXPECT_NE(key.out.find("root@kovo-host-01.lab.example (RSA)"), std::string::npos) << key.out;

    // Host programs reach the launcher's own files through links; whatever runs inside a host writes
    // through them, the build that made the host must stay as it was.
    std::map<std::string, std::string> build;
    for (const std::string& file :
         {kSim, (beside / "kovo-sim-host").string(), (beside / "pam_kovo_sim.so").string()})
        build[file] = ReadFile(file);
    std::vector<std::string> paths{"/usr/lib/kovo-sim/kovo-sim-host", "/usr/lib/kovo-sim/pam_kovo_sim.so"};
    for (const auto& install : KovoSim::Host::HostPrograms::Installs()) paths.push_back(install.hostPath);
    std::string script;
    for (const auto& path : paths) script += "printf 'written inside\\n' > " + path + "; ";
    const auto wrote = Inside(script + "true");
    ASSERT_EQ(wrote.status, 0) << wrote.err;
    for (const auto& [file, bytes] : build) EXPECT_TRUE(ReadFile(file) == bytes) << file << " was changed";
}

// However the demo is ended, the console and the host go with it and nothing is started again.
TEST_F(LauncherTest, EndingTheDemoStopsTheConsoleAndTheHost) {
    const struct {
        const char* how;
        std::function<void(KovoTerm::TermSession&)> end;
        std::string logged;
    } endings[] = {
        {"Ctrl-C at the terminal", [](KovoTerm::TermSession& demo) { demo.SendRaw("\x03"); },
         "daemon.info init: interrupted at the terminal; stopping the host"},
        {"SIGTERM to the launcher", [](KovoTerm::TermSession& demo) { ASSERT_TRUE(demo.Signal(SIGTERM)); },
         "init: " + kFake + " exited with status 0"},
    };
    int hosts = 0;
    for (const auto& ending : endings) {
        SCOPED_TRACE(ending.how);
        _host = "host" + std::to_string(++hosts);
        const std::string starts = Host() + ".starts";
        auto demo = Demo({"append", starts, "started", "wait"});
        ASSERT_TRUE(WaitFor([&] { return ReadFile(starts) == "started\n" && ConsolePid() > 0; }))
            << demo->Output();
        const pid_t console = ConsolePid();
        ending.end(*demo);
        EXPECT_TRUE(EndedWithZero(*demo)) << demo->Dump();
        EXPECT_EQ(ReadFile(starts), "started\n");
        EXPECT_NE(::kill(console, 0), 0);
        EXPECT_FALSE(Exists(Host() + "/state/console.pid"));
        EXPECT_FALSE(Exists(Host() + "/state/init.pid"));
        EXPECT_NE(Syslog().find(ending.logged), std::string::npos) << Syslog();
    }
}

TEST_F(LauncherTest, OneHostPerDirectoryExecJoinsItAndItFollowsOnlyAWholeStore) {
    auto demo = Demo({"pidfile", "wait"});
    ASSERT_TRUE(WaitFor([&] { return ConsolePid() > 0; }));

    const auto second = Once({"exit", "0"});
    EXPECT_EQ(second.status, 1);
    EXPECT_NE(second.err.find("is already running"), std::string::npos) << second.err;

    // That exec joins the running host, its tmpfs included, the end-to-end tests prove at every step.
    // A store it cannot read is said, and the next whole one followed.
    ASSERT_EQ(Inside("cp /etc/halvor/host.json /etc/halvor/good.json && printf garbage > /etc/halvor/bad.json"
                     " && mv /etc/halvor/bad.json /etc/halvor/host.json")
                  .status,
              0);
    EXPECT_TRUE(WaitFor([&] { return Syslog().find("cannot follow the store: ") != std::string::npos; }))
        << Syslog();
    ASSERT_EQ(Inside("mv /etc/halvor/good.json /etc/halvor/host.json").status, 0);
    ASSERT_EQ(
        RunProgram({kSim, "set", Host(), "/network/routing/ipv4DefaultGateway", R"("10.20.30.199")"}).status,
        0);
    EXPECT_TRUE(WaitFor([&] { return Inside("/bin/zenkping -c 1 -W 1 10.20.30.199").status == 0; }));

    demo->SendRaw("\x03");
    EXPECT_TRUE(EndedWithZero(*demo)) << demo->Dump();
}

// Bad input gets a message and the usage status, and changes nothing. (Which values the store's schema
// refuses, and with which words, is the schema's unit tests' business.)
TEST_F(LauncherTest, BadInputGetsAMessageAndAUsageStatusAndChangesNothing) {
    std::ofstream(_tmp / "broken.json") << "{ not json";
    std::ofstream(_tmp / "misspelt.json")
        << R"({"network": {"dns": {"hostName": "lab"}}, "vms": [{"name": 3}]})";
    const std::string fresh = _tmp / "fresh";
    const std::string misspelt = "/network/dns/hostName: not a member the host knows";
    const struct {
        std::vector<std::string> argv;
        const char* says;
    } refused[] = {
        {{"--dir", _tmp / "a,b", "--once", "--kovo", kFake}, "may not contain ','"},
        {{"--dir", fresh, "--once", "--kovo", _tmp / "missing"}, "cannot run the console"},
        {{"exec", _tmp / "empty", "--", "true"}, "there is no simulated host in"},
        {{"--dir", fresh, "--scenario", "no-such-scenario", "--once", "--kovo", kFake},
         "no scenario named \"no-such-scenario\""},
        {{"--dir", fresh, "--scenario", _tmp / "broken.json", "--once", "--kovo", kFake},
         "is not valid JSON"},
        {{"--dir", fresh, "--scenario", _tmp / "misspelt.json", "--once", "--kovo", kFake}, misspelt.c_str()},
        {{"--dir", Host(), "--scenario", "dvs", "--once", "--kovo", kFake},
         "was made from the scenario \"default\""},
        {{"set", Host(), "/network/dns/hostname", "not json"}, "not a JSON value"},
        {{"set", Host(), "/network/dns/hostName", "\"lab\""}, misspelt.c_str()},
        // The store commands that work inside a host refuse to act on the machine.
        {{"in-host-set", "/x", "1"}, "only inside a simulated host"},
    };
    ASSERT_EQ(Once({"exit", "0"}).status, 0);
    const std::string before = ReadFile(Upper("/etc/halvor/host.json"));
    for (const auto& bad : refused) {
        std::vector<std::string> argv = {kSim};
        argv.insert(argv.end(), bad.argv.begin(), bad.argv.end());
        const auto result = RunProgram(argv);
        EXPECT_EQ(result.status, 2) << bad.says;
        EXPECT_NE(result.err.find(bad.says), std::string::npos) << result.err;
    }
    EXPECT_EQ(ReadFile(Upper("/etc/halvor/host.json")), before);
    const auto missing = RunProgram({kSim, "get", Host(), "/no/such"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.out, "null\n");
}

TEST_F(LauncherTest, AnUnprivilegedUserGetsTheSameHost) {
    if (::geteuid() != 0) GTEST_SKIP() << "already unprivileged: every other test covers it";
    constexpr uid_t kNobody = 65534;
    ASSERT_EQ(::chown(_tmp.Path().c_str(), kNobody, kNobody), 0);
    const std::string report = _tmp / "report";
    const auto result = Once({"write", "/etc/from-nobody", "y", "syslog", "4", "as nobody", "report", report},
                             {.uid = kNobody});
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
    EXPECT_NE(Syslog().find("user.warning KOVO[" + facts["pid"] + "]: as nobody"), std::string::npos);

    // The host's name server runs for the unprivileged user too.
    auto resolved =
        RunProgram({kSim, "exec", Host(), "--", "getent", "hosts", "ntp.lab.example"}, {.uid = kNobody});
    EXPECT_NE(resolved.out.find("10.20.30.5"), std::string::npos) << resolved.out << resolved.err;
}

}  // namespace
