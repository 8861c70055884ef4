#include "host/HostPrograms.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

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
    std::string Out() const { return _out.str(); }
    std::string Err() const { return _err.str(); }

    TempDir _tmp;
    std::shared_ptr<ZenkCtl::Store::HostStore> _store;
    std::ostringstream _out, _err;
    pid_t _initPid = -1;
};

TEST_F(HostProgramsTest, HclCmdActsOnlyAsUsersItKnows) {
    EXPECT_EQ(Run({"hcl-cmd", "-U", "nobody", "internalsvc/refresh"}), 255);
    EXPECT_NE(Err().find("Failed to login as user 'nobody'"), std::string::npos);
    EXPECT_EQ(Run({"hcl-cmd", "-U", "viewer", "hostsvc/start_ssh"}), 255);
    EXPECT_EQ(Run({"hcl-cmd", "-U", "root", "internalsvc/refresh"}), 0);
    EXPECT_EQ(Run({"hcl-cmd", "-U", "kovo", "hostsvc/autostartmanager/autostop"}), 0);
    EXPECT_EQ(Run({"hcl-cmd", "-U", "root", "no/such/command"}), 1);
    EXPECT_NE(Err().find("Unknown command 'no/such/command'"), std::string::npos);
    EXPECT_EQ(Run({"hcl-cmd", "root", "internalsvc/refresh"}), 1);
    EXPECT_EQ(Run({"hcl-cmd"}), 1);
}

TEST_F(HostProgramsTest, HclCmdLockdownQueriesAndModeChanges) {
    EXPECT_EQ(Run({"hcl-cmd", "-U", "kovo", "hclsvc/auth/lockdown_is_enabled"}), 0);
    EXPECT_EQ(Out(), "false\n");
    EXPECT_EQ(Run({"hcl-cmd", "-U", "kovo", "hclsvc/auth/lockdown_is_possible"}), 0);
    EXPECT_EQ(Out(), "true\n");
    EXPECT_EQ(Run({"hcl-cmd", "-U", "kovo", "hclsvc/auth/lockdown_mode_enter"}), 0);
    EXPECT_EQ(At("/services/lockdown/enabled"), true);
    EXPECT_EQ(Run({"hcl-cmd", "-U", "kovo", "hclsvc/auth/lockdown_is_enabled"}), 0);
    EXPECT_EQ(Out(), "true\n");
    EXPECT_EQ(Run({"hcl-cmd", "-U", "kovo", "hclsvc/auth/lockdown_mode_exit"}), 0);
    EXPECT_EQ(At("/services/lockdown/enabled"), false);

    _store->Update([](json& d) { d["services"]["lockdown"]["possible"] = false; });
    EXPECT_EQ(Run({"hcl-cmd", "-U", "kovo", "hclsvc/auth/lockdown_mode_enter"}), 1);
    EXPECT_FALSE(Err().empty());
    EXPECT_EQ(At("/services/lockdown/enabled"), false);
}

TEST_F(HostProgramsTest, HclCmdServiceSwitchesAndAStoppedAgent) {
    EXPECT_EQ(Run({"hcl-cmd", "-U", "root", "hostsvc/start_qor_shell"}), 0);
    EXPECT_EQ(Run({"hcl-cmd", "-U", "root", "hostsvc/enable_qor_shell"}), 0);
    EXPECT_EQ(At("/services/QorShell"), json({{"enabled", true}, {"running", true}}));
    EXPECT_EQ(Run({"hcl-cmd", "-U", "root", "hostsvc/stop_ssh"}), 0);
    EXPECT_EQ(Run({"hcl-cmd", "-U", "root", "hostsvc/disable_ssh"}), 0);
    EXPECT_EQ(At("/services/SSH"), json({{"enabled", false}, {"running", false}}));

    _store->Update([](json& d) { d["services"]["hostAgent"]["running"] = false; });
    EXPECT_EQ(Run({"hcl-cmd", "-U", "root", "hostsvc/start_ssh"}), 1);
    EXPECT_EQ(At("/services/SSH/running"), false);
}

TEST_F(HostProgramsTest, EveryRunIsRecordedWithItsPathAndArguments) {
    Run({"hcl-cmd", "-U", "nobody", "internalsvc/refresh"}, "/bin/hcl-cmd");
    Run({"/etc/init.d/SSH", "status"}, "/etc/init.d/SSH");
    Run({"powerOffVms"}, "/sbin/powerOffVms");
    std::istringstream log(ReadFile(_tmp / "commands.log"));
    std::string line;
    ASSERT_TRUE(std::getline(log, line));
    auto first = json::parse(line);
    EXPECT_EQ(first["program"], "hcl-cmd");
    EXPECT_EQ(first["path"], "/bin/hcl-cmd");
    EXPECT_EQ(first["argv"], json({"hcl-cmd", "-U", "nobody", "internalsvc/refresh"}));
    EXPECT_EQ(first["uid"], ::getuid());
    ASSERT_TRUE(std::getline(log, line));
    EXPECT_EQ(json::parse(line)["argv"], json({"/etc/init.d/SSH", "status"}));
    ASSERT_TRUE(std::getline(log, line));
    EXPECT_EQ(json::parse(line)["program"], "powerOffVms");
    EXPECT_EQ(json::parse(line)["path"], "/sbin/powerOffVms");
    EXPECT_FALSE(std::getline(log, line));

    // The path is recorded absolute, as the program was found from the directory it ran in.
    EXPECT_EQ(HostPrograms::AbsolutePath("/sbin/powerOffVms", "/tmp"), "/sbin/powerOffVms");
    EXPECT_EQ(HostPrograms::AbsolutePath("./powerOffVms", "/sbin"), "/sbin/powerOffVms");
    EXPECT_EQ(HostPrograms::AbsolutePath("../bin/zenkping", "/usr/sbin"), "/usr/bin/zenkping");
    EXPECT_EQ(HostPrograms::AbsolutePath("backup.sh", ""), "/backup.sh");
    EXPECT_EQ(HostPrograms::AbsolutePath("", "/sbin"), "");
}

TEST_F(HostProgramsTest, InitScriptsUseInitScriptStatuses) {
    EXPECT_EQ(Run({"/etc/init.d/SSH", "status"}), 0);
    EXPECT_EQ(Run({"/etc/init.d/QorShell", "status"}), 3);
    EXPECT_EQ(Run({"/etc/init.d/QorShell", "start"}), 0);
    EXPECT_EQ(Run({"/etc/init.d/QorShell", "status"}), 0);
    EXPECT_EQ(Run({"/etc/init.d/SSH", "stop"}), 0);
    EXPECT_EQ(Run({"/etc/init.d/SSH", "status"}), 3);
    EXPECT_EQ(Run({"/etc/init.d/SSH", "restart"}), 0);
    EXPECT_EQ(At("/services/SSH/running"), true);
    EXPECT_EQ(Run({"/etc/init.d/SSH", "reload"}), 3);
    EXPECT_EQ(Run({"/etc/init.d/SSH"}), 2);
    EXPECT_EQ(Run({"/etc/init.d/SSH", "start", "now"}), 2);
    EXPECT_NE(Err().find("Usage: /etc/init.d/SSH {start|stop|restart|status}"), std::string::npos);
}

TEST_F(HostProgramsTest, AdvancedOptionsReadAndSetWithRangeChecks) {
    EXPECT_EQ(Run({"qorcfg-advcfg", "-q", "-g", "/UserVars/QoriShellTimeOut"}), 0);
    EXPECT_EQ(Out(), "900\n");
    EXPECT_EQ(Run({"qorcfg-advcfg", "-g", "/UserVars/QoriShellTimeOut"}), 0);
    EXPECT_EQ(Out(), "Value of QoriShellTimeOut is 900\n");
    EXPECT_EQ(Run({"qorcfg-advcfg", "-q", "-g", "/UserVars/Missing"}), 1);
    EXPECT_EQ(Run({"qorcfg-advcfg", "-q", "-g", "not-a-path"}), 1);
    EXPECT_EQ(Run({"qorcfg-advcfg", "-x"}), 1);

    const std::vector<std::string> set = {
        "system", "settings", "advanced", "set", "-o", "/UserVars/QoriShellTimeOut", "-i"};
    auto cli = [&](const char* tool, const std::string& value) {
        std::vector<std::string> argv = {tool};
        argv.insert(argv.end(), set.begin(), set.end());
        argv.push_back(value);
        return Run(argv);
    };
    EXPECT_EQ(cli("qorcli", "600"), 0);
    EXPECT_EQ(At("/advancedOptions/UserVars/QoriShellTimeOut/value"), 600);
    EXPECT_EQ(cli("qorcli", "86401"), 1);
    EXPECT_EQ(cli("qorcli", "-1"), 1);
    EXPECT_EQ(cli("qorcli", "12abc"), 1);
    EXPECT_EQ(At("/advancedOptions/UserVars/QoriShellTimeOut/value"), 600);
    EXPECT_EQ(Run({"qorcli", "system", "settings", "advanced", "list"}), 1);

    // Without the host agent only the local tool works.
    _store->Update([](json& d) { d["services"]["hostAgent"]["running"] = false; });
    EXPECT_EQ(cli("qorcli", "60"), 1);
    EXPECT_EQ(cli("qorlocalcli", "60"), 0);
    EXPECT_EQ(At("/advancedOptions/UserVars/QoriShellTimeOut/value"), 60);
}

TEST_F(HostProgramsTest, AgentsStopStartAndTheirLiveCore) {
    EXPECT_EQ(
        Run({"zenkbacktrace", "-w", "-n", "hagentd", "-o", "hagentd-restart%", "-d", _tmp.Path() + "/"}), 0);
    bool found = false;
    for (const auto& entry : std::filesystem::directory_iterator(_tmp.Path()))
        found = found || entry.path().filename().string().rfind("hagentd-restart", 0) == 0;
    EXPECT_TRUE(found);

    EXPECT_EQ(Run({"services.sh", "stop"}), 0);
    EXPECT_EQ(At("/services/hostAgent/running"), false);
    EXPECT_EQ(Run({"zenkbacktrace", "-w", "-n", "hagentd", "-o", "x%", "-d", _tmp.Path()}), 1);
    EXPECT_EQ(Run({"services.sh", "start"}), 0);
    EXPECT_EQ(At("/services/hostAgent/running"), true);
    EXPECT_EQ(Run({"services.sh", "pause"}), 1);
    EXPECT_EQ(Run({"zenkbacktrace", "-w", "-n", "other", "-o", "x", "-d", _tmp.Path()}), 1);
    EXPECT_EQ(Run({"zenkbacktrace", "-w"}), 1);
}

TEST_F(HostProgramsTest, PowerOffVmsFirmwareResetAndBackup) {
    // A fault set for the program fails it before it touches anything, and the run is still recorded.
    _store->Update([](json& d) { d["simulation"]["faults"]["powerOffVms"] = "VM web01 does not respond"; });
    EXPECT_EQ(Run({"powerOffVms"}), 1);
    EXPECT_EQ(Err(), "powerOffVms: VM web01 does not respond\n");
    EXPECT_EQ(At("/vms/0/powerState"), "poweredOn");
    EXPECT_NE(ReadFile(_tmp / "commands.log").find("\"powerOffVms\""), std::string::npos);
    _store->Update([](json& d) { d["simulation"]["faults"] = json::object(); });

    EXPECT_EQ(Run({"powerOffVms", "--terminate"}), 0);
    EXPECT_EQ(Out(), "Terminating web01\nTerminating app\n");
    EXPECT_EQ(At("/vms/0/powerState"), "poweredOff");
    EXPECT_EQ(At("/vms/2/powerState"), "poweredOff");
    EXPECT_EQ(Run({"powerOffVms", "--now"}), 1);

    EXPECT_EQ(Run({"firmwareConfig.py", "--reset-only"}), 0);
    EXPECT_EQ(At("/boot/pending/resetConfiguration"), true);
    EXPECT_EQ(Run({"firmwareConfig.py"}), 2);
    EXPECT_EQ(Run({"backup.sh"}), 0);
}

TEST_F(HostProgramsTest, PowerCommandsAskInitAndNeverActThemselves) {
    sigset_t usr1;
    sigemptyset(&usr1);
    sigaddset(&usr1, SIGUSR1);
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &usr1, nullptr), 0);
    _initPid = ::getpid();
    for (const auto& [command, request] :
         {std::pair{"reboot", "reboot"}, std::pair{"poweroff", "poweroff"}, std::pair{"halt", "poweroff"}}) {
        EXPECT_EQ(Run({command, "-f"}), 0) << command;
        EXPECT_EQ(ReadFile(_tmp / "power"), std::string(request) + "\n");
        const struct timespec none = {0, 0};
        EXPECT_EQ(::sigtimedwait(&usr1, nullptr, &none), SIGUSR1) << command;
    }
    ::pthread_sigmask(SIG_UNBLOCK, &usr1, nullptr);
    _initPid = 999999999;  // nobody
    EXPECT_EQ(Run({"poweroff"}), 1);
}

TEST_F(HostProgramsTest, ZenkPingAnswersOnlyForAddressesThatAreUp) {
    EXPECT_TRUE(KovoSim::Host::ZenkPing::Answers("127.0.0.1"));
    EXPECT_TRUE(KovoSim::Host::ZenkPing::Answers("::1"));
    EXPECT_FALSE(KovoSim::Host::ZenkPing::Answers("192.0.2.77"));
    EXPECT_FALSE(KovoSim::Host::ZenkPing::Answers("2001:db8::77%zk0"));
    EXPECT_FALSE(KovoSim::Host::ZenkPing::Answers("not an address"));

    EXPECT_EQ(Run({"zenkping", "-c", "2", "127.0.0.1"}), 0);
    EXPECT_NE(Out().find("2 packets transmitted, 2 packets received, 0% packet loss"), std::string::npos)
        << Out();
    EXPECT_EQ(Run({"zenkping", "-c", "1", "-W", "1", "192.0.2.77"}), 1);
    EXPECT_NE(Out().find("1 packets transmitted, 0 packets received, 100% packet loss"), std::string::npos);
    EXPECT_EQ(Run({"zenkping", "-c", "3", "no-such-name.invalid"}), 2);
    EXPECT_EQ(Run({"zenkping", "-c", "x", "127.0.0.1"}), 2);
    EXPECT_EQ(Run({"zenkping", "-c", "1", "-W", "x", "127.0.0.1"}), 2);
    EXPECT_EQ(Run({"zenkping", "-c", "3"}), 2);
}

TEST_F(HostProgramsTest, ZenkPingLeavesOnlyThroughAnEnabledInterfaceOfTheStore) {
    _store->Update([](json& d) {
        d["network"]["zenkNics"] = {{{"name", "zk0"}, {"enabled", true}},
                                    {{"name", "zk1"}, {"enabled", false}}};
    });
    auto replies = [&] {
        size_t lines = 0;
        for (size_t at = Out().find("64 bytes from"); at != std::string::npos;
             at = Out().find("64 bytes from", at + 1))
            ++lines;
        return lines;
    };
    EXPECT_EQ(Run({"zenkping", "-c", "3", "-I", "zk0", "127.0.0.1"}), 0);
    EXPECT_EQ(replies(), 3u) << Out();
    EXPECT_EQ(Run({"zenkping", "-c", "3", "-I", "zk1", "127.0.0.1"}), 2);
    EXPECT_EQ(Err(), "zenkping: connect: Network is unreachable\n");
    EXPECT_EQ(replies(), 0u) << Out();
    EXPECT_EQ(Run({"zenkping", "-c", "3", "-I", "zk9", "127.0.0.1"}), 2);
    EXPECT_EQ(Err(), "zenkping: SO_BINDTODEVICE zk9: No such device\n");
    EXPECT_EQ(replies(), 0u) << Out();

    // A store that cannot be read leaves the interface's state unknown: the ping goes on.
    std::ofstream(_tmp / "host.json", std::ios::trunc) << "{ broken";
    EXPECT_EQ(Run({"zenkping", "-c", "1", "-I", "zk1", "127.0.0.1"}), 0);
    EXPECT_EQ(Err(), "");
}

TEST_F(HostProgramsTest, ABrokenStoreIsAMessageNotACrash) {
    std::ofstream(_tmp / "host.json", std::ios::trunc) << "{ broken";
    EXPECT_EQ(Run({"hcl-cmd", "-U", "root", "hostsvc/start_ssh"}), 1);
    EXPECT_FALSE(Err().empty());
    EXPECT_EQ(Run({"/etc/init.d/SSH", "status"}), 1);
    EXPECT_EQ(Run({"not-a-program"}), 127);
    EXPECT_EQ(ReadFile(_tmp / "host.json"), "{ broken");
}

}  // namespace
