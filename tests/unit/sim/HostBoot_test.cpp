#include "launcher/HostBoot.h"

#include <gtest/gtest.h>

using KovoSim::HostBoot;
using nlohmann::json;

namespace {

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

}  // namespace
