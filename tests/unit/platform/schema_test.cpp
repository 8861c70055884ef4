// The store's schema as one table: what a scenario or a value set from outside may hold.
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/store/StoreSchema.h"

using nlohmann::json;
using ZenkCtl::Store::Schema::Check;
using Faults = std::vector<std::string>;

namespace {

TEST(StoreSchemaTest, TheCompleteExampleHostFits) {
    std::ifstream in(std::string(KOVO_FIXTURES) + "/host.json");
    EXPECT_EQ(Check(json::parse(in)), Faults{});
}

TEST(StoreSchemaTest, MisspeltMembersAndWrongTypesAreNamedByTheirPointer) {
    EXPECT_EQ(Check(json::parse(R"({"network": {"dns": {"hostName": "lab", "hostname": "x"}}})")),
              Faults{"/network/dns/hostName: not a member the host knows"});
    EXPECT_EQ(Check(json::parse(R"({"netwrok": {}})")), Faults{"/netwrok: not a member the host knows"});
    EXPECT_EQ(Check(json::parse(R"({"network": {"ipv6Enabled": "yes"}})")),
              Faults{"/network/ipv6Enabled: is text, must be true or false"});
    EXPECT_EQ(Check(json::parse(R"({"hardware": {"cpu": {"packages": 2.5}}})")),
              Faults{"/hardware/cpu/packages: is a number, must be a whole number"});
    // Every fault is reported, not only the first.
    EXPECT_EQ(Check(json::parse(R"({"vms": [{"name": "a"}, {"nmae": "b", "powerState": 1}]})")),
              (Faults{"/vms/1/nmae: not a member the host knows",
                      "/vms/1/powerState: is a whole number, must be text"}));
}

TEST(StoreSchemaTest, ListItemsNamedMembersAndNestedConfigurationsAreCheckedToTheLeaves) {
    EXPECT_EQ(
        Check(json::parse(R"({"network": {"zenkNics": [{"name": "zk0", "ipConfig": {"ipv6": {
                 "networks": [{"address": "2001:db8::1", "prefixLength": "64"}]}}}]}})")),
        Faults{"/network/zenkNics/0/ipConfig/ipv6/networks/0/prefixLength: is text, must be a whole number"});
    // Leases are named by interface; any interface, but each lease has its shape.
    EXPECT_EQ(
        Check(json::parse(R"({"network": {"dhcpLeases": {"zk7": null, "zk8": {"ipv4": {"adress": "x"}}}}})")),
        Faults{"/network/dhcpLeases/zk8/ipv4/adress: not a member the host knows"});
    // What a simulated host adds to its store is its own, not the platform's.
    EXPECT_EQ(Check(json::parse(R"({"simulation": {"faults": {}}})")),
              Faults{"/simulation: not a member the host knows"});
    // Option trees and preferences are the host's own business below their root.
    EXPECT_EQ(Check(json::parse(R"({"advancedOptions": {"Net": {"Deep": {"Any": [1, {"x": null}]}}}})")),
              Faults{});
    EXPECT_EQ(Check(json::parse(R"({"system": {"preferences": {"anything": {"at": "all"}}}})")), Faults{});
}

TEST(StoreSchemaTest, AValueSetAtAPointerIsCheckedWhereItGoes) {
    EXPECT_EQ(Check(json("lab"), "/network/dns/hostname"), Faults{});
    EXPECT_EQ(Check(json(3), "/network/dns/hostname"),
              Faults{"/network/dns/hostname: is a whole number, must be text"});
    EXPECT_EQ(Check(json("lab"), "/network/dns/hostName"),
              Faults{"/network/dns/hostName: not a member the host knows"});
    EXPECT_EQ(
        Check(json::parse(R"({"address": "10.0.0.9", "dns": ["10.0.0.2"]})"), "/network/dhcpLeases/zk0/ipv4"),
        Faults{});
    EXPECT_EQ(Check(json(900), "/advancedOptions/UserVars/KovoTimeOut/value"), Faults{});
    EXPECT_EQ(Check(json(1), "/users/0/expired"),
              Faults{"/users/0/expired: is a whole number, must be true or false"});
    EXPECT_EQ(Check(json(1), "users"), Faults{"users: not a JSON pointer"});
}

}  // namespace
