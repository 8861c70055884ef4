// The scenarios under sim/scenarios: each is a whole host in the store's schema and shows what its name
// promises.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "helpers/Subprocess.h"
#include "host/SimulationSchema.h"
#include "launcher/HostBoot.h"
#include "launcher/HostNetwork.h"
#include "platform/store/HostStore.h"
#include "platform/store/StoreSchema.h"

using KovoSim::HostBoot;
using KovoSim::HostNetwork;
using KovoSim::Test::ReadFile;
using nlohmann::json;

namespace {

const std::vector<std::string> kNames = {"default",
                                         "no-nic",
                                         "dhcp-no-lease",
                                         "dhcp-server",
                                         "dvs",
                                         "smartcard",
                                         "audit-mode",
                                         "pxe-boot",
                                         "login-disabled",
                                         "ipv6-off",
                                         "crowded-switches",
                                         "dvs-no-uplinks",
                                         "dvs-host-local-ports",
                                         "dvs-third-party"};

json Load(const std::string& name) {
    return json::parse(ReadFile(std::string(KOVO_SIM_SCENARIOS) + "/" + name + ".json"));
}

const json& Management(const json& scenario) {
    for (const auto& nic : scenario["network"]["zenkNics"])
        if (nic.value("management", false)) return nic;
    static const json none;
    return none;
}

TEST(ScenariosTest, EveryScenarioIsAWholeHostTheStoreAccepts) {
    for (const auto& name : kNames) {
        SCOPED_TRACE(name);
        const json scenario = Load(name);
        EXPECT_EQ(KovoSim::Simulation::Check(scenario), std::vector<std::string>{});
        const json store = HostBoot::StoreOf(scenario);
        EXPECT_NO_THROW(ZenkCtl::Store::HostStore::Parse(store.dump(), name));
        for (const char* node :
             {"/system/version", "/system/bootOptions", "/system/keyboard/layouts", "/hardware",
              "/network/pnics", "/network/zenkNics", "/network/dns", "/users", "/services",
              "/advancedOptions/UserVars", "/vms", "/markers", "/boot/pending"})
            EXPECT_TRUE(store.contains(json::json_pointer(node))) << node;
        // The platform's own members, and of the simulation only what the store keeps for a running host.
        json platformPart = store;
        platformPart.erase("simulation");
        EXPECT_EQ(ZenkCtl::Store::Schema::Check(platformPart), std::vector<std::string>{});
        EXPECT_TRUE(store.at(json::json_pointer(KovoSim::Simulation::kFaults)).is_object());
        EXPECT_FALSE(store.contains(json::json_pointer(KovoSim::Simulation::kNames)));
        // Every account can log in with some password: a crypt(3) hash, not a placeholder.
        for (const auto& user : store["users"])
            EXPECT_EQ(user["passwordHash"].get<std::string>().rfind("$6$", 0), 0u);
    }
    // Nothing under sim/scenarios that is not one of them.
    size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(KOVO_SIM_SCENARIOS))
        files += entry.path().extension() == ".json";
    EXPECT_EQ(files, kNames.size());
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

TEST(ScenariosTest, DefaultIsAHealthyHost) {
    const json host = Load("default");
    const json& network = host["network"];
    EXPECT_GE(network["pnics"].size(), 2u);
    for (const auto& pnic : network["pnics"]) {
        EXPECT_FALSE(pnic["label"].get<std::string>().empty());
        EXPECT_EQ(pnic["mac"].get<std::string>().size(), 17u);
    }
    const json& management = Management(host);
    ASSERT_TRUE(management.is_object());
    EXPECT_EQ(management["connection"]["type"], "portGroup");
    const json& vswitch = network["switches"][0];
    EXPECT_FALSE(vswitch["uplinks"].empty());
    EXPECT_EQ(vswitch["portGroups"][0]["name"], management["connection"]["portGroup"]);
    EXPECT_EQ(management["ipConfig"]["ipv4"]["mode"], "static");
    EXPECT_EQ(network["routing"]["ipv4DefaultGateway"], management["ipConfig"]["ipv4"]["gateway"]);
    EXPECT_TRUE(network["ipv6Enabled"].get<bool>());
    EXPECT_TRUE(management["ipConfig"]["ipv6"]["routerAdvertised"].get<bool>());
    EXPECT_FALSE(network["dhcpLeases"]["zk0"]["ipv6"]["ra"].empty());
    EXPECT_EQ(network["dns"]["nameServers"].size(), 2u);
    EXPECT_FALSE(network["dns"]["domain"].get<std::string>().empty());
    EXPECT_TRUE(std::any_of(host["vms"].begin(), host["vms"].end(),
                            [](const json& vm) { return vm["powerState"] == "poweredOn"; }));
    EXPECT_TRUE(host["markers"]["showKovoLogin"].get<bool>());
    EXPECT_EQ(host["services"]["SSH"]["enabled"], false);
    EXPECT_EQ(host["services"]["QorShell"]["enabled"], false);
    EXPECT_EQ(host["services"]["lockdown"]["possible"], true);
    EXPECT_GT(host["system"]["keyboard"]["layouts"].size(), 1u);
    // Its gateway and name servers answer in the host's network, and its name resolves there.
    const auto answering = HostNetwork::AnsweringAddresses(HostBoot::StoreOf(host), host);
    for (const auto& address : {"10.20.30.1", "10.20.30.2", "10.20.30.3"})
        EXPECT_NE(std::find(answering.begin(), answering.end(), address), answering.end()) << address;
    EXPECT_EQ(HostNetwork::DnsNames(HostBoot::StoreOf(host), host).front(),
              (std::pair<std::string, std::string>{"kovo-host-01.lab.example", "10.20.30.41"}));
    // Its documented passwords, with their outcomes, are walked through the real PAM library by the
    // simulated host's tests.
}

TEST(ScenariosTest, EachHardCaseShowsWhatItsNameSays) {
    EXPECT_TRUE(Load("no-nic")["network"]["pnics"].empty());
    EXPECT_TRUE(HostNetwork::AnsweringAddresses(HostBoot::StoreOf(Load("no-nic")), Load("no-nic")).empty());

    const json dhcp = Load("dhcp-no-lease");
    EXPECT_EQ(Management(dhcp)["ipConfig"]["ipv4"]["mode"], "dhcp");
    EXPECT_TRUE(dhcp["network"]["dhcpLeases"]["zk0"].is_null());

    // Static as in default, but the network's DHCP server has a lease for zk0: that choosing DHCP runs it
    // is shown by the running host's tests.
    EXPECT_EQ(Management(Load("dhcp-server"))["ipConfig"], Management(Load("default"))["ipConfig"]);

    const json dvs = Load("dvs");
    const json& connection = Management(dvs)["connection"];
    EXPECT_EQ(connection["type"], "dvPort");
    bool portExists = false;
    for (const auto& vds : dvs["network"]["dvs"])
        if (vds["name"] == connection["dvs"])
            for (const auto& port : vds["ports"])
                portExists = portExists || port["key"] == connection["port"];
    EXPECT_TRUE(portExists);

    // The first names a new standard switch and its management port group would take are taken.
    const json crowded = Load("crowded-switches");
    EXPECT_EQ(Management(crowded)["connection"], connection);
    std::vector<std::string> switchNames, portGroups;
    for (const auto& vswitch : crowded["network"]["switches"]) {
        switchNames.push_back(vswitch["name"]);
        for (const auto& pg : vswitch["portGroups"]) portGroups.push_back(pg["name"]);
    }
    EXPECT_EQ(switchNames, (std::vector<std::string>{"xSwitch0", "xSwitch1"}));
    EXPECT_NE(std::find(portGroups.begin(), portGroups.end(), "Management Network1"), portGroups.end());
    ASSERT_EQ(crowded["network"]["zenkNics"].size(), 2u);
    EXPECT_EQ(crowded["network"]["zenkNics"][1]["enabled"], true);

    bool token = false;
    const json smartcard = Load("smartcard");
    for (const auto& slot : smartcard["hardware"]["smartCards"]["slots"])
        token = token || slot["token"].is_object();
    EXPECT_TRUE(token);

    EXPECT_EQ(Load("audit-mode")["system"]["bootOptions"]["auditMode"], true);
    EXPECT_TRUE(Load("pxe-boot")["advancedOptions"]["UserVars"].contains("PXEBootEnabled"));
    EXPECT_FALSE(Load("default")["advancedOptions"]["UserVars"].contains("PXEBootEnabled"));
    EXPECT_EQ(Load("login-disabled")["markers"]["showKovoLogin"], false);
    EXPECT_EQ(Load("ipv6-off")["network"]["ipv6Enabled"], false);
}

}  // namespace
