// A running host follows what the platform applies to its store, without a reboot: addresses, name
// server, name files. One host for the suite (its first boot is the slow part), booted from a scenario
// file that offers a DHCP lease and carries platform faults of its own.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "helpers/Subprocess.h"

namespace {

using namespace KovoSim::Test;
using namespace std::chrono_literals;
using nlohmann::json;

const std::string kSim = KOVO_SIM;
const std::string kFake = SIM_FAKE_CONSOLE;
const std::string kNet = SIM_NET_CLIENT;
const json kFaults = {{"VirtualSwitchInfo.GetPortGroupSwitch", "switch table lost"},
                      {"DnsConfig.SetDomain", "domain locked"}};

class FollowingHostTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        _tmp = new TempDir();
        json scenario = json::parse(ReadFile(std::string(KOVO_SIM_SCENARIOS) + "/dhcp-server.json"));
        scenario["simulation"]["faults"] = kFaults;
        std::ofstream(*_tmp / "scenario.json") << scenario.dump();
        _host = new PtyProcess({kSim, "--dir", Host(), "--scenario", *_tmp / "scenario.json", "--kovo", kFake,
                                "--", "append", *_tmp / "starts", "started", "wait"});
        ASSERT_TRUE(WaitFor([] { return !ReadFile(*_tmp / "starts").empty(); }, 60s)) << _host->Output();
    }
    static void TearDownTestSuite() {
        _host->Write("\x03");
        EXPECT_EQ(_host->Wait(20s), 0);
        delete _host;
        delete _tmp;
    }
    static std::string Host() { return *_tmp / "host"; }
    static std::string Upper(const std::string& path) { return Host() + "/upper" + path; }

    static RunResult Inside(const std::vector<std::string>& command) {
        return RunInHost(kSim, Host(), command);
    }
    static RunResult Shell(const std::string& script) { return Inside({"/bin/sh", "-c", script}); }
    static RunResult Net(std::vector<std::string> args) {
        args.insert(args.begin(), kNet);
        return Inside(args);
    }
    static bool Answers(const std::string& address) {
        return Inside({"/bin/zenkping", "-c", "1", "-W", "1", address}).status == 0;
    }
    // What the host's name server says a name is, with the hosts file's line for it out of the way.
    static std::string FromNameServer(const std::string& name) {
        return Shell("cp /etc/hosts /etc/hosts.saved && sed -i '/" + name +
                     "/d' /etc/hosts && getent ahostsv4 " + name +
                     " | head -n 1; mv /etc/hosts.saved /etc/hosts")
            .out;
    }

    static std::string Syslog() { return ReadFile(Upper("/var/log/syslog.log")); }

    static TempDir* _tmp;
    static PtyProcess* _host;
};
TempDir* FollowingHostTest::_tmp = nullptr;
PtyProcess* FollowingHostTest::_host = nullptr;

TEST_F(FollowingHostTest, AddressesNameServerAndNameFilesFollowWhatThePlatformApplies) {
    ASSERT_TRUE(Answers("10.20.30.41"));
    ASSERT_FALSE(Answers("10.20.30.77"));
    const std::string bootResolver = ReadFile(Upper("/etc/resolv.conf"));
    ASSERT_NE(bootResolver.find("nameserver 10.20.30.3\n"), std::string::npos) << bootResolver;

    // DHCP: the lease the network offers now runs, with its gateway and its one name server.
    ASSERT_EQ(Net({"ipv4", "dhcp"}).status, 0);
    EXPECT_TRUE(WaitFor([] { return !Answers("10.20.30.41"); })) << "the old address still answers";
    EXPECT_TRUE(Answers("10.20.30.77"));
    EXPECT_TRUE(Answers("10.20.30.1"));
    EXPECT_TRUE(Answers("10.20.30.2"));
    EXPECT_FALSE(Answers("10.20.30.3"));
    EXPECT_TRUE(Answers("10.20.30.5")) << "the scenario's own address went away";
    EXPECT_NE(ReadFile(Upper("/etc/hosts")).find("10.20.30.77\tkovo-host-01.lab.example\tkovo-host-01\n"),
              std::string::npos)
        << ReadFile(Upper("/etc/hosts"));
    EXPECT_EQ(FromNameServer("kovo-host-01.lab.example").rfind("10.20.30.77 ", 0), 0u);

    // Static again at a new address behind a new gateway, as a dialog applies it.
    ASSERT_EQ(
        Net({"ipv4", "static", "10.20.30.50", "255.255.255.0", "10.20.30.254", "gateway", "10.20.30.254"})
            .status,
        0);
    EXPECT_TRUE(WaitFor([] { return !Answers("10.20.30.77") && !Answers("10.20.30.1"); }));
    EXPECT_TRUE(Answers("10.20.30.50"));
    EXPECT_TRUE(Answers("10.20.30.254"));
    const auto resolved = Inside({"getent", "hosts", "kovo-host-01.lab.example"});
    EXPECT_EQ(resolved.out.rfind("10.20.30.50 ", 0), 0u) << resolved.out;

    // New names and name servers: the name server moves at once, the resolver files wait for a save.
    ASSERT_EQ(Net({"fqdn", "kovo-new.corp.example", "nameservers", "10.20.30.9,10.20.30.10", "search",
                   "corp.example lab.example"})
                  .status,
              0);
    EXPECT_TRUE(WaitFor([] { return Answers("10.20.30.9") && !Answers("10.20.30.2"); }));
    EXPECT_EQ(ReadFile(Upper("/etc/resolv.conf")), bootResolver);
    EXPECT_EQ(ReadFile(Upper("/etc/hostname")), "kovo-host-01\n");
    EXPECT_EQ(Inside({"hostname"}).out, "kovo-host-01\n");

    ASSERT_EQ(Net({"save"}).status, 0);
    const std::string savedResolver =
        "search corp.example lab.example\nnameserver 10.20.30.9\nnameserver 10.20.30.10\n"
        "options timeout:1 attempts:1\n";
    EXPECT_TRUE(WaitFor([&] { return ReadFile(Upper("/etc/resolv.conf")) == savedResolver; }))
        << ReadFile(Upper("/etc/resolv.conf"));
    EXPECT_EQ(ReadFile(Upper("/etc/hostname")), "kovo-new\n");
    EXPECT_NE(ReadFile(Upper("/etc/hosts")).find("10.20.30.50\tkovo-new.corp.example\tkovo-new\n"),
              std::string::npos)
        << ReadFile(Upper("/etc/hosts"));
    EXPECT_EQ(Inside({"hostname"}).out, "kovo-new\n");
    // Through the saved resolver, to the name server on its new address, which answers the new name.
    EXPECT_EQ(FromNameServer("kovo-new.corp.example").rfind("10.20.30.50 ", 0), 0u);
    EXPECT_EQ(Inside({"/bin/zenkping", "-c", "1", "kovo-new"}).status, 0);

    const std::string syslog = Syslog();
    EXPECT_NE(syslog.find("kovo-sim-net["), std::string::npos) << syslog;
    EXPECT_NE(syslog.find("following the store: "), std::string::npos) << syslog;
}

// A silent name server answers pings and holds its DNS port without a word: a lookup waits out its
// timeout there and gets its answer from the next name server. Let go, the port is the name server's again.
TEST_F(FollowingHostTest, ASilentNameServerHoldsItsPortAndLookupsGoOnToTheNextServer) {
    const auto held = [](const std::string& by) {
        const auto sockets = Inside({"ss", "-Hlnptu", "src", "10.20.30.9:53"}).out;
        std::size_t count = 0;
        for (auto at = sockets.find(by); at != std::string::npos; at = sockets.find(by, at + 1)) ++count;
        return count == 2;  // UDP and TCP
    };
    const std::string servers = RunProgram({kSim, "get", Host(), "/network/dns/nameServers"}).out;
    const std::string resolver = ReadFile(Upper("/etc/resolv.conf"));
    ASSERT_EQ(RunProgram({kSim, "set", Host(), "/simulation/silentNameServers", R"(["10.20.30.9"])"}).status,
              0);
    ASSERT_EQ(Net({"nameservers", "10.20.30.9,10.20.30.2"}).status, 0);
    ASSERT_EQ(Net({"save"}).status, 0);
    EXPECT_TRUE(WaitFor([&] {
        return ReadFile(Upper("/etc/resolv.conf")).find("nameserver 10.20.30.9\nnameserver 10.20.30.2\n") !=
                   std::string::npos &&
               held("\"kovo-sim-net\"");
    })) << Inside({"ss", "-Hlnptu"}).out;
    EXPECT_TRUE(Answers("10.20.30.9"));

    const auto get = [](const std::string& pointer) {
        return json::parse(RunProgram({kSim, "get", Host(), pointer}).out).get<std::string>();
    };
    const std::string fqdn = get("/network/dns/hostname") + "." + get("/network/dns/domain");
    const std::string address = get("/network/zenkNics/0/running/ipv4/address");
    EXPECT_EQ(FromNameServer(fqdn).rfind(address + " ", 0), 0u) << fqdn;

    ASSERT_EQ(RunProgram({kSim, "set", Host(), "/simulation/silentNameServers", "[]"}).status, 0);
    EXPECT_TRUE(WaitFor([&] { return held("\"dnsmasq\""); })) << Inside({"ss", "-Hlnptu"}).out;

    // The name servers and resolver as the other tests found them.
    ASSERT_EQ(RunProgram({kSim, "set", Host(), "/network/dns/nameServers", servers}).status, 0);
    ASSERT_EQ(Net({"save"}).status, 0);
    EXPECT_TRUE(WaitFor([&] { return ReadFile(Upper("/etc/resolv.conf")) == resolver; }));
}

TEST_F(FollowingHostTest, TheScenariosFaultsAreInTheStoreAndFailThePlatform) {
    EXPECT_EQ(json::parse(RunProgram({kSim, "get", Host(), "/simulation/faults"}).out), kFaults);
    EXPECT_EQ(RunProgram({kSim, "get", Host(), "/simulation/names"}).status, 1)
        << "names stay the scenario's";
    const auto failed = Net({"switch-of", "Management Network"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.out, "failed: switch table lost\n");

    ASSERT_EQ(RunProgram({kSim, "set", Host(), "/simulation/faults", "{}"}).status, 0);
    const auto worked = Net({"switch-of", "Management Network"});
    EXPECT_EQ(worked.status, 0) << worked.out;
    EXPECT_EQ(worked.out, "xSwitch0\n");
}

TEST_F(FollowingHostTest, TheCommandLogTellsThePathsOfOneProgramApart) {
    const auto ran = Shell(
        "/sbin/powerOffVms; /bin/powerOffVms --terminate; cd /sbin && ./powerOffVms; "
        "env PATH=/usr/sbin powerOffVms; sh /sbin/backup.sh; sh /etc/init.d/SSH status; true");
    ASSERT_EQ(ran.status, 0) << ran.err;
    std::vector<std::string> powerOff;
    std::string backup, ssh;
    std::istringstream log(ReadFile(Upper("/var/log/kovo-sim/commands.log")));
    for (std::string line; std::getline(log, line);) {
        const json record = json::parse(line);
        if (record["program"] == "powerOffVms") powerOff.push_back(record["path"]);
        if (record["program"] == "backup.sh") backup = record["path"];
        if (record["program"] == "SSH") ssh = record["path"];
    }
    EXPECT_EQ(powerOff, (std::vector<std::string>{"/sbin/powerOffVms", "/bin/powerOffVms",
                                                  "/sbin/powerOffVms", "/usr/sbin/powerOffVms"}));
    EXPECT_EQ(backup, "/sbin/backup.sh");
    EXPECT_EQ(ssh, "/etc/init.d/SSH");
}

// Bad input never stops the host following its store: a store it cannot read is said once, and the next
// whole one is followed.
TEST_F(FollowingHostTest, AStoreItCannotReadIsReportedAndTheNextWholeOneFollowed) {
    ASSERT_EQ(
        Shell("cp /etc/halvor/host.json /etc/halvor/good.json && printf garbage > /etc/halvor/bad.json && "
              "mv /etc/halvor/bad.json /etc/halvor/host.json")
            .status,
        0);
    EXPECT_TRUE(WaitFor([] { return Syslog().find("cannot follow the store: ") != std::string::npos; }))
        << Syslog();
    ASSERT_EQ(Shell("mv /etc/halvor/good.json /etc/halvor/host.json").status, 0);
    ASSERT_EQ(
        RunProgram({kSim, "set", Host(), "/network/routing/ipv4DefaultGateway", R"("10.20.30.199")"}).status,
        0);
    EXPECT_TRUE(WaitFor([] { return Answers("10.20.30.199"); }));
}

}  // namespace
