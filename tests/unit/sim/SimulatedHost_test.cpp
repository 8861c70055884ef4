// Inside a booted simulated host: real PAM with the host's module, the host's name server, its
// programs, its daemons, and power. What its interfaces run after boot shows on the console's welcome
// screen in the end-to-end tests.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "helpers/Subprocess.h"
#include "host/HostPrograms.h"

namespace {

using namespace KovoSim::Test;
using namespace std::chrono_literals;

const std::string kSim = KOVO_SIM;
const std::string kFake = SIM_FAKE_CONSOLE;
const std::string kPam = SIM_PAM_CLIENT;

// One default host for the tests that only look at it, made once.
class SimulatedHostTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        _tmp = new TempDir();
        const auto made = RunProgram({kSim, "--dir", Host(), "--once", "--kovo", "/bin/true"});
        ASSERT_EQ(made.status, 0) << made.err;
    }
    static void TearDownTestSuite() {
        delete _tmp;
        _tmp = nullptr;
    }
    static std::string Host() { return *_tmp / "host"; }
    static std::string Upper(const std::string& path) { return Host() + "/upper" + path; }

    static RunResult Inside(const std::vector<std::string>& command) {
        return RunInHost(kSim, Host(), command);
    }
    static RunResult Shell(const std::string& script) { return Inside({"/bin/sh", "-c", script}); }
    static RunResult Pam(const std::vector<std::string>& args) {
        std::vector<std::string> command = {kPam};
        command.insert(command.end(), args.begin(), args.end());
        return Inside(command);
    }

    static TempDir* _tmp;
};
TempDir* SimulatedHostTest::_tmp = nullptr;

TEST_F(SimulatedHostTest, EveryPamOutcomeThroughTheRealLibrary) {
    EXPECT_EQ(Pam({"root", "Kovo-Demo1"}).out, "authenticate=0\naccount=0\n");
    EXPECT_EQ(Pam({"root", "Kovo-Demo2"}).out, "authenticate=7\n");                 // PAM_AUTH_ERR
    EXPECT_EQ(Pam({"nosuchuser", "x"}).out, "authenticate=10\n");                   // PAM_USER_UNKNOWN
    EXPECT_EQ(Pam({"viewer", "Viewer-Pass1"}).out, "authenticate=0\naccount=6\n");  // PAM_PERM_DENIED
    EXPECT_EQ(Pam({"newadmin", "Expired-Pass1"}).out,
              "authenticate=0\naccount=12\n");  // PAM_NEW_AUTHTOK_REQD

    const auto weak = Pam({"newadmin", "Expired-Pass1", "weakpass", "weakpass"});
    EXPECT_NE(weak.out.find("message: The password must mix at least three of"), std::string::npos)
        << weak.out;
    EXPECT_NE(weak.out.find("chauthtok=20\n"), std::string::npos) << weak.out;  // PAM_AUTHTOK_ERR
    const auto mismatch = Pam({"newadmin", "Expired-Pass1", "Fresh-Pass42", "Fresh-Pass43"});
    EXPECT_EQ(mismatch.out.find("chauthtok=0\n"), std::string::npos) << mismatch.out;
    EXPECT_EQ(Pam({"newadmin", "Expired-Pass1"}).out, "authenticate=0\naccount=12\n");  // still the old one

    const auto accepted = Pam({"newadmin", "Expired-Pass1", "Fresh-Pass42", "Fresh-Pass42"});
    EXPECT_EQ(accepted.out, "authenticate=0\naccount=12\nchauthtok=0\n") << accepted.err;
    EXPECT_EQ(Pam({"newadmin", "Fresh-Pass42"}).out, "authenticate=0\naccount=0\n");
    EXPECT_EQ(Pam({"newadmin", "Expired-Pass1"}).out, "authenticate=7\n");
    // Persisted in the host's store, seen from outside.
    EXPECT_EQ(RunProgram({kSim, "get", Host(), "/users/2/expired"}).out, "false\n");
}

TEST_F(SimulatedHostTest, NamesResolveThroughTheHostsNameServer) {
    // The host's own name, with its hosts entry removed, still resolves: through DNS.
    const auto fqdn = Shell(
        "cp /etc/hosts /tmp/hosts.saved && sed -i '/kovo-host-01/d' /etc/hosts && "
        "getent ahostsv4 kovo-host-01.lab.example; s=$?; cp /tmp/hosts.saved /etc/hosts; exit $s");
    EXPECT_EQ(fqdn.status, 0) << fqdn.err;
    EXPECT_NE(fqdn.out.find("10.20.30.41"), std::string::npos) << fqdn.out;
    const auto extra = Inside({"getent", "hosts", "ntp.lab.example"});
    EXPECT_NE(extra.out.find("10.20.30.5"), std::string::npos) << extra.out;
    EXPECT_NE(Inside({"getent", "hosts", "missing.lab.example"}).status, 0);
    // Restored: the hosts file has the host's entry again.
    EXPECT_NE(std::ifstream(Upper("/etc/hosts")).peek(), EOF);
}

// Which addresses answer a ping inside the host is the following host's and the host programs' business.
TEST_F(SimulatedHostTest, NothingLeavesTheHost) {
    // The machine's interfaces are not there: only the host's own loopback.
    EXPECT_EQ(Shell("ip -o link | wc -l").out, "1\n");
}

TEST_F(SimulatedHostTest, PowerCommandsResolveOnlyToTheHostsOwn) {
    const std::string program = std::filesystem::path(kSim).parent_path() / "kovo-sim-host";
    // Every place a shell without PATH looks, and the paths the console names.
    const auto found = Shell(
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
        EXPECT_EQ(line, program);
    }
    EXPECT_GE(count, 8) << found.out;  // /usr/sbin and /sbin at least, for each of the four
    EXPECT_EQ(commandV, 4) << found.out;
}

// How a run of a host program is recorded is the host programs' business, and which paths the records
// tell apart the following host's.
TEST_F(SimulatedHostTest, DaemonsWriteTheHostsFiles) {
    const auto sent = Inside({kFake, "send", "/var/run/halvor/obsd.sock", "@&!*@*@(kovo.test)event text",
                              "send", "/var/run/halvor/auditd.sock", "audit text"});
    ASSERT_EQ(sent.status, 0) << sent.err;
    EXPECT_NE(ReadFile(Upper("/var/log/kovo-sim/events.log")).find("@&!*@*@(kovo.test)event text\n"),
              std::string::npos);
    EXPECT_NE(ReadFile(Upper("/var/log/kovo-sim/audit.log")).find("audit text\n"), std::string::npos);

    // The certificate and host keys were made for this host.
    const auto subject =
        Inside({"/bin/openssl", "x509", "-in", "/etc/halvor/ssl/host.crt", "-noout", "-subject"});
    EXPECT_NE(subject.out.find("kovo-host-01.lab.example"), std::string::npos) << subject.out << subject.err;
    const auto key =
        Inside({"/usr/lib/halvor/openssh/bin/ssh-keygen", "-l", "-f", "/etc/ssh/ssh_host_rsa_key.pub"});
    EXPECT_EQ(key.status, 0) << key.err;
    EXPECT_NE(key.out.find("root@kovo-host-01.lab.example (RSA)"), std::string::npos) << key.out;
}

// Host programs reach the launcher's own files through links; whatever runs inside a host writes through
// them, the build that made the host must stay as it was.
TEST(HostIsolation, WritingThroughEveryHostProgramPathLeavesTheBuildAsItWas) {
    TempDir tmp;
    const std::string host = tmp / "host";
    ASSERT_EQ(RunProgram({kSim, "--dir", host, "--once", "--kovo", "/bin/true"}).status, 0);
    const std::filesystem::path beside = std::filesystem::path(kSim).parent_path();
    std::map<std::string, std::string> build;
    for (const std::string& file :
         {kSim, (beside / "kovo-sim-host").string(), (beside / "pam_kovo_sim.so").string()})
        build[file] = ReadFile(file);

    std::vector<std::string> paths{"/usr/lib/kovo-sim/kovo-sim-host", "/usr/lib/kovo-sim/pam_kovo_sim.so"};
    for (const auto& install : KovoSim::Host::HostPrograms::Installs()) paths.push_back(install.hostPath);
    std::string script;
    for (const auto& path : paths) script += "printf 'written inside\\n' > " + path + "; ";
    script += "true";
    const auto wrote = RunProgram({kSim, "exec", host, "--", "/bin/sh", "-c", script});
    ASSERT_EQ(wrote.status, 0) << wrote.err;

    for (const auto& [file, bytes] : build) EXPECT_TRUE(ReadFile(file) == bytes) << file << " was changed";
}

// Power needs a host of its own with a console running.
class PowerTest : public ::testing::Test {
  protected:
    std::string Host() const { return _tmp / "host"; }
    std::unique_ptr<PtyProcess> Demo() {
        return std::make_unique<PtyProcess>(std::vector<std::string>{
            kSim, "--dir", Host(), "--kovo", kFake, "--", "append", _tmp / "starts", "started", "wait"});
    }
    int Starts() const {
        const std::string text = ReadFile(_tmp / "starts");
        return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    }
    RunResult Inside(const std::string& script) {
        return RunProgram({kSim, "exec", Host(), "--", "/bin/sh", "-c", script});
    }
    std::string Get(const std::string& pointer) { return RunProgram({kSim, "get", Host(), pointer}).out; }
    TempDir _tmp;
};

TEST_F(PowerTest, PoweroffInsideTheHostEndsIt) {
    auto demo = Demo();
    ASSERT_TRUE(WaitFor([&] { return Starts() == 1; })) << demo->Output();
    // The command itself ends with the host, as everything in it does.
    Inside("env -i /bin/sh -c poweroff");
    EXPECT_EQ(demo->Wait(20s), 0);
    EXPECT_EQ(Starts(), 1);
    EXPECT_NE(ReadFile(Host() + "/upper/var/log/syslog.log").find("init: powering off"), std::string::npos);
}

TEST_F(PowerTest, RebootAppliesBootTimeChangesAndStartsTheConsoleAgain) {
    auto demo = Demo();
    ASSERT_TRUE(WaitFor([&] { return Starts() == 1; })) << demo->Output();
    const std::string firstConsole = ReadFile(Host() + "/state/console.pid");

    ASSERT_EQ(RunProgram({kSim, "set", Host(), "/boot/pending", R"({"ipv6Enabled": false})"}).status, 0);
    ASSERT_EQ(RunProgram({kSim, "set", Host(), "/network/dns/hostname", R"("renamed")"}).status, 0);
    Inside("touch /run/before-reboot && reboot -f");
    ASSERT_TRUE(WaitFor([&] { return Starts() == 2; })) << demo->Output();
    EXPECT_EQ(Get("/network/ipv6Enabled"), "false\n");
    EXPECT_EQ(Get("/boot/pending"), "{}\n");
    EXPECT_EQ(Get("/network/dns/hostname"), "\"renamed\"\n");  // a reboot keeps the configuration
    EXPECT_EQ(Inside("test -e /run/before-reboot").status, 1) << "/run is fresh after a reboot";
    EXPECT_EQ(Inside("hostname").out, "renamed\n");
    EXPECT_TRUE(WaitFor([&] { return ReadFile(Host() + "/state/console.pid") != firstConsole; }));

    // A configuration reset takes effect at the next boot: the host is as its scenario made it.
    Inside("/sbin/firmwareConfig.py --reset-only && reboot");
    ASSERT_TRUE(WaitFor([&] { return Starts() == 3; })) << demo->Output();
    EXPECT_EQ(Get("/network/dns/hostname"), "\"kovo-host-01\"\n");
    EXPECT_EQ(Get("/network/ipv6Enabled"), "true\n");

    demo->Write("\x03");
    EXPECT_EQ(demo->Wait(20s), 0);
}

}  // namespace
