// The fault points: every one makes its operation fail with the injected text before anything changes,
// and only its own; the platform of a host whose store carries no faults is never wrapped; the
// simulated host's documentation lists exactly the table.
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "TempDir.h"
#include "platform/faults/FaultPoints.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/StoreFaults.h"

using HostCtl::Faults::FaultPoint;
using HostCtl::Faults::kFaultPoints;
using HostCtl::Lib::HostCtlException;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv6Address;
using nlohmann::json;

namespace {

class FaultPointsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::ifstream in(std::string(KOVO_FIXTURES) + "/host.json");
        json document = json::parse(in);
        document["simulation"]["faults"] = json::object();
        store = std::make_shared<ZenkCtl::Store::HostStore>(dir.File("host.json"));
        store->Replace(document);
        host = ZenkCtl::MakeHalvorPlatform(store);
    }
    void Inject(const json& faults) {
        store->Update([&](json& d) { d["simulation"]["faults"] = faults; });
    }
    TempDir dir;
    std::shared_ptr<ZenkCtl::Store::HostStore> store;
    std::unique_ptr<HostCtl::HostFactory> host;
};

TEST_F(FaultPointsTest, EachOperationFailsWithItsOwnTextBeforeItChangesAnything) {
    // Looked up before any fault is set: the lookup has a fault point of its own.
    std::unique_ptr<HostCtl::Network::ZenkNic> management;
    auto nic = [&] { return management.get(); };
    auto dns = [&] { return host->GetDnsConfig(); };
    auto routing = [&] { return host->GetRoutingInfo(); };
    auto switches = [&] { return host->GetVirtualSwitchInfo(); };
    auto port = [&] { return host->GetDvPort("xds0", "10"); };
    const auto pnic = host->GetPnic("zennic2");
    const std::map<FaultPoint, std::function<void()>> operations{
        {FaultPoint::NetworkInfoAutoConfigNetwork, [&] { host->GetNetworkInfo()->AutoConfigNetwork(); }},
        {FaultPoint::NetworkInfoClearNetworkConfig, [&] { host->GetNetworkInfo()->ClearNetworkConfig(); }},
        {FaultPoint::NetworkInfoDisableNetDumper, [&] { host->GetNetworkInfo()->DisableNetDumper(); }},
        {FaultPoint::NetworkInfoGetPnics, [&] { host->GetNetworkInfo()->GetPnics(); }},
        {FaultPoint::NetworkInfoSetZenkIpv6Enabled,
         [&] { host->GetNetworkInfo()->SetZenkIpv6Enabled(false); }},
        {FaultPoint::NetworkInfoUpdateManagementInterface,
         [&] { host->GetNetworkInfo()->UpdateManagementInterface(); }},
        {FaultPoint::ZenkNicCommit, [&] { nic()->Commit(); }},
        {FaultPoint::ZenkNicConnectToDvPort, [&] { nic()->ConnectToDvPort("xds0", "10"); }},
        {FaultPoint::ZenkNicConnectToPortGroup, [&] { nic()->ConnectToPortGroup("VM Network"); }},
        {FaultPoint::ZenkNicDisable, [&] { nic()->Disable(); }},
        {FaultPoint::ZenkNicEnable, [&] { nic()->Enable(); }},
        {FaultPoint::ZenkNicGetConnectionPoint, [&] { nic()->GetConnectionPoint(); }},
        {FaultPoint::ZenkNicGetIpConfig, [&] { nic()->GetIpConfig(); }},
        {FaultPoint::ZenkNicRenewIpv4Lease, [&] { nic()->RenewIpv4Lease(); }},
        {FaultPoint::ZenkNicRenewIpv6Lease, [&] { nic()->RenewIpv6Lease(); }},
        {FaultPoint::ZenkNicSetDhcpBound, [&] { nic()->SetDhcpBound(true); }},
        {FaultPoint::ZenkNicSetIpConfig,
         [&] {
             auto n = nic();
             n->SetIpConfig(n->GetConfiguredIpConfig());
         }},
        {FaultPoint::ZenkNicSetMacAddress, [&] { nic()->SetMacAddress("00:50:56:a1:00:07"); }},
        {FaultPoint::ZenkNicSetMacAddressFromPnic, [&] { nic()->SetMacAddressFromPnic(*pnic); }},
        {FaultPoint::DnsConfigAddNameServer, [&] { dns()->AddNameServer(Ipv4Address("192.0.2.53")); }},
        {FaultPoint::DnsConfigAddSearchDomain, [&] { dns()->AddSearchDomain("c.example"); }},
        {FaultPoint::DnsConfigRemoveNameServers, [&] { dns()->RemoveNameServers(); }},
        {FaultPoint::DnsConfigSaveConfig, [&] { dns()->SaveConfig(); }},
        {FaultPoint::DnsConfigSetDomain, [&] { dns()->SetDomain("example.org"); }},
        {FaultPoint::DnsConfigSetFqdn, [&] { dns()->SetFqdn("other.example.org", false, ""); }},
        {FaultPoint::DnsConfigSetHostname, [&] { dns()->SetHostname("other", false); }},
        {FaultPoint::DnsConfigSetSearchDomainsString, [&] { dns()->SetSearchDomainsString("a.example"); }},
        {FaultPoint::RoutingInfoGetZenKernelDefaultGateway, [&] { routing()->GetZenKernelDefaultGateway(); }},
        {FaultPoint::RoutingInfoSetIpv6ZenKernelDefaultGateway,
         [&] { routing()->SetIpv6ZenKernelDefaultGateway(Ipv6Address("2001:db8:10::2")); }},
        {FaultPoint::RoutingInfoSetZenKernelDefaultGateway,
         [&] { routing()->SetZenKernelDefaultGateway(Ipv4Address("192.168.10.2"), false); }},
        {FaultPoint::VirtualSwitchInfoAddDvsHostLocalPort,
         [&] {
             switches()->AddDvsHostLocalPort("xds0", {"hlp-zk0#9", "", 0, false, false, {}});
         }},
        {FaultPoint::VirtualSwitchInfoAddPortGroup,
         [&] { switches()->AddPortGroup("xSwitch0", "Extra", 3); }},
        {FaultPoint::VirtualSwitchInfoAddUplink, [&] { switches()->AddUplink("xSwitch0", "zennic2"); }},
        {FaultPoint::VirtualSwitchInfoAddVirtualSwitch,
         [&] { switches()->AddVirtualSwitch("xSwitch9", 64); }},
        {FaultPoint::VirtualSwitchInfoGetDvSwitches, [&] { switches()->GetDvSwitches(); }},
        {FaultPoint::VirtualSwitchInfoGetPortGroupSwitch,
         [&] { switches()->GetPortGroupSwitch("Management Network"); }},
        {FaultPoint::VirtualSwitchInfoGetPortGroupVlan,
         [&] { switches()->GetPortGroupVlan("Management Network"); }},
        {FaultPoint::VirtualSwitchInfoGetTeamingPolicy, [&] { switches()->GetTeamingPolicy("xSwitch0"); }},
        {FaultPoint::VirtualSwitchInfoGetVirtualSwitches, [&] { switches()->GetVirtualSwitches(); }},
        {FaultPoint::VirtualSwitchInfoRemoveDvsUplink,
         [&] { switches()->RemoveDvsUplink("xds0", "zennic1"); }},
        {FaultPoint::VirtualSwitchInfoRemoveUplink, [&] { switches()->RemoveUplink("xSwitch0", "zennic0"); }},
        {FaultPoint::VirtualSwitchInfoRemoveVirtualSwitch,
         [&] { switches()->RemoveVirtualSwitch("xSwitch0"); }},
        {FaultPoint::VirtualSwitchInfoSetPortGroupVlan,
         [&] { switches()->SetPortGroupVlan("Management Network", 12); }},
        {FaultPoint::VirtualSwitchInfoSetTeamingPolicy,
         [&] {
             HostCtl::Network::NicTeamingPolicy policy;
             policy.SetUplinkOrder({"zennic0"});
             switches()->SetTeamingPolicy("xSwitch0", policy);
         }},
        {FaultPoint::DVPortGetProperties, [&] { port()->GetProperties(); }},
        {FaultPoint::DVPortGetVlanId, [&] { port()->GetVlanId(); }},
        {FaultPoint::DVPortSetVlanId, [&] { port()->SetVlanId(7); }},
        {FaultPoint::SystemInfoLoadKeyboardMappings,
         [&] { host->GetSystemInfo()->LoadKeyboardMappings("German"); }},
        {FaultPoint::SystemInfoSetKeyboardLayout,
         [&] { host->GetSystemInfo()->SetKeyboardLayout("German"); }},
        {FaultPoint::ResourceInfoHasRunningVirtualMachines,
         [&] { host->GetResourceInfo()->HasRunningVirtualMachines(); }},
    };
    // A point added to the table without an operation here fails this test.
    ASSERT_EQ(operations.size(), HostCtl::Faults::kFaultPointCount);
    // What an operation does on its way, and so fails with too.
    const std::map<FaultPoint, FaultPoint> onTheWay{
        {FaultPoint::ZenkNicSetMacAddressFromPnic, FaultPoint::ZenkNicSetMacAddress}};

    for (const auto& [point, name] : kFaultPoints) {
        SCOPED_TRACE(name);
        const auto& operation = operations.at(point);
        Inject(json::object());
        management = host->GetNetworkInfo()->GetManagementInterface();
        Inject({{name, std::string("injected ") + name}});
        const json before = store->Read();
        try {
            operation();
            ADD_FAILURE() << name << " did not fail";
        } catch (const HostCtlException& e) {
            EXPECT_EQ(std::string(e.what()), std::string("injected ") + name);
        }
        EXPECT_EQ(store->Read(), before) << name << " changed the store before failing";
        // Every other point's fault at once: none of them is this operation's (it may still fail for a
        // reason of its own, as removing a switch that carries the management network does).
        json others = json::object();
        for (const auto& other : kFaultPoints) {
            const auto way = onTheWay.find(point);
            if (other.point != point && (way == onTheWay.end() || way->second != other.point))
                others[other.name] = "not this one";
        }
        Inject(others);
        try {
            operation();
        } catch (const HostCtlException& e) {
            EXPECT_NE(std::string(e.what()), "not this one");
        }
        store->Update([&](json& d) { d = before; });
    }
}

TEST_F(FaultPointsTest, AnOperationThatDoesAnotherOnTheWayFailsWithIt) {
    // The first lookup of the management interface looks it up, as an explicit update does.
    Inject({{"NetworkInfo.UpdateManagementInterface", "lookup refused"}});
    EXPECT_THROW(host->GetNetworkInfo()->GetManagementInterfaceName(), HostCtlException);
    EXPECT_THROW(host->GetNetworkInfo()->GetManagementInterface(), HostCtlException);
    auto looked = host->GetNetworkInfo();
    Inject(json::object());
    looked->UpdateManagementInterface();
    Inject({{"NetworkInfo.UpdateManagementInterface", "lookup refused"}});
    EXPECT_EQ(looked->GetManagementInterfaceName(), "zk0");  // looked up already: nothing more to ask
    // Taking a NIC's address sets the address.
    Inject({{"ZenkNic.SetMacAddress", "address refused"}});
    EXPECT_THROW(looked->GetManagementInterface()->SetMacAddressFromPnic(*host->GetPnic("zennic2")),
                 HostCtlException);
}

TEST_F(FaultPointsTest, AHostWhoseStoreCarriesNoFaultsIsNeverAskedAboutThem) {
    store->Update([](json& d) { d.erase("simulation"); });
    const auto real = ZenkCtl::MakeHalvorPlatform(store);
    // Faults that turn up later, as on a host that starts carrying them after the console started, are
    // not looked for: the choice was made once.
    Inject({{"DnsConfig.SetDomain", "injected"}});
    EXPECT_NO_THROW(real->GetDnsConfig()->SetDomain("example.org"));
    EXPECT_EQ(real->GetDnsConfig()->GetDomain(), "example.org");
    // The host chosen while the faults member was there keeps asking.
    EXPECT_THROW(host->GetDnsConfig()->SetDomain("example.net"), HostCtlException);
}

TEST(FaultPointsDocumentation, TheSimulatedHostListsEveryFaultPointAndNoOther) {
    std::ifstream in(std::string(KOVO_DOCS) + "/SIMULATED-HOST.md");
    std::stringstream text;
    text << in.rdbuf();
    const std::string doc = text.str();
    const auto from = doc.find("The operations that can fail so");
    const auto to = doc.find("The console has no switch for it", from);
    ASSERT_NE(from, std::string::npos);
    ASSERT_NE(to, std::string::npos);
    const std::string list = doc.substr(from, to - from);
    std::set<std::string> listed;
    const std::regex name("`([A-Za-z]+\\.[A-Za-z0-9]+)`");
    for (auto it = std::sregex_iterator(list.begin(), list.end(), name); it != std::sregex_iterator(); ++it)
        listed.insert((*it)[1]);
    std::set<std::string> table;
    for (const auto& point : kFaultPoints) table.insert(point.name);
    EXPECT_EQ(listed, table);
}

}  // namespace
