#include "host/HostPrograms.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <signal.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <tuple>
#include <vector>

#include "helpers/Subprocess.h"
#include "host/ZenkPing.h"

using KovoSim::Host::HostContext;
using KovoSim::Host::HostPrograms;
using KovoSim::Test::Exists;
using KovoSim::Test::ReadFile;
using KovoSim::Test::TempDir;
using nlohmann::json;

namespace {

const json kHost = json::parse(R"({
  "users": [{"name": "root", "consoleAccess": true},
            {"name": "viewer", "hclAccess": false}],
  "services": {"QorShell": {"enabled": false, "running": false}, "SSH": {"enabled": true, "running": true},
               "lockdown": {"enabled": false, "possible": true}, "hostAgent": {"running": true}},
  "advancedOptions": {"UserVars": {
      "QoriShellTimeOut": {"type": "integer", "value": 900, "min": 0, "max": 86400}}},
  "vms": [{"name": "web01", "powerState": "poweredOn"}, {"name": "db01", "powerState": "poweredOff"},
          {"name": "app", "powerState": "poweredOn"}],
  "boot": {"pending": {}}
})");

struct Step {
    std::vector<std::string> argv;
    int status;
    const char* out = nullptr;  // the whole output
    const char* err = nullptr;  // a part of the error output
};

class HostProgramsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        _store = std::make_shared<ZenkCtl::Store::HostStore>(_tmp / "host.json");
        _store->Replace(kHost);
    }

    // Runs a program as the host would; its output lands in Out()/Err().
    int Run(std::vector<std::string> argv, const std::string& path = {}) {
        _out.str("");
        _err.str("");
        HostContext context{argv, _out, _err, _store, path};
        context.commandLog = _tmp / "commands.log";
        context.runDir = _tmp.Path();
        context.initPid = _initPid;
        const auto slash = argv[0].rfind('/');
        return HostPrograms::Run(slash == std::string::npos ? argv[0] : argv[0].substr(slash + 1), context);
    }
    json At(const std::string& pointer) { return _store->Get(pointer); }
    // Runs each step in turn: its status, and its output or error where the step names one.
    void Walk(const std::vector<Step>& steps) {
        for (const Step& step : steps) {
            std::string line;
            for (const auto& word : step.argv) line += word + " ";
            EXPECT_EQ(Run(step.argv), step.status) << line << Err();
            if (step.out) {
                EXPECT_EQ(Out(), step.out) << line;
            }
            if (step.err) {
                EXPECT_NE(Err().find(step.err), std::string::npos) << line << Err();
            }
        }
    }
    std::string Out() const { return _out.str(); }
    std::string Err() const { return _err.str(); }

    TempDir _tmp;
    std::shared_ptr<ZenkCtl::Store::HostStore> _store;
    std::ostringstream _out, _err;
    pid_t _initPid = -1;
};

// What the console runs every day (refresh, autostop, the lockdown query, SSH), a refused lockdown and
// the program and arguments of every run are the end-to-end tests' to prove.
TEST_F(HostProgramsTest, HclCmdActsOnlyAsUsersItKnowsOnServicesAndLockdown) {
    auto hcl = [](const std::string& user, const std::string& command) {
        return std::vector<std::string>{"hcl-cmd", "-U", user, command};
    };
    Walk({
        {hcl("nobody", "hostsvc/stop_ssh"), 255, nullptr, "Failed to login as user 'nobody'"},
        {hcl("viewer", "hostsvc/stop_ssh"), 255},
        {hcl("root", "no/such/command"), 1, nullptr, "Unknown command 'no/such/command'"},
        {{"hcl-cmd", "root", "internalsvc/refresh"}, 1},
        {{"hcl-cmd"}, 1},
        {hcl("kovo", "hclsvc/auth/lockdown_mode_enter"), 0},
        {hcl("kovo", "hclsvc/auth/lockdown_is_enabled"), 0, "true\n"},
        {hcl("kovo", "hclsvc/auth/lockdown_mode_exit"), 0},
        {hcl("kovo", "hclsvc/auth/lockdown_is_enabled"), 0, "false\n"},
        {hcl("root", "hostsvc/start_qor_shell"), 0},
        {hcl("root", "hostsvc/enable_qor_shell"), 0},
    });
    EXPECT_EQ(At("/services/SSH/running"), true);
    EXPECT_EQ(At("/services/QorShell"), json({{"enabled", true}, {"running", true}}));
}

// The path is recorded absolute, as the program was found from the directory it ran in.
TEST_F(HostProgramsTest, EveryRunIsRecordedWithWhoRanItAndTheAbsolutePath) {
    Run({"powerOffVms"}, "/sbin/powerOffVms");
    const json record = json::parse(ReadFile(_tmp / "commands.log"));
    EXPECT_EQ(record["uid"], ::getuid());
    EXPECT_EQ(record["user"], ::getpwuid(::getuid())->pw_name);
    for (const auto& [path, cwd, absolute] : {std::tuple{"/sbin/powerOffVms", "/tmp", "/sbin/powerOffVms"},
                                              {"./powerOffVms", "/sbin", "/sbin/powerOffVms"},
                                              {"../bin/zenkping", "/usr/sbin", "/usr/bin/zenkping"},
                                              {"backup.sh", "", "/backup.sh"},
                                              {"", "/sbin", ""}})
        EXPECT_EQ(HostPrograms::AbsolutePath(path, cwd), absolute) << path << " in " << cwd;
}

TEST_F(HostProgramsTest, InitScriptsUseInitScriptStatuses) {
    Walk({
        {{"/etc/init.d/SSH", "status"}, 0},
        {{"/etc/init.d/QorShell", "status"}, 3},
        {{"/etc/init.d/QorShell", "start"}, 0},
        {{"/etc/init.d/QorShell", "status"}, 0},
        {{"/etc/init.d/SSH", "stop"}, 0},
        {{"/etc/init.d/SSH", "status"}, 3},
        {{"/etc/init.d/SSH", "restart"}, 0},
        {{"/etc/init.d/SSH", "reload"}, 3},
        {{"/etc/init.d/SSH"}, 2},
        {{"/etc/init.d/SSH", "start", "now"},
         2,
         nullptr,
         "Usage: /etc/init.d/SSH {start|stop|restart|status}"},
    });
    EXPECT_EQ(At("/services/SSH/running"), true);
}

// The quiet read and a valid set are the end-to-end time-out tests' to prove.
TEST_F(HostProgramsTest, AdvancedOptionsReadAndSetWithRangeChecks) {
    const std::string option = "/UserVars/QoriShellTimeOut";
    auto set = [&](const char* tool, const std::string& value) {
        return std::vector<std::string>{tool, "system", "settings", "advanced", "set",
                                        "-o", option,   "-i",       value};
    };
    Walk({
        {{"qorcfg-advcfg", "-g", option}, 0, "Value of QoriShellTimeOut is 900\n"},
        {{"qorcfg-advcfg", "-q", "-g", "/UserVars/Missing"}, 1},
        {{"qorcfg-advcfg", "-q", "-g", "not-a-path"}, 1},
        {{"qorcfg-advcfg", "-x"}, 1},
        {set("qorcli", "86401"), 1},
        {set("qorcli", "-1"), 1},
        {set("qorcli", "12abc"), 1},
        {{"qorcli", "system", "settings", "advanced", "list"}, 1},
    });
    EXPECT_EQ(At("/advancedOptions/UserVars/QoriShellTimeOut/value"), 900);

    // Without the host agent only the local tool works.
    _store->Update([](json& d) { d["services"]["hostAgent"]["running"] = false; });
    Walk({{set("qorcli", "60"), 1}, {set("qorlocalcli", "60"), 0}});
    EXPECT_EQ(At("/advancedOptions/UserVars/QoriShellTimeOut/value"), 60);
}

TEST_F(HostProgramsTest, AgentsStopStartAndTheirLiveCore) {
    const std::string dir = _tmp.Path();
    Walk({{{"zenkbacktrace", "-w", "-n", "hagentd", "-o", "hagentd-restart%", "-d", dir + "/"}, 0}});
    bool found = false;
    for (const auto& entry : std::filesystem::directory_iterator(dir))
        found = found || entry.path().filename().string().rfind("hagentd-restart", 0) == 0;
    EXPECT_TRUE(found);
    Walk({
        {{"services.sh", "stop"}, 0},
        {{"zenkbacktrace", "-w", "-n", "hagentd", "-o", "x%", "-d", dir}, 1},  // no agent to take it from
        {{"services.sh", "start"}, 0},
        {{"services.sh", "pause"}, 1},
        {{"zenkbacktrace", "-w", "-n", "other", "-o", "x", "-d", dir}, 1},
        {{"zenkbacktrace", "-w"}, 1},
    });
    EXPECT_EQ(At("/services/hostAgent/running"), true);
}

// A fault that fails powerOffVms, the reset-only run and the backup are the end-to-end restore, reset and
// password tests' to prove.
TEST_F(HostProgramsTest, PowerOffVmsAndFirmwareConfigRefuseWhatTheyDoNotKnow) {
    Walk({
        {{"powerOffVms", "--terminate"}, 0, "Terminating web01\nTerminating app\n"},
        {{"powerOffVms", "--now"}, 1},
        {{"firmwareConfig.py"}, 2},
    });
    EXPECT_EQ(At("/vms/0/powerState"), "poweredOff");
    EXPECT_EQ(At("/vms/2/powerState"), "poweredOff");
}

// Reboot and power-off reaching the host's init are the end-to-end shut-down and restart tests' to prove.
TEST_F(HostProgramsTest, HaltAsksInitToPowerOffAndWithoutInitFails) {
    sigset_t usr1;
    sigemptyset(&usr1);
    sigaddset(&usr1, SIGUSR1);
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &usr1, nullptr), 0);
    _initPid = ::getpid();
    EXPECT_EQ(Run({"halt", "-f"}), 0);
    EXPECT_EQ(ReadFile(_tmp / "power"), "poweroff\n");
    const struct timespec none = {0, 0};
    EXPECT_EQ(::sigtimedwait(&usr1, nullptr, &none), SIGUSR1);
    ::pthread_sigmask(SIG_UNBLOCK, &usr1, nullptr);
    _initPid = 999999999;  // nobody
    EXPECT_EQ(Run({"poweroff"}), 1);
}

// A ping through the enabled interface and one nobody answers are the end-to-end network check's.
TEST_F(HostProgramsTest, ZenkPingAnswersOnlyForAddressesThatAreUpAndLeavesOnlyThroughAnEnabledInterface) {
    using KovoSim::Host::ZenkPing;
    for (const char* up : {"127.0.0.1", "::1"}) EXPECT_TRUE(ZenkPing::Answers(up)) << up;
    for (const char* down : {"192.0.2.77", "2001:db8::77%zk0", "not an address"})
        EXPECT_FALSE(ZenkPing::Answers(down)) << down;

    _store->Update([](json& d) {
        d["network"]["zenkNics"] = {{{"name", "zk0"}, {"enabled", true}},
                                    {{"name", "zk1"}, {"enabled", false}}};
    });
    Walk({
        {{"zenkping", "-c", "3", "no-such-name.invalid"}, 2},
        {{"zenkping", "-c", "x", "127.0.0.1"}, 2},
        {{"zenkping", "-c", "1", "-W", "x", "127.0.0.1"}, 2},
        {{"zenkping", "-c", "3"}, 2},
        {{"zenkping", "-c", "3", "-I", "zk1", "127.0.0.1"},
         2,
         "",
         "zenkping: connect: Network is unreachable\n"},
        {{"zenkping", "-c", "3", "-I", "zk9", "127.0.0.1"},
         2,
         "",
         "zenkping: SO_BINDTODEVICE zk9: No such device\n"},
    });
    // A store that cannot be read leaves the interface's state unknown: the ping goes on.
    std::ofstream(_tmp / "host.json", std::ios::trunc) << "{ broken";
    Walk({{{"zenkping", "-c", "1", "-I", "zk1", "127.0.0.1"}, 0}});
    EXPECT_EQ(Err(), "");
}

TEST_F(HostProgramsTest, ABrokenStoreIsAMessageNotACrash) {
    std::ofstream(_tmp / "host.json", std::ios::trunc) << "{ broken";
    Walk({
        {{"hcl-cmd", "-U", "root", "hostsvc/start_ssh"}, 1, nullptr, "hcl-cmd: "},
        {{"/etc/init.d/SSH", "status"}, 1},
        {{"not-a-program"}, 127},
    });
    EXPECT_EQ(ReadFile(_tmp / "host.json"), "{ broken");
}

}  // namespace
