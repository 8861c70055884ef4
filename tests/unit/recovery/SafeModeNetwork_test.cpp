// Safe-mode networking over the simulated host's scenarios: the names it picks, the store it leaves, the
// failures it steps over and the ones that end it. The dialog's keys are the e2e tests' (NetworkSafeMode).
#include "recovery/SafeModeNetwork.h"

#include <gtest/gtest.h>

#include "../support/Recording.h"
#include "platform/zenkctl/ZenkNicImpl.h"

namespace Kovo {
namespace {

using namespace Testing;
using nlohmann::json;

// A booted host of `document`, the management interface "zk0" as the menu hands it over, and the move.
struct Move {
    explicit Move(const json& document) : store(Booted(document)), before(Network()) {}
    bool Run() {
        // The management interface as the restore menu found it, before the host began to fail.
        const json faults = store.At("/simulation/faults");
        store.Get()->Update([](json& d) { d["simulation"]["faults"] = json::object(); });
        std::unique_ptr<HostCtl::Network::ZenkNic> nic = host.Network()->GetManagementInterface();
        // A host that has none by now: the interface the menu was handed, which the host no longer has.
        if (!nic) nic = std::make_unique<ZenkCtl::Network::ZenkNicImpl>("zk0", store.Get());
        store.Get()->Update([&](json& d) { d["simulation"]["faults"] = faults; });
        return SafeModeNetwork(host, *nic).Run();
    }
    json Network() const { return store.At("/network"); }
    json Switch(const std::string& name) const { return Named("/network/switches", name); }
    json Nic(const std::string& name) const { return Named("/network/zenkNics", name); }
    json Named(const std::string& list, const std::string& name) const {
        for (const auto& member : store.At(list))
            if (member["name"] == name) return member;
        return nullptr;
    }
    // The routine's log lines (the calls aside).
    Calls Logged() const {
        Calls lines;
        for (const auto& call : host.calls)
            if (call.rfind("log: ", 0) == 0 || call.rfind("error: ", 0) == 0) lines.push_back(call);
        return lines;
    }

    ScratchStore store;
    RecordingHost host{store.Get(), true};
    json before;
};

json PortGroupOn(const std::string& portGroup) {
    return {{"type", "portGroup"}, {"portGroup", portGroup}};
}

// A new switch as the move leaves it: one port group and the uplinks that reached it, teamed in order.
json NewSwitch(const std::string& name, const std::string& portGroup,
               const std::vector<std::string>& uplinks) {
    return {{"name", name},
            {"numPorts", 128},
            {"mtu", 1500},
            {"uplinks", uplinks},
            {"teaming",
             {{"flags", uplinks.empty() ? 0 : 16},
              {"uplinkOrder", uplinks},
              {"maxActiveUplinks", 0},
              {"loadBalancing", "loadbalance_srcid"}}},
            {"portGroups", {{{"name", portGroup}, {"vlanId", 0}}}}};
}

TEST(SafeModeNetworkTest, NamesAreTheFirstFreeOnesCountingFromZeroAndOne) {
    json gaps = Scenario("crowded-switches");
    // "xSwitch0" free again, and the plain "Management Network" and a later number taken.
    gaps["network"]["switches"][0]["name"] = "xSwitch7";
    gaps["network"]["switches"][1]["portGroups"] = {{{"name", "Management Network"}, {"vlanId", 0}},
                                                    {{"name", "Management Network2"}, {"vlanId", 0}},
                                                    {{"name", "Storage Network"}, {"vlanId", 40}}};
    const struct {
        const char* what;
        json document;
        const char* switchName;
        const char* portGroup;
    } cases[] = {
        {"crowded", Scenario("crowded-switches"), "xSwitch2", "Management Network2"},
        {"dvs", Scenario("dvs"), "xSwitch1", "Management Network1"},
        {"gaps", gaps, "xSwitch0", "Management Network1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Move move(c.document);
        EXPECT_TRUE(move.Run());
        EXPECT_EQ(move.Switch(c.switchName)["portGroups"],
                  json::array({{{"name", c.portGroup}, {"vlanId", 0}}}));
        EXPECT_EQ(move.Switch(c.switchName)["uplinks"], json::array({"zennic0", "zennic1"}));
        EXPECT_EQ(move.Nic("zk0")["connection"], PortGroupOn(c.portGroup));
        EXPECT_EQ(move.Network()["dvs"][0]["uplinks"], json::array());
        EXPECT_EQ(move.Logged(), Calls{});
    }
}

TEST(SafeModeNetworkTest,
     UplinksOfAStandardSwitchLeaveItAndItsTeamingButItKeepsItsPortGroupsAndNoneAreNeeded) {
    Move move(Scenario("default"));
    EXPECT_TRUE(move.Run());
    EXPECT_EQ(move.Switch("xSwitch1"), NewSwitch("xSwitch1", "Management Network1", {"zennic0", "zennic1"}));
    const json old = move.Switch("xSwitch0");
    EXPECT_EQ(old["uplinks"], json::array());
    EXPECT_EQ(old["teaming"]["uplinkOrder"], json::array());
    EXPECT_EQ(old["portGroups"], move.before["switches"][0]["portGroups"]);
    EXPECT_EQ(move.Nic("zk0")["connection"], PortGroupOn("Management Network1"));
    EXPECT_EQ(move.Nic("zk0")["enabled"], true);
    EXPECT_EQ(move.Logged(), Calls{});

    // A switch without uplinks still gets the management interface moved.
    json document = Scenario("dvs");
    document["network"]["dvs"][0]["uplinks"] = json::array();
    Move bare(document);
    EXPECT_TRUE(bare.Run());
    EXPECT_EQ(bare.Switch("xSwitch1"), NewSwitch("xSwitch1", "Management Network1", {}));
    EXPECT_EQ(bare.host.From("ZenkNic.ConnectToPortGroup"),
              (Calls{"ZenkNic.ConnectToPortGroup", "ZenkNic.Enable"}));
    EXPECT_EQ(bare.Nic("zk0")["enabled"], true);
    EXPECT_EQ(bare.Logged(), Calls{});
}

TEST(SafeModeNetworkTest, AFailedUplinkIsLoggedAndTheNextOneStillMoves) {
    json unknownNic = Scenario("crowded-switches");
    unknownNic["network"]["dvs"][0]["uplinks"] = {"zennic0", "zennic9", "zennic1"};
    json attachRefused = Scenario("crowded-switches");
    attachRefused["simulation"]["faults"]["VirtualSwitchInfo.AddUplink"] = "no free port";
    json teamingRefused = Scenario("crowded-switches");
    teamingRefused["simulation"]["faults"]["VirtualSwitchInfo.SetTeamingPolicy"] = "policy locked";
    const struct {
        const char* what;
        json document;
        Calls logged;
        std::vector<std::string> attached;
        std::vector<std::string> teamed;
    } cases[] = {
        {"unknown NIC",
         unknownNic,
         {"error: Moving uplink zennic9 failed: Physical NIC zennic9 does not exist"},
         {"zennic0", "zennic1"},
         {"zennic0", "zennic1"}},
        // Taken from the broken switch and refused by the new one: no roll-back puts them back.
        {"attach refused",
         attachRefused,
         {"error: Moving uplink zennic0 failed: no free port",
          "error: Moving uplink zennic1 failed: no free port"},
         {},
         {}},
        {"teaming refused",
         teamingRefused,
         {"error: VS: add uplink to teaming policy failed: policy locked",
          "error: VS: add uplink to teaming policy failed: policy locked"},
         {"zennic0", "zennic1"},
         {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Move move(c.document);
        EXPECT_FALSE(move.Run());
        EXPECT_EQ(move.Logged(), c.logged);
        const json created = move.Switch("xSwitch2");
        EXPECT_EQ(created["uplinks"], c.attached);
        EXPECT_EQ(created["teaming"]["uplinkOrder"], c.teamed);
        EXPECT_EQ(move.Network()["dvs"][0]["uplinks"], json::array());
        // The run went on to its end.
        EXPECT_EQ(move.Nic("zk0")["connection"], PortGroupOn("Management Network2"));
        EXPECT_EQ(move.Nic("zk0")["enabled"], true);
    }
}

TEST(SafeModeNetworkTest, AnyOtherFailureEndsTheRunAndLeavesWhatWasDone) {
    // `done`: the steps finished before the failure. 0 read nothing, 3 chose the names, 4 made the switch,
    // 6 its port group, 7 disabled the interfaces, 8 connected zk0 and moved the uplinks.
    const struct {
        const char* fault;
        int done;
    } cases[] = {
        {"NetworkInfo.UpdateManagementInterface", 0},
        {"VirtualSwitchInfo.GetDvSwitches", 0},
        {"VirtualSwitchInfo.AddVirtualSwitch", 3},
        {"VirtualSwitchInfo.AddPortGroup", 4},
        {"ZenkNic.Disable", 6},
        {"ZenkNic.ConnectToPortGroup", 7},
        {"ZenkNic.Enable", 8},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fault);
        json document = Scenario("crowded-switches");
        document["simulation"]["faults"][c.fault] = "host busy";
        Move move(document);
        EXPECT_FALSE(move.Run());
        EXPECT_EQ(move.Logged(), Calls{"error: Changing to legacy virtual switch failed: host busy"});
        const json created = move.Switch("xSwitch2");
        EXPECT_EQ(!created.is_null(), c.done >= 4);
        if (c.done >= 4) {
            EXPECT_EQ(created["portGroups"].size(), c.done >= 6 ? 1u : 0u);
        }
        EXPECT_EQ(move.Nic("zk1")["enabled"], c.done < 7);
        EXPECT_EQ(move.Nic("zk0")["enabled"], c.done < 7);
        EXPECT_EQ(move.Nic("zk0")["connection"], c.done >= 8 ? PortGroupOn("Management Network2")
                                                             : move.before["zenkNics"][0]["connection"]);
        EXPECT_EQ(move.Network()["dvs"][0]["uplinks"],
                  c.done >= 8 ? json::array() : move.before["dvs"][0]["uplinks"]);
    }
}

TEST(SafeModeNetworkTest, AHostWithoutManagementInterfaceIsLeftAlone) {
    json document = Scenario("dvs");
    document["network"]["zenkNics"] = json::array();
    Move move(document);
    EXPECT_FALSE(move.Run());
    EXPECT_EQ(move.Logged(), Calls{"error: Could not find the management network"});
    EXPECT_EQ(move.Network(), move.before);
}

}  // namespace
}  // namespace Kovo
