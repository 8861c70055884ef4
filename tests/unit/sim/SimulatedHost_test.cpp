// Inside a booted simulated host: what keeps the machine around it safe, and what the host makes for
// itself at boot. Its PAM, name server, daemons and power are the end-to-end tests' to prove: every one of
// them logs in, resolves, records or powers off through them.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "helpers/Subprocess.h"
#include "host/HostPrograms.h"

namespace {

using namespace KovoSim::Test;

const std::string kSim = KOVO_SIM;

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
    static RunResult Inside(const std::vector<std::string>& command) {
        return RunInHost(kSim, Host(), command);
    }
    static RunResult Shell(const std::string& script) { return Inside({"/bin/sh", "-c", script}); }

    static TempDir* _tmp;
};
TempDir* SimulatedHostTest::_tmp = nullptr;

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

// The support pages show only that these exist; that they are this host's is proved here.
TEST_F(SimulatedHostTest, TheCertificateAndHostKeysAreMadeForThisHost) {
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

}  // namespace
