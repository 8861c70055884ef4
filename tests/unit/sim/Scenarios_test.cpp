// The scenarios under sim/scenarios: each is a whole host in the store's schema.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "helpers/Subprocess.h"
#include "host/SimulationSchema.h"
#include "launcher/HostBoot.h"
#include "platform/store/HostStore.h"
#include "platform/store/StoreSchema.h"

using KovoSim::HostBoot;
using KovoSim::Test::ReadFile;
using nlohmann::json;

namespace {

json Load(const std::string& name) {
    return json::parse(ReadFile(std::string(KOVO_SIM_SCENARIOS) + "/" + name + ".json"));
}

TEST(ScenariosTest, EveryScenarioIsAWholeHostTheStoreAccepts) {
    size_t scenarios = 0;
    for (const auto& entry : std::filesystem::directory_iterator(KOVO_SIM_SCENARIOS)) {
        if (entry.path().extension() != ".json") continue;
        ++scenarios;
        const std::string name = entry.path().stem();
        SCOPED_TRACE(name);
        const json scenario = Load(name);
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

}  // namespace
