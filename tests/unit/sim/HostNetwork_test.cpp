// The scenarios under sim/scenarios (each a whole host in the store's schema) and what a scenario leaves
// in the host's store; the host's network and name files as worked out from its store, and the steps from
// one store to the next that the running host takes.
#include "launcher/HostNetwork.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "helpers/Subprocess.h"
#include "host/SimulationSchema.h"
#include "launcher/HostBoot.h"
#include "launcher/HostFiles.h"
#include "launcher/NetworkFollower.h"
#include "platform/store/HostStore.h"
#include "platform/store/StoreSchema.h"

using KovoSim::HostBoot;
using KovoSim::HostFiles;
using KovoSim::HostNetwork;
using KovoSim::NetworkChanges;
using KovoSim::NetworkState;
using KovoSim::Test::ReadFile;
using nlohmann::json;

namespace {

using Strings = std::vector<std::string>;

TEST(ScenariosTest, EveryScenarioIsAWholeHostTheStoreAccepts) {
    size_t scenarios = 0;
    for (const auto& entry : std::filesystem::directory_iterator(KOVO_SIM_SCENARIOS)) {
        if (entry.path().extension() != ".json") continue;
        ++scenarios;
        const std::string name = entry.path().stem();
        SCOPED_TRACE(name);
        const json scenario = json::parse(ReadFile(entry.path()));
        EXPECT_EQ(KovoSim::Simulation::Check(scenario), std::vector<std::string>{});
        const json store = HostBoot::StoreOf(scenario);
        EXPECT_NO_THROW(ZenkCtl::Store::HostStore::Parse(store.dump(), name));
        // The platform's own members (what the store keeps of the simulation is the boot's tests' business).
        json platformPart = store;
        platformPart.erase("simulation");
        EXPECT_EQ(ZenkCtl::Store::Schema::Check(platformPart), std::vector<std::string>{});
        // Every account can log in with some password: a crypt(3) hash, not a placeholder.
        for (const auto& user : store["users"])
            EXPECT_EQ(user["passwordHash"].get<std::string>().rfind("$6$", 0), 0u);
    }
    EXPECT_GT(scenarios, 1u);
}

TEST(ScenariosTest, TheSimulationsMembersAreCheckedAsTheStoresAre) {
    using KovoSim::Simulation::Check;
    EXPECT_EQ(Check(json("text"), "/simulation/faults/Some~1Name"), std::vector<std::string>{});
    EXPECT_EQ(
        Check(json::parse(R"({"simulation": {"faults": {"DnsConfig.SaveConfig": 3}}})")),
        std::vector<std::string>{"/simulation/faults/DnsConfig.SaveConfig: is a whole number, must be text"});
    EXPECT_EQ(Check(json::parse(R"({"simulation": {"fautls": {}}})")),
              std::vector<std::string>{"/simulation/fautls: not a member the host knows"});
    // The platform's own members are checked as ever.
    EXPECT_EQ(Check(json(3), "/network/dns/hostname"),
              std::vector<std::string>{"/network/dns/hostname: is a whole number, must be text"});
}

// Whether the platform then fails where a kept fault says is the platform tests' business.
TEST(HostBootTest, TheStoreOfAScenarioKeepsOnlyItsFaultsAndSilentNameServersOfTheSimulation) {
    const json scenario = {{"users", json::array()},
                           {"simulation",
                            {{"names", {{"a.example", "10.0.0.1"}}},
                             {"answering", {"10.0.0.5"}},
                             {"silentNameServers", {"10.0.0.9"}},
                             {"faults", {{"DnsConfig.SaveConfig", "disk full"}}}}}};
    EXPECT_EQ(
        HostBoot::StoreOf(scenario),
        json({{"users", json::array()},
              {"simulation",
               {{"faults", {{"DnsConfig.SaveConfig", "disk full"}}}, {"silentNameServers", {"10.0.0.9"}}}}}));
    // Nothing to keep: the faults member alone, empty, which tells the console's platform that this host
    // can be made to fail once it runs.
    const json bare = {{"users", json::array()}, {"simulation", {{"faults", json::object()}}}};
    EXPECT_EQ(HostBoot::StoreOf({{"users", json::array()}, {"simulation", {{"names", json::object()}}}}),
              bare);
    EXPECT_EQ(HostBoot::StoreOf({{"users", json::array()}, {"simulation", {{"faults", "not a table"}}}}),
              bare);
    EXPECT_EQ(HostBoot::StoreOf({{"users", json::array()}}), bare);
}

TEST(HostNetworkTest, AnsweringAddressesAreTheGatewaysNameServersManagementAndExtras) {
    const json scenario = json::parse(R"({
      "network": {
        "routing": {"ipv4DefaultGateway": "10.0.0.1", "ipv6DefaultGateway": "::"},
        "dns": {"nameServers": ["10.0.0.2", "10.0.0.1", "0.0.0.0", "bogus"], "ipv6NameServers": ["2001:db8::53"]},
        "zenkNics": [{"name": "zk1", "ipConfig": {"ipv4": {"address": "10.0.0.99"}}},
                     {"name": "zk0", "management": true, "ipConfig": {"ipv4": {"address": "10.0.0.41"}}}]
      },
      "simulation": {"answering": ["10.0.0.5", ""]}
    })");
    const json store = HostBoot::StoreOf(scenario);
    EXPECT_EQ(HostNetwork::AnsweringAddresses(store, scenario),
              (Strings{"10.0.0.1", "10.0.0.41", "10.0.0.2", "2001:db8::53", "10.0.0.5"}));
    // The name server listens on the name servers only, not on the gateway that is one too twice.
    EXPECT_EQ(HostNetwork::NameServerAddresses(store, scenario),
              (Strings{"10.0.0.1", "10.0.0.2", "2001:db8::53"}));
    // A host without a network answers nothing, and a sparse or ill-typed one does not fail.
    EXPECT_TRUE(HostNetwork::AnsweringAddresses(json::object(), json::object()).empty());
    EXPECT_TRUE(HostNetwork::AnsweringAddresses(json::parse(R"({"network": {"dns": {"nameServers": "x"}}})"),
                                                json::array())
                    .empty());
    EXPECT_TRUE(HostNetwork::AnsweringAddresses(json::array(), json("text")).empty());
}

// A silent name server is up, but its DNS port is the follower's: the name server never listens there,
// not even when the store names it a name server. Bad texts reach the follower too, which says it skips them.
TEST(HostNetworkTest, ASilentNameServerAnswersButTheNameServerNeverListensThere) {
    const json store = json::parse(R"({
      "network": {"dns": {"nameServers": ["10.0.0.9", "10.0.0.2"]}},
      "simulation": {"silentNameServers": ["10.0.0.9", "10.0.0.7", "10.0.0.9", "bogus", "0.0.0.0"]}
    })");
    EXPECT_EQ(HostNetwork::AnsweringAddresses(store, json::object()),
              (Strings{"10.0.0.9", "10.0.0.2", "10.0.0.7"}));
    EXPECT_EQ(HostNetwork::NameServerAddresses(store, json::object()), Strings{"10.0.0.2"});

    const NetworkState silent = NetworkState::Of(store, json::object());
    const json plainStore = json::parse(R"({"network": {"dns": {"nameServers": ["10.0.0.9", "10.0.0.2"]}}})");
    const NetworkState plain = NetworkState::Of(plainStore, json::object());
    const auto hushed = NetworkChanges::Between(plain, silent, {});
    EXPECT_EQ(hushed.hold, (Strings{"10.0.0.9", "10.0.0.7", "bogus", "0.0.0.0"}));
    EXPECT_TRUE(hushed.release.empty());
    EXPECT_EQ(hushed.add, Strings{"10.0.0.7"});
    EXPECT_TRUE(hushed.restartNameServer);
    const auto spoken = NetworkChanges::Between(silent, plain, {});
    EXPECT_EQ(spoken.release, (Strings{"10.0.0.9", "10.0.0.7", "bogus", "0.0.0.0"}));
    EXPECT_EQ(spoken.remove, Strings{"10.0.0.7"});
    EXPECT_TRUE(spoken.restartNameServer);
    EXPECT_TRUE(NetworkChanges::Between(silent, silent, {}).Empty());
}

TEST(HostNetworkTest, TheManagementAddressIsTheOneTheInterfaceRuns) {
    const std::pair<const char*, const char*> cases[] = {
        // The running state wins over the configuration: a lease taken, or a change not yet worked out.
        {R"([{"management": true, "ipConfig": {"ipv4": {"mode": "dhcp"}},
              "running": {"ipv4": {"address": "10.20.30.77"}}}])",
         "10.20.30.77"},
        {R"([{"management": true, "ipConfig": {"ipv4": {"mode": "static", "address": "10.0.0.1"}},
              "running": {"ipv4": {"address": "0.0.0.0"}}}])",
         ""},
        // No running state yet: a static address is what will run, a DHCP interface has none.
        {R"([{"ipConfig": {"ipv4": {"mode": "static", "address": "10.0.0.1"}}}])", "10.0.0.1"},
        {R"([{"ipConfig": {"ipv4": {"mode": "dhcp", "address": "10.0.0.1"}}}])", ""},
        {R"([{"running": {"ipv4": {"address": "not-an-address"}}}])", ""},
        {R"(["not an interface"])", ""},
        {"{}", ""},
    };
    for (const auto& [nics, address] : cases)
        EXPECT_EQ(HostNetwork::ManagementIpv4(
                      json::parse(R"({"network": {"zenkNics": )" + std::string(nics) + "}}")),
                  address)
            << nics;
}

TEST(HostNetworkTest, DnsAnswersTheHostsNameAndTheScenariosNames) {
    const json scenario = json::parse(R"({
      "network": {"dns": {"hostname": "h1", "domain": "lab.example"},
                  "zenkNics": [{"management": true, "ipConfig": {"ipv4": {"address": "10.0.0.41"}}}]},
      "simulation": {"names": {"www.lab.example": "10.0.0.80", "multi.lab.example": ["10.0.0.81", "2001:db8::81"],
                               "bad.lab.example": "not-an-address"}}
    })");
    const auto names = HostNetwork::DnsNames(HostBoot::StoreOf(scenario), scenario);
    const std::vector<std::pair<std::string, std::string>> expected = {{"h1.lab.example", "10.0.0.41"},
                                                                       {"multi.lab.example", "10.0.0.81"},
                                                                       {"multi.lab.example", "2001:db8::81"},
                                                                       {"www.lab.example", "10.0.0.80"}};
    EXPECT_EQ(names, expected);
    // No management address: the host's own name is not served.
    EXPECT_TRUE(
        HostNetwork::DnsNames(json::parse(R"({"network": {"dns": {"hostname": "h1"}}})"), json::object())
            .empty());
}

// A named host's name files are what the end-to-end resolver tests read; a host without a name or an
// address still gets files a resolver accepts.
TEST(HostNetworkTest, AHostWithoutANameOrAnAddressGetsLocalhostOnly) {
    const json bare = json::parse(R"({"network": {"dns": {"ipv6NameServers": ["2001:db8::53"]}}})");
    EXPECT_EQ(HostFiles::Hostname(bare), "localhost\n");
    EXPECT_EQ(HostFiles::Hosts(bare), "127.0.0.1\tlocalhost\n::1\tlocalhost ip6-localhost ip6-loopback\n");
    EXPECT_EQ(HostFiles::ResolvConf(bare), "nameserver 2001:db8::53\noptions timeout:1 attempts:1\n");
}

json Host(const std::string& address, const std::string& gateway, const json& servers, int saved) {
    return {{"network",
             {{"routing", {{"ipv4DefaultGateway", gateway}}},
              {"dns",
               {{"hostname", "h1"}, {"domain", "lab.example"}, {"nameServers", servers}, {"saved", saved}}},
              {"zenkNics", {{{"management", true}, {"running", {{"ipv4", {{"address", address}}}}}}}}}}};
}

TEST(HostNetworkTest, TheRunningHostAddsWhatIsNewAndTakesAwayOnlyWhatItPutThere) {
    const json scenario = {{"simulation", {{"answering", {"10.0.0.5", "127.0.0.9"}}}}};
    const Strings kept = {"10.0.0.5", "127.0.0.9"};
    const NetworkState was = NetworkState::Of(Host("10.0.0.41", "10.0.0.1", {"10.0.0.2"}, 0), scenario);

    // Same store: nothing to do.
    EXPECT_TRUE(NetworkChanges::Between(was, was, kept).Empty());

    // A new management address: it answers, the old one goes, and the name server and /etc/hosts follow
    // the host's record; the name files wait for a save.
    const auto moved = NetworkChanges::Between(
        was, NetworkState::Of(Host("10.0.0.50", "10.0.0.1", {"10.0.0.2"}, 0), scenario), kept);
    EXPECT_EQ(moved.add, Strings{"10.0.0.50"});
    EXPECT_EQ(moved.remove, Strings{"10.0.0.41"});
    EXPECT_TRUE(moved.restartNameServer);
    EXPECT_TRUE(moved.writeHosts);
    EXPECT_FALSE(moved.writeNameFiles);

    // A new gateway changes only the addresses: the name server answers the same.
    const auto gateway = NetworkChanges::Between(
        was, NetworkState::Of(Host("10.0.0.41", "10.0.0.254", {"10.0.0.2"}, 0), scenario), kept);
    EXPECT_EQ(gateway.add, Strings{"10.0.0.254"});
    EXPECT_EQ(gateway.remove, Strings{"10.0.0.1"});
    EXPECT_FALSE(gateway.restartNameServer);
    EXPECT_FALSE(gateway.writeHosts);

    // New name servers move the name server; saving rewrites the name files, and only saving does.
    const auto servers = NetworkChanges::Between(
        was, NetworkState::Of(Host("10.0.0.41", "10.0.0.1", {"10.0.0.9"}, 0), scenario), kept);
    EXPECT_EQ(servers.add, Strings{"10.0.0.9"});
    EXPECT_EQ(servers.remove, Strings{"10.0.0.2"});
    EXPECT_TRUE(servers.restartNameServer);
    EXPECT_FALSE(servers.writeNameFiles);
    const auto saved = NetworkChanges::Between(
        was, NetworkState::Of(Host("10.0.0.41", "10.0.0.1", {"10.0.0.2"}, 1), scenario), kept);
    EXPECT_TRUE(saved.writeNameFiles);
    EXPECT_TRUE(saved.add.empty() && saved.remove.empty() && !saved.restartNameServer);

    // The scenario's own addresses and loopback stay, whatever the store says; loopback is never added.
    NetworkState odd = was;
    odd.addresses = {"10.0.0.5", "127.0.0.9", "::1", "10.0.0.6"};
    const auto back = NetworkChanges::Between(odd, NetworkState::Of(json::object(), json::object()), kept);
    EXPECT_EQ(back.remove, Strings{"10.0.0.6"});
    const auto loopback = NetworkChanges::Between(NetworkState{}, odd, kept);
    EXPECT_EQ(loopback.add, (Strings{"10.0.0.5", "10.0.0.6"}));
}

}  // namespace
