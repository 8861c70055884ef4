#include <fstream>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "TempDir.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/HostsTable.h"
#include "platform/hostctl/Portset.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/DVPortImpl.h"
#include "platform/zenkctl/DnsConfigImpl.h"
#include "platform/zenkctl/NetworkInfoImpl.h"
#include "platform/zenkctl/PortsetImpl.h"
#include "platform/zenkctl/RoutingInfoImpl.h"
#include "platform/zenkctl/VirtualSwitchInfoImpl.h"
#include "platform/zenkctl/ZenKernelNicInfoImpl.h"
#include "platform/zenkctl/ZenkNicImpl.h"
#include "platform/zenkctl/ZenkNicRuntime.h"

using namespace HostCtl::Network;
using namespace ZenkCtl::Network;
using HostCtl::Lib::HostCtlException;
using nlohmann::json;
using ZenkCtl::Store::HostStore;

namespace {

class NetworkTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::ifstream in(std::string(KOVO_FIXTURES) + "/host.json");
        store = std::make_shared<HostStore>(dir.File("host.json"));
        store->Replace(json::parse(in));
    }
    std::vector<std::string> RunningAddresses(ZenkNic& nic) {
        std::vector<std::string> out;
        for (const auto& n : nic.GetIpConfig().GetIpv6Network()) out.push_back(n.GetStringNetwork());
        return out;
    }
    TempDir dir;
    std::shared_ptr<HostStore> store;
};

}  // namespace

TEST_F(NetworkTest, ManagementInterfaceLookupAndStaticRunningState) {
    NetworkInfoImpl info(store);
    auto mgmt = info.GetManagementInterface();
    ASSERT_NE(mgmt, nullptr);
    EXPECT_EQ(mgmt->GetName(), "zk0");
    mgmt->Enable();  // works the running state out from the configuration
    IpConfig running = mgmt->GetIpConfig();
    EXPECT_EQ(running.GetIpv4Address().GetStringAddress(), "192.168.10.20");
    // Link-local from the MAC plus the router-advertised prefix; not the DHCPv6 one (DHCPv6 is off).
    EXPECT_EQ(RunningAddresses(*mgmt),
              (std::vector<std::string>{"fe80::250:56ff:fea1:1/64", "2001:db8:10::20/64"}));
    EXPECT_EQ(running.GetIpv6Network()[1].GetIpv6AddressType(), IPV6_ADDRESS_AUTOCONF);

    // Without a "management" mark, the interface on "Management Network" is found.
    store->Update([](json& d) {
        d["network"]["zenkNics"][0].erase("management");
        std::swap(d["network"]["zenkNics"][0], d["network"]["zenkNics"][1]);
    });
    info.UpdateManagementInterface();
    EXPECT_EQ(info.GetManagementInterfaceName(), "zk0");
    store->Update([](json& d) { d["network"]["zenkNics"] = json::array(); });
    info.UpdateManagementInterface();
    EXPECT_EQ(info.GetManagementInterface(), nullptr);
    EXPECT_FALSE(mgmt->IsValid());
    EXPECT_THROW(mgmt->GetIpConfig(), HostCtlException);
}

// Names reach the host's programs: one the kernel could never give an interface is refused on reading.
TEST_F(NetworkTest, AnInterfaceNameNoKernelWouldGiveIsRefused) {
    store->Update([](json& d) { d["network"]["zenkNics"][0]["name"] = "zk0;echo INJECTED;#"; });
    NetworkInfoImpl info(store);
    EXPECT_THROW(info.GetManagementInterfaceName(), HostCtlException);
    EXPECT_THROW(info.GetManagementInterface(), HostCtlException);
    EXPECT_THROW(ZenkNicImpl("zk0/../x", store), HostCtlException);
}

TEST_F(NetworkTest, DhcpTakesTheLeaseItsGatewayAndItsDnsAndDisableClearsAddresses) {
    ZenkNicImpl nic("zk0", store);
    IpConfig config = nic.GetConfiguredIpConfig();
    config.SetUseDhcp(true);
    config.SetDnsFromDhcp(true);
    config.SetUseIpv6Dhcp(true);
    nic.SetIpConfig(config);
    EXPECT_EQ(nic.GetIpConfig().GetIpv4Address().GetStringAddress(), "192.168.10.77");
    EXPECT_EQ(RoutingInfoImpl("defaultNetStack", store).GetZenKernelDefaultGateway().GetStringAddress(),
              "192.168.10.254");
    DnsConfigImpl dns("defaultNetStack", store);
    EXPECT_EQ(dns.GetNameServers(), (std::vector<std::string>{"192.168.10.53"}));
    EXPECT_EQ(dns.GetDomain(), "dhcp.example");
    EXPECT_EQ(RunningAddresses(nic).size(), 3u);  // link-local, RA and DHCPv6

    nic.Disable();
    EXPECT_FALSE(nic.IsEnabled());
    EXPECT_TRUE(nic.GetIpConfig().GetIpv4Address().IsUnspecified());
    EXPECT_TRUE(nic.GetIpConfig().GetIpv6Network().empty());
    nic.Commit();
    nic.Enable();
    EXPECT_EQ(nic.GetIpConfig().GetIpv4Address().GetStringAddress(), "192.168.10.77");

    // An interface on DHCP without a lease waits at 0.0.0.0.
    ZenkNicImpl noLease("zk1", store);
    noLease.Enable();
    EXPECT_TRUE(noLease.GetIpConfig().GetUseDhcp());
    EXPECT_TRUE(noLease.GetIpConfig().GetIpv4Address().IsUnspecified());
    EXPECT_NO_THROW(noLease.RenewIpv4Lease());
    EXPECT_THROW(noLease.RenewIpv6Lease(), HostCtlException);  // DHCPv6 is off there
}

TEST_F(NetworkTest, EnableRenewsTheLeasesOfTheFamiliesOnDhcpOnly) {
    ZenkNicImpl nic("zk0", store);
    nic.Disable();
    nic.Enable();  // static IPv4, no DHCPv6: nothing to renew
    EXPECT_EQ(store->Get("/network/zenkNics/0/leaseRenewals"), json());

    IpConfig config = nic.GetConfiguredIpConfig();
    config.SetUseDhcp(true);
    nic.SetIpConfig(config);
    nic.Disable();
    // The server hands out another address meanwhile: coming up takes the lease as it is now.
    store->Update([](json& d) { d["network"]["dhcpLeases"]["zk0"]["ipv4"]["address"] = "192.168.10.78"; });
    nic.Enable();
    EXPECT_EQ(store->Get("/network/zenkNics/0/leaseRenewals"), json({{"ipv4", 1}}));
    EXPECT_EQ(nic.GetIpConfig().GetIpv4Address().GetStringAddress(), "192.168.10.78");

    config.SetUseIpv6Dhcp(true);
    nic.SetIpConfig(config);
    nic.Disable();
    nic.Enable();
    EXPECT_EQ(store->Get("/network/zenkNics/0/leaseRenewals"), json({{"ipv4", 2}, {"ipv6", 1}}));
}

TEST_F(NetworkTest, ObjectsNoticeChangesMadeByOtherProcesses) {
    ZenkNicImpl nic("zk0", store);
    EXPECT_EQ(nic.GetMacAddress(), "00:50:56:a1:00:01");
    EXPECT_FALSE(nic.IsStale());
    // Another process (another store object) changes the interface.
    HostStore other(store->Path());
    other.Update([](json& d) { d["network"]["zenkNics"][0]["mac"] = "00:50:56:a1:00:02"; });
    EXPECT_TRUE(nic.IsStale());
    EXPECT_EQ(nic.GetMacAddress(), "00:50:56:a1:00:02");
    EXPECT_THROW(nic.SetMacAddress("00:50:56:a1:00"), HostCtlException);
}

TEST_F(NetworkTest, ConnectionPointsAndDistributedPorts) {
    ZenKernelNicInfoImpl all(store);
    auto nics = all.GetZenKernelNics();
    ASSERT_EQ(nics.size(), 2u);
    EXPECT_EQ(nics[0]->GetConnectionPoint().connecteeType, CONNECTEE_PORTGROUP);
    ConnectionPoint dv = nics[1]->GetConnectionPoint();
    EXPECT_EQ(dv.connecteeType, CONNECTEE_DVPORT);
    DVPortImpl port(dv.dvsName, dv.portKey, store);
    EXPECT_EQ(port.GetVlanId(), 5);
    port.SetVlanId(4094);
    EXPECT_EQ(port.GetVlanId(), 4094);
    EXPECT_THROW(port.SetVlanId(4095), HostCtlException);
    EXPECT_THROW(nics[0]->ConnectToPortGroup("No Such Group"), HostCtlException);
    nics[0]->ConnectToDvPort("xds0", "10");
    EXPECT_EQ(nics[0]->GetConnectionPoint().connecteeType, CONNECTEE_DVPORT);
}

TEST_F(NetworkTest, SwitchesUplinksPortGroupsAndVlans) {
    VirtualSwitchInfoImpl switches(store);
    PortsetImpl portsets(store);
    switches.AddVirtualSwitch("xSwitch1", HostCtl::Network::Portset::DEF_NUM_PORTS);
    EXPECT_THROW(switches.AddVirtualSwitch("xSwitch1", 128), HostCtlException);
    EXPECT_THROW(switches.AddPortGroup("xSwitch1", "VM Network"), HostCtlException);  // names are host-wide

    // A NIC belongs to one switch at a time.
    EXPECT_EQ(switches.FindUplinkOwner("zennic1"), "xds0");
    EXPECT_THROW(switches.AddUplink("xSwitch1", "zennic1"), HostCtlException);
    switches.RemoveDvsUplink("xds0", "zennic1");
    switches.AddUplink("xSwitch1", "zennic1");
    EXPECT_EQ(switches.FindUplinkOwner("zennic1"), "xSwitch1");
    switches.SetTeamingPolicy(
        "xSwitch1", NicTeamingPolicy::WithUplinkAdded(switches.GetTeamingPolicy("xSwitch1"), "zennic1"));
    EXPECT_EQ(switches.GetTeamingPolicy("xSwitch1").GetUplinkOrder(), (std::vector<std::string>{"zennic1"}));
    EXPECT_EQ(switches.GetTeamingPolicy("xSwitch0").GetFlags(), 16u);
    switches.SetPortGroupVlan("Management Network", 4095);
    EXPECT_EQ(switches.GetPortGroupVlan("Management Network"), 4095);
    EXPECT_THROW(switches.RemoveVirtualSwitch("xSwitch0"), HostCtlException);  // zk0 sits on it
    switches.RemoveVirtualSwitch("xSwitch1");
    EXPECT_FALSE(portsets.IsValidVirtualSwitch("xSwitch1"));
}

// Setting, refusing and reading back in order are the platform contract's; here is what only this
// platform adds.
TEST_F(NetworkTest, DnsNamesServersAndSearchDomains) {
    DnsConfigImpl dns("defaultNetStack", store);
    EXPECT_THROW(DnsConfigImpl("otherStack", store), HostCtlException);
    dns.SetFqdn("host7.lab.example.org", false, "");
    EXPECT_EQ(dns.GetHostname(), "host7");
    EXPECT_EQ(dns.GetDomain(), "lab.example.org");
    dns.SetHostname("h2", false);
    EXPECT_EQ(dns.GetDomain(), "lab.example.org");
    EXPECT_THROW(dns.SetFqdn("h.", false, ""), HostCtlException);

    dns.RemoveNameServers();
    dns.AddNameServer(Ipv4Address("10.0.0.2"));
    dns.AddNameServer(Ipv6Address("2001:db8::53"));
    dns.AddNameServer(Ipv4Address("10.0.0.2"));  // no duplicates
    EXPECT_THROW(dns.AddNameServer(Ipv4Address()), HostCtlException);
    EXPECT_EQ(dns.GetNameServers(), (std::vector<std::string>{"10.0.0.2"}));
    EXPECT_EQ(dns.GetIpv6NameServers(), (std::vector<std::string>{"2001:db8::53"}));
    EXPECT_EQ(dns.GetIpv6NameServers(true), (std::vector<std::string>{"2001:db8::53", "10.0.0.2"}));

    dns.SetSearchDomainsString(dns.GetDomain());
    dns.AddSearchDomain("a.example");
    EXPECT_EQ(dns.GetSearchDomains(), (std::vector<std::string>{"lab.example.org", "a.example"}));
    dns.SetSearchDomainsString("");
    EXPECT_TRUE(dns.GetSearchDomains().empty());
    EXPECT_THROW(dns.AddSearchDomain("under_score.example"), HostCtlException);
    dns.SaveConfig();
    EXPECT_EQ(store->Get("/network/dns/saved"), 1);
}

TEST_F(NetworkTest, AFactoryRestoreNeedsTheOldNetworkClearedFirst) {
    NetworkInfoImpl info(store);
    // What a factory restore rebuilds (the switch, its first NIC, the interface on DHCP, the net dumper
    // off) the end-to-end restore tests read back; only a restore that was not cleared first is here.
    EXPECT_THROW(info.AutoConfigNetwork(), HostCtlException);  // xSwitch0 still exists
    info.ClearNetworkConfig();
    EXPECT_EQ(info.GetManagementInterface(), nullptr);
    info.AutoConfigNetwork();
    EXPECT_NE(info.GetManagementInterface(), nullptr);
}

TEST(ZenkNicRuntimeTest, LinkLocalFromMac) {
    EXPECT_EQ(ZenkNicRuntime::LinkLocalFor("00:50:56:a1:00:01"), "fe80::250:56ff:fea1:1");
    EXPECT_EQ(ZenkNicRuntime::LinkLocalFor("02:00:00:00:00:00"), "fe80::ff:fe00:0");
    EXPECT_EQ(ZenkNicRuntime::LinkLocalFor("00:50:56:a1:00"), "");
    EXPECT_EQ(ZenkNicRuntime::LinkLocalFor("00-50-56-a1-00-01"), "");
    EXPECT_EQ(ZenkNicRuntime::LinkLocalFor("zz:50:56:a1:00:01"), "");
}

TEST(HostsFileTest, RemovesTheNameEverywhereAndKeepsTheRest) {
    bool found = false;
    const std::string text =
        "# static table\n127.0.0.1\tlocalhost\n192.168.10.20\th1.example.com h1\n10.0.0.9 H1.EXAMPLE.COM "
        "other # x\n";
    EXPECT_EQ(HostCtl::Network::HostsTable::RemoveName(text, "h1.example.com", found),
              "# static table\n127.0.0.1\tlocalhost\n192.168.10.20\th1\n10.0.0.9\tother # x\n");
    EXPECT_TRUE(found);
    // The address column is not a name.
    EXPECT_EQ(HostCtl::Network::HostsTable::RemoveName("127.0.0.1 localhost\n", "127.0.0.1", found),
              "127.0.0.1 localhost\n");
    // A name the file does not hold is the hosts-file backup's tests' business.
    TempDir dir;
    EXPECT_THROW(HostCtl::Network::HostsTable(dir.File("missing")).RemoveEntryByHostName("x"),
                 std::system_error);
}
