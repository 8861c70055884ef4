#include "launcher/HostBoot.h"

#include <gtest/gtest.h>

#include "helpers/Subprocess.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/DVPortImpl.h"
#include "platform/zenkctl/VirtualSwitchInfoImpl.h"

using HostCtl::Lib::HostCtlException;
using KovoSim::HostBoot;
using KovoSim::Test::TempDir;
using nlohmann::json;

namespace {

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
    // Nothing to keep: no simulation member at all.
    EXPECT_EQ(HostBoot::StoreOf({{"users", json::array()}, {"simulation", {{"names", json::object()}}}}),
              json({{"users", json::array()}}));
    EXPECT_EQ(HostBoot::StoreOf({{"users", json::array()}, {"simulation", {{"faults", "not a table"}}}}),
              json({{"users", json::array()}}));
}

// The platform finds a scenario's faults where the store keeps them, for reads as well as changes.
TEST(HostBootTest, AScenariosFaultsMakeThePlatformFail) {
    json scenario = json::parse(R"({
      "network": {
        "switches": [{"name": "xSwitch0", "portGroups": [{"name": "Management Network", "vlanId": 0}]}],
        "dvs": [{"name": "dvSwitch0", "uplinks": [], "ports": [{"key": "10", "portGroup": "dvpg", "vlanId": 12}]}]
      }
    })");
    TempDir dir;
    auto store = std::make_shared<ZenkCtl::Store::HostStore>(dir / "host.json");
    store->Replace(HostBoot::StoreOf(scenario));
    ZenkCtl::Network::VirtualSwitchInfoImpl switches(store);
    ZenkCtl::Network::DVPortImpl port("dvSwitch0", "10", store);
    EXPECT_EQ(switches.GetPortGroupSwitch("Management Network"), "xSwitch0");
    EXPECT_EQ(port.GetVlanId(), 12);

    scenario["simulation"]["faults"] = {{"VirtualSwitchInfo.GetPortGroupSwitch", "switch table lost"},
                                        {"DVPort.GetVlanId", "port unreachable"}};
    store->Replace(HostBoot::StoreOf(scenario));
    try {
        switches.GetPortGroupSwitch("Management Network");
        ADD_FAILURE() << "GetPortGroupSwitch did not fail";
    } catch (const HostCtlException& e) {
        EXPECT_STREQ(e.what(), "switch table lost");
    }
    try {
        port.GetVlanId();
        ADD_FAILURE() << "GetVlanId did not fail";
    } catch (const HostCtlException& e) {
        EXPECT_STREQ(e.what(), "port unreachable");
    }
}

}  // namespace
