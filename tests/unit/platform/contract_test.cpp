// The rules every platform keeps, whatever kind of host it serves: written once against the HostCtl
// interfaces and run against each platform over a host of the shape ContractHost describes. A new platform
// joins by adding a ContractHost to the instantiation at the end.
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "LinuxHostTree.h"
#include "TempDir.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/HostFactory.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/HalvorHostFactory.h"

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::IpConfig;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv6Address;

namespace {

// A host with a management interface, a host name and the integer option "/UserVars/KovoTimeOut" between
// 0 and 86400. For the network changes, the management interface is on a standard switch that has one
// uplink and carries `portGroup`, beside one physical NIC no switch holds.
struct ContractHost {
    std::string name;
    std::function<std::unique_ptr<HostCtl::HostFactory>(TempDir&)> make;
    std::string managementSwitch;
    std::string portGroup;
    std::string freePnic;
};

// The host keeps the tree's kernel; its files stay in `dir`.
std::unique_ptr<HostCtl::HostFactory> LinuxHostOf(TempDir& dir) {
    return LinuxHostTree(dir).Host();
}

std::unique_ptr<HostCtl::HostFactory> HalvorHost(TempDir& dir) {
    std::ifstream in(std::string(KOVO_FIXTURES) + "/host.json");
    auto store = std::make_shared<ZenkCtl::Store::HostStore>(dir.File("host.json"));
    store->Replace(nlohmann::json::parse(in));
    return std::make_unique<ZenkCtl::HalvorHostFactory>(store);
}

class PlatformContract : public ::testing::TestWithParam<ContractHost> {
  protected:
    void SetUp() override { host = GetParam().make(dir); }
    TempDir dir;
    std::unique_ptr<HostCtl::HostFactory> host;
};

// Management network changes: a platform joins once it makes them.
class NetworkChangeContract : public PlatformContract {};

TEST_P(PlatformContract, TheManagementInterfaceIsOneOfTheKernelInterfacesAndKeepsItsName) {
    auto network = host->GetNetworkInfo();
    const std::string name = network->GetManagementInterfaceName();
    ASSERT_FALSE(name.empty());
    auto nic = network->GetManagementInterface();
    ASSERT_NE(nic, nullptr);
    EXPECT_EQ(nic->GetName(), name);
    EXPECT_TRUE(nic->IsValid());
    bool listed = false;
    for (const auto& kernel : host->GetZenKernelNicInfo()->GetZenKernelNics())
        listed |= kernel->GetName() == name;
    EXPECT_TRUE(listed);
}

TEST_P(NetworkChangeContract, AnAddressSetIsReadBackAndABadOneIsRefusedWithoutAChange) {
    auto nic = host->GetNetworkInfo()->GetManagementInterface();
    ASSERT_NE(nic, nullptr);
    IpConfig config = nic->GetConfiguredIpConfig();
    config.SetUseDhcp(false);
    config.SetIpv4Address(Ipv4Address("10.20.30.40"));
    config.SetIpv4Netmask(Ipv4Address("255.255.0.0"));
    nic->SetIpConfig(config);
    // A second object sees the change at once: nothing is cached across objects.
    auto again = host->GetNetworkInfo()->GetManagementInterface();
    EXPECT_EQ(again->GetConfiguredIpConfig().GetIpv4Address().GetStringAddress(), "10.20.30.40");
    EXPECT_EQ(again->GetConfiguredIpConfig().GetIpv4Netmask().GetStringAddress(), "255.255.0.0");

    IpConfig bad = config;
    bad.SetIpv4Netmask(Ipv4Address("255.0.255.0"));
    EXPECT_THROW(nic->SetIpConfig(bad), HostCtlException);
    EXPECT_EQ(again->GetConfiguredIpConfig().GetIpv4Netmask().GetStringAddress(), "255.255.0.0");
}

TEST_P(NetworkChangeContract, TheMacAddressFollowsTheNicItIsTakenFrom) {
    auto nic = host->GetNetworkInfo()->GetManagementInterface();
    const auto pnic = host->GetPnic(GetParam().freePnic);
    nic->SetMacAddressFromPnic(*pnic);
    EXPECT_EQ(nic->GetMacAddress(), pnic->GetMacAddress());
    EXPECT_THROW(host->GetPnic("no-such-nic"), HostCtlException);
}

TEST_P(NetworkChangeContract, NamesServersAndSearchDomainsReadBackInOrder) {
    auto dns = host->GetDnsConfig();
    dns->SetHostname("contract-1", false);
    dns->SetDomain("lab.example");
    EXPECT_EQ(dns->GetHostname(), "contract-1");
    EXPECT_EQ(dns->GetDomain(), "lab.example");
    EXPECT_THROW(dns->SetHostname("-bad-", false), HostCtlException);
    EXPECT_EQ(host->GetDnsConfig()->GetHostname(), "contract-1");

    dns->RemoveNameServers();
    EXPECT_TRUE(dns->GetNameServers().empty());
    dns->AddNameServer(Ipv4Address("10.0.0.9"));
    dns->AddNameServer(Ipv4Address("10.0.0.8"));
    dns->SetSearchDomainsString("b.example, a.example");
    dns->SaveConfig();
    auto fresh = host->GetDnsConfig();
    EXPECT_EQ(fresh->GetNameServers(), (std::vector<std::string>{"10.0.0.9", "10.0.0.8"}));
    EXPECT_EQ(fresh->GetSearchDomains(), (std::vector<std::string>{"b.example", "a.example"}));
    EXPECT_THROW(dns->SetSearchDomainsString("ok.example bad..example"), HostCtlException);
    EXPECT_EQ(fresh->GetSearchDomains(), (std::vector<std::string>{"b.example", "a.example"}));
}

TEST_P(NetworkChangeContract, GatewaysReadBackAndNoneIsTheUnspecifiedAddress) {
    auto routing = host->GetRoutingInfo();
    routing->SetZenKernelDefaultGateway(Ipv4Address("10.1.1.1"), false);
    EXPECT_EQ(host->GetRoutingInfo()->GetZenKernelDefaultGateway().GetStringAddress(), "10.1.1.1");
    EXPECT_TRUE(routing->GetIpv6ZenKernelDefaultGateway().IsUnspecified());
    routing->SetIpv6ZenKernelDefaultGateway(Ipv6Address("fe80::1%zk0"));
    EXPECT_EQ(routing->GetIpv6ZenKernelDefaultGateway().GetScopedStringAddress(), "fe80::1%zk0");
}

TEST_P(NetworkChangeContract, AnUplinkJoinsAndLeavesItsSwitchAndAFreeNicHasNoOwner) {
    const ContractHost& shape = GetParam();
    auto switches = host->GetVirtualSwitchInfo();
    EXPECT_EQ(switches->FindUplinkOwner(shape.freePnic), "");
    switches->AddUplink(shape.managementSwitch, shape.freePnic);
    EXPECT_EQ(host->GetVirtualSwitchInfo()->FindUplinkOwner(shape.freePnic), shape.managementSwitch);
    switches->RemoveUplink(shape.managementSwitch, shape.freePnic);
    EXPECT_EQ(switches->FindUplinkOwner(shape.freePnic), "");
    EXPECT_THROW(switches->AddUplink(shape.managementSwitch, "no-such-nic"), HostCtlException);
    EXPECT_THROW(switches->AddUplink("no-such-switch", shape.freePnic), HostCtlException);

    EXPECT_EQ(switches->GetPortGroupSwitch(shape.portGroup), shape.managementSwitch);
    switches->SetPortGroupVlan(shape.portGroup, 42);
    EXPECT_EQ(host->GetVirtualSwitchInfo()->GetPortGroupVlan(shape.portGroup), 42);
    // 4095 is a port group's "every VLAN"; nothing lies beyond it.
    EXPECT_THROW(switches->SetPortGroupVlan(shape.portGroup, 4096), HostCtlException);
    EXPECT_EQ(switches->GetPortGroupVlan(shape.portGroup), 42);

    EXPECT_TRUE(host->GetPortset()->IsValidVirtualSwitch(shape.managementSwitch));
    EXPECT_FALSE(host->GetPortset()->IsValidVirtualSwitch("no-such-switch"));
    EXPECT_TRUE(host->GetPortGroup()->IsValidPortGroup(shape.portGroup));
    EXPECT_FALSE(host->GetPortGroup()->IsValidPortGroup("no-such-group"));
}

TEST_P(PlatformContract, AnIntegerOptionKeepsItsRangeAndAnUnknownOneIsNull) {
    auto option = host->GetAdvancedOptions()->FindOption("/UserVars/KovoTimeOut");
    ASSERT_NE(option, nullptr);
    ASSERT_TRUE(option->IsInteger());
    option->SetIntValue(120);
    EXPECT_EQ(host->GetUserAdvancedOptions()->FindOption("KovoTimeOut")->GetIntValue(), 120);
    EXPECT_THROW(option->SetIntValue(86401), HostCtlException);
    EXPECT_THROW(option->SetIntValue(-1), HostCtlException);
    EXPECT_EQ(option->GetIntValue(), 120);
    EXPECT_EQ(host->GetAdvancedOptions()->FindOption("/UserVars/NoSuchOption"), nullptr);
}

// The welcome screen raises its alerts each time it is drawn, which a key held down does many times a
// second before anyone has logged in: an alert already raised is kept once.
TEST_P(PlatformContract, AnAlertRaisedAgainAndAgainIsKeptOnce) {
    auto system = host->GetSystemInfo();
    const std::vector<std::string> before = system->GetSystemAlerts();
    for (int i = 0; i < 50; ++i) system->SetSystemAlert("No compatible network adapter found.");
    system->SetSystemAlert("Agent core dump completed");
    std::vector<std::string> expected = before;
    expected.insert(expected.end(), {"No compatible network adapter found.", "Agent core dump completed"});
    EXPECT_EQ(system->GetSystemAlerts(), expected);
}

TEST_P(PlatformContract, TheIdentityNamesTheProductInTerminatedFields) {
    const auto record = host->GetSystemIdentity()->GetVersionRecord();
    EXPECT_NE(record.productName[0], '\0');
    EXPECT_EQ(record.productName[sizeof record.productName - 1], '\0');
    EXPECT_EQ(record.productVersion[sizeof record.productVersion - 1], '\0');
    const auto names = host->GetSystemIdentity()->GetProductNames();
    EXPECT_EQ(names.name, std::string(record.productName));
    EXPECT_FALSE(names.version.empty());
}

TEST_P(PlatformContract, EveryDocumentedProgramResolvesToOneItCanRun) {
    const std::vector<HostCtl::Program> documented{
        {"/bin/hcl-cmd", {"hcl-cmd", "-U", "root", "hclsvc/auth/lockdown_is_enabled"}},
        {"/bin/powerOffVms", {"powerOffVms"}},
        {"/sbin/powerOffVms", {"powerOffVms"}},
        {"/bin/less", {"less", "/var/log/syslog.log"}},
        {"/bin/openssl",
         {"openssl", "x509", "-in", "/etc/halvor/ssl/host.crt", "-noout", "-fingerprint", "-sha1"}},
        {"/sbin/backup.sh", {"backup.sh"}},
    };
    for (const auto& program : documented) {
        SCOPED_TRACE(program.path);
        const HostCtl::Program resolved = host->Programs().Resolve(program);
        // An absolute path: the runner looks nothing up on a PATH, and a relative one would run whatever
        // lies in the console's working directory.
        ASSERT_FALSE(resolved.path.empty());
        EXPECT_EQ(resolved.path.front(), '/');
        EXPECT_FALSE(resolved.argv.empty());
    }
}

const ContractHost kHalvor{"Halvor", HalvorHost, "xSwitch0", "VM Network", "zennic2"};
const ContractHost kLinux{"Linux", LinuxHostOf, "", "", "ens3"};

INSTANTIATE_TEST_SUITE_P(EveryPlatform, PlatformContract, ::testing::Values(kHalvor, kLinux),
                         [](const auto& info) { return info.param.name; });
INSTANTIATE_TEST_SUITE_P(Halvor, NetworkChangeContract, ::testing::Values(kHalvor),
                         [](const auto& info) { return info.param.name; });

}  // namespace
