#include "network/ManagementSwitch.h"

#include <gtest/gtest.h>

#include "../support/Recording.h"

namespace Kovo {
namespace {

using namespace Testing;
using nlohmann::json;

// The switch side over each kind of connection the management interface can have: what each operation
// answers, the lines it logs, and that nothing but a standard switch is ever changed.
TEST(ManagementSwitchTest, EachConnectionKindAnswersOrFailsWithItsLine) {
    const struct {
        const char* scenario;
        json connection;
        const char* name;  // empty: the name cannot be read
        std::vector<std::string> uplinks;
        const char* reason;  // why uplinks cannot be changed; empty when they can
    } cases[] = {
        {"default",
         {{"type", "portGroup"}, {"portGroup", "Management Network"}},
         "xSwitch0",
         {"zennic0", "zennic1"},
         ""},
        {"dvs",
         {{"type", "dvPort"}, {"dvs", "xds0"}, {"port", "10"}},
         "xds0",
         {"zennic0", "zennic1"},
         "Unsupported xSwitch type"},
        {"dvs",
         {{"type", "dvPort"}, {"dvs", "gone"}, {"port", "10"}},
         "gone",
         {},
         "Unsupported xSwitch type"},
        {"default",
         {{"type", "opaque"}, {"networkId", "overlay-7"}},
         "",
         {},
         "Opaque network connectee type not supported"},
        {"default", {{"type", "tunnel"}}, "", {}, "Unsupported connectee type"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.connection.dump());
        json document = Scenario(c.scenario);
        document["network"]["zenkNics"][0]["connection"] = c.connection;
        ScratchStore store(Booted(document));
        RecordingHost host(store.Get(), true);
        auto nic = host.Network()->GetManagementInterface();
        ASSERT_TRUE(nic);
        ManagementSwitch managementSwitch(host, *nic);
        const std::string before = store.At("/network").dump();

        std::string name;
        EXPECT_EQ(managementSwitch.Name(name), *c.name != '\0');
        EXPECT_EQ(name, c.name);
        std::vector<std::string> uplinks;
        const bool known = managementSwitch.Uplinks(uplinks);
        EXPECT_EQ(known, !c.uplinks.empty());
        EXPECT_EQ(uplinks, c.uplinks);
        if (*c.name == '\0') {
            EXPECT_TRUE(host.Made(std::string("error: Getting switch name failed: ") + c.reason));
            int vlan = 0;
            EXPECT_FALSE(managementSwitch.Vlan(vlan));
            EXPECT_TRUE(host.Made(std::string("error: Getting VlanID failed: ") + c.reason));
            EXPECT_FALSE(managementSwitch.SetVlan(5));
            EXPECT_TRUE(host.Made(std::string("error: Setting VlanID failed: ") + c.reason));
        } else if (!known) {
            EXPECT_TRUE(host.Made(std::string("error: Getting uplinks failed: ") + c.reason));
        }
        if (*c.reason == '\0') continue;
        EXPECT_FALSE(managementSwitch.AddUplink("zennic3"));
        EXPECT_FALSE(managementSwitch.RemoveUplink("zennic0"));
        if (*c.name != '\0') {
            EXPECT_TRUE(host.Made(std::string("error: Adding uplink zennic3 failed: ") + c.reason));
            EXPECT_TRUE(host.Made(std::string("error: Removing uplink zennic0 failed: ") + c.reason));
        }
        EXPECT_TRUE(host.StartingWith("VirtualSwitchInfo.").empty());
        EXPECT_EQ(store.At("/network").dump(), before);
    }
}

}  // namespace
}  // namespace Kovo
