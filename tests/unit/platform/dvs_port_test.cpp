// A distributed switch's ports as the host records them: their properties, their uplinks, and the
// host-local ports added beside them.
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "TempDir.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/DVPortImpl.h"
#include "platform/zenkctl/VirtualSwitchInfoImpl.h"

using namespace ZenkCtl::Network;
using HostCtl::Lib::HostCtlException;
using nlohmann::json;
using Names = std::vector<std::string>;

namespace {

// xds0 with the uplinks zennic1 and zennic2: port 10 records nothing beyond the old members, port
// "uplinkless" records that it uses none, port 12 names a NIC the switch no longer has.
class DvsPortTest : public ::testing::Test {
  protected:
    void SetUp() override {
        store = std::make_shared<ZenkCtl::Store::HostStore>(dir.File("host.json"));
        store->Replace(json::parse(R"({"network": {
            "pnics": [{"name": "zennic1"}, {"name": "zennic2"}],
            "dvs": [{"name": "xds0", "uplinks": ["zennic1", "zennic2"], "ports": [
                       {"key": "10", "portGroup": "dvpg-mgmt", "vlanId": 5},
                       {"key": "uplinkless", "name": "spare", "uplinks": []},
                       {"key": "12", "name": "hlp-zk0#3", "portGroup": "dvpg-mgmt", "vlanId": 7, "blocked": true,
                        "hostLocal": true, "uplinks": ["zennic4", "zennic2"]}]},
                    {"name": "other", "vendor": "Fabrikam Switching", "uplinks": [], "ports": []}]}})"));
    }
    json Ports() const { return store->Read()["network"]["dvs"][0]["ports"]; }

    TempDir dir;
    std::shared_ptr<ZenkCtl::Store::HostStore> store;
};

TEST_F(DvsPortTest, PortsReadTheirPropertiesAndOnlyTheUplinksTheSwitchStillHas) {
    const auto switches = VirtualSwitchInfoImpl(store).GetDvSwitches();
    ASSERT_EQ(switches.size(), 2u);
    EXPECT_EQ(switches[0].vendor, "Halvor");  // the platform's own when the store does not say
    EXPECT_TRUE(switches[0].IsOwnKind());
    EXPECT_FALSE(switches[1].IsOwnKind());
    EXPECT_EQ(switches[0].portNames, (Names{"", "spare", "hlp-zk0#3"}));

    const DvPortProperties plain = DVPortImpl("xds0", "10", store).GetProperties();
    EXPECT_EQ(plain.name, "");
    EXPECT_EQ(plain.portGroup, "dvpg-mgmt");
    EXPECT_EQ(plain.vlanId, 5);
    EXPECT_FALSE(plain.blocked);
    EXPECT_FALSE(plain.hostLocal);
    EXPECT_EQ(plain.uplinks, (Names{"zennic1", "zennic2"}));  // none recorded: the switch's
    EXPECT_EQ(DVPortImpl("xds0", "uplinkless", store).GetUplinks(), Names{});

    const DvPortProperties local = DVPortImpl("xds0", "12", store).GetProperties();
    EXPECT_TRUE(local.blocked);
    EXPECT_TRUE(local.hostLocal);
    EXPECT_EQ(local.uplinks, Names{"zennic2"});
    EXPECT_THROW(DVPortImpl("xds0", "99", store).GetProperties(), HostCtlException);
}

TEST_F(DvsPortTest, AHostLocalPortTakesTheNextKeyAndEveryPropertyGiven) {
    VirtualSwitchInfoImpl switches(store);
    const DvPortProperties properties{"hlp-zk0#4", "dvpg-mgmt", 4094, true, false, {"zennic2"}};
    EXPECT_EQ(switches.AddDvsHostLocalPort("xds0", properties), "13");
    EXPECT_EQ(Ports()[3], json::parse(R"({"key": "13", "name": "hlp-zk0#4", "portGroup": "dvpg-mgmt",
        "vlanId": 4094, "blocked": true, "hostLocal": true, "uplinks": ["zennic2"]})"));
    EXPECT_EQ(switches.AddDvsHostLocalPort("xds0", {"hlp-zk0#5", "", 0, false, false, {}}), "14");
    EXPECT_EQ(DVPortImpl("xds0", "14", store).GetUplinks(), Names{});

    const json before = store->Read();
    const std::vector<std::pair<std::string, DvPortProperties>> refused{
        {"xds0", {"hlp-zk0#4", "", 0, false, false, {}}},     // the name is taken
        {"xds0", {"", "", 0, false, false, {}}},              // no name
        {"xds0", {"hlp-zk0#6", "", 4095, false, false, {}}},  // all VLANs: not a port's
        {"xds0", {"hlp-zk0#6", "", -1, false, false, {}}},
        {"xds0", {"hlp-zk0#6", "", 0, false, false, {"zennic4"}}},  // not the switch's uplink
        {"xds0", {"hlp-zk0#6", "", 0, false, false, {"zennic1", "zennic1"}}},
        {"other", {"hlp-zk0#1", "", 0, false, false, {}}},  // another maker's switch
        {"gone", {"hlp-zk0#1", "", 0, false, false, {}}},
    };
    for (const auto& [dvs, port] : refused) {
        EXPECT_THROW(switches.AddDvsHostLocalPort(dvs, port), HostCtlException) << dvs << " " << port.name;
        EXPECT_EQ(store->Read(), before) << dvs << " " << port.name;
    }
}

}  // namespace
