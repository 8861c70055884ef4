#include "launcher/HostBoot.h"

#include <gtest/gtest.h>

using KovoSim::HostBoot;
using nlohmann::json;

namespace {

TEST(HostBootTest, AnsweringAddressesAreTheGatewaysNameServersManagementAndExtras) {
    const json scenario = json::parse(R"({
      "network": {
        "routing": {"ipv4DefaultGateway": "10.0.0.1", "ipv6DefaultGateway": "::"},
        "dns": {"nameServers": ["10.0.0.2", "10.0.0.1", "0.0.0.0", "bogus"], "ipv6NameServers": ["2001:db8::53"]},
        "zenkNics": [{"name": "zk1", "ipConfig": {"ipv4": {"address": "10.0.0.99"}}},
                     {"name": "zk0", "management": true, "ipConfig": {"ipv4": {"address": "10.0.0.41"}}}]
      },
      "simulation": {"answering": ["10.0.0.5", ""]}
    })");
    EXPECT_EQ(HostBoot::AnsweringAddresses(HostBoot::StoreOf(scenario), scenario),
              (std::vector<std::string>{"10.0.0.1", "10.0.0.41", "10.0.0.2", "2001:db8::53", "10.0.0.5"}));
    // A host without a network answers nothing, and a sparse one does not fail.
    EXPECT_TRUE(HostBoot::AnsweringAddresses(json::object(), json::object()).empty());
    EXPECT_TRUE(HostBoot::AnsweringAddresses(json::parse(R"({"network": {"dns": {"nameServers": "x"}}})"),
                                             json::array())
                    .empty());
}

TEST(HostBootTest, DnsAnswersTheHostsNameAndTheScenariosNames) {
    const json scenario = json::parse(R"({
      "network": {"dns": {"hostname": "h1", "domain": "lab.example"},
                  "zenkNics": [{"management": true, "ipConfig": {"ipv4": {"address": "10.0.0.41"}}}]},
      "simulation": {"names": {"www.lab.example": "10.0.0.80", "multi.lab.example": ["10.0.0.81", "2001:db8::81"],
                               "bad.lab.example": "not-an-address"}}
    })");
    const auto names = HostBoot::DnsNames(HostBoot::StoreOf(scenario), scenario);
    const std::vector<std::pair<std::string, std::string>> expected = {{"h1.lab.example", "10.0.0.41"},
                                                                       {"multi.lab.example", "10.0.0.81"},
                                                                       {"multi.lab.example", "2001:db8::81"},
                                                                       {"www.lab.example", "10.0.0.80"}};
    EXPECT_EQ(names, expected);
    // No management address: the host's own name is not served.
    EXPECT_TRUE(HostBoot::DnsNames(json::parse(R"({"network": {"dns": {"hostname": "h1"}}})"), json::object())
                    .empty());
}

TEST(HostBootTest, TheStoreOfAScenarioLeavesOutTheSimulation) {
    const json scenario = {{"users", json::array()}, {"simulation", {{"names", json::object()}}}};
    EXPECT_EQ(HostBoot::StoreOf(scenario), json({{"users", json::array()}}));
}

}  // namespace
