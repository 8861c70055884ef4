// The Linux platform over a prepared host tree: what it reads of the host's files and the kernel's
// addresses, and what it refuses to claim.
#include <linux/if_addr.h>
#include <sys/socket.h>

#include <gtest/gtest.h>

#include "LinuxHostTree.h"
#include "TempDir.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/linux/KernelNetwork.h"
#include "platform/linux/LinuxOptions.h"
#include "platform/linux/RunningAddresses.h"

using HostCtl::Lib::HostCtlException;
using LinuxHost::KernelRoute;
using namespace HostCtl::Network;

namespace {

class LinuxHostTest : public ::testing::Test {
  protected:
    TempDir dir;
    LinuxHostTree tree{dir};
};

TEST_F(LinuxHostTest, IdentityIsTheDistributionsPointReleaseAndTheRunningKernel) {
    const auto record = tree.Host()->GetSystemIdentity()->GetVersionRecord();
    EXPECT_STREQ(record.productName, "Debian GNU/Linux");
    EXPECT_STREQ(record.productVersion, "12.8");
    EXPECT_STREQ(record.kernelRelease, "6.1.0-28-amd64");
    EXPECT_STREQ(record.buildNumberString, "6.1.119-1");
    EXPECT_EQ(record.buildNumber, 0u);
    EXPECT_STREQ(record.productFullName, "Debian GNU/Linux 12 (bookworm)");
    EXPECT_EQ(tree.Host()->GetSystemIdentity()->GetProductNames().kernel, "Linux");

    // A testing release names no point release: os-release's version stays.
    tree.Write("/etc/debian_version", "trixie/sid\n");
    EXPECT_STREQ(tree.Host()->GetSystemIdentity()->GetVersionRecord().productVersion, "12");

    // A name longer than its field is cut and still terminated.
    tree.Write("/etc/os-release", "NAME=\"" + std::string(60, 'N') + "\"\nVERSION_ID=12\n");
    const auto cut = tree.Host()->GetSystemIdentity()->GetVersionRecord();
    EXPECT_EQ(std::string(cut.productName), std::string(sizeof cut.productName - 1, 'N'));
}

TEST_F(LinuxHostTest, AHostWithoutOsReleaseFailsItsVersionButStillNamesItself) {
    tree.Remove("/etc/os-release");
    auto identity = tree.Host()->GetSystemIdentity();
    EXPECT_THROW(identity->GetVersionRecord(), HostCtlException);
    EXPECT_EQ(identity->GetProductNames().name, "Linux");
    // No audit mode and no network boot on such a host.
    EXPECT_EQ(identity->GetBootOptions().auditMode, 0);
    EXPECT_EQ(identity->GetBootOptions().pxeBoot, 0);
}

TEST_F(LinuxHostTest, FirmwareNamesAreReadAndPlaceholdersAreNotShownAsValues) {
    auto hardware = tree.Host()->GetHardwareInfo();
    EXPECT_EQ(hardware->GetVendorName(), "QEMU");
    EXPECT_EQ(hardware->GetProductName(), "Standard PC (i440FX + PIIX, 1996)");
    EXPECT_EQ(hardware->GetSerialNumber(), "");  // "Not Specified"
    EXPECT_EQ(hardware->GetBiosInfo().version, "1.16.2-debian-1.16.2-1");
    EXPECT_THROW(hardware->GetBmcVersion(), HostCtlException);

    tree.Write("/sys/class/dmi/id/bios_release", "2.19\n");
    EXPECT_EQ(hardware->GetBiosInfo().majorRelease, 2);
    EXPECT_EQ(hardware->GetBiosInfo().minorRelease, 19);

    // A machine without firmware tables (some virtual machines) has no names rather than failing.
    tree.Remove("/sys/class/dmi");
    EXPECT_EQ(hardware->GetVendorName(), "");
    EXPECT_EQ(hardware->GetBiosInfo().majorRelease, 0);
}

TEST_F(LinuxHostTest, ProcessorsAreCountedByPackageCoreAndThread) {
    auto cpu = tree.Host()->GetCpuInfo();
    // Without topology lines every processor is a core of the one package.
    EXPECT_EQ(cpu->GetNumCpuPackages(), 1u);
    EXPECT_EQ(cpu->GetNumCpuCores(), 2u);
    EXPECT_EQ(cpu->GetNumCpuThreads(), 2u);
    EXPECT_EQ(cpu->GetModelName(), "QEMU Virtual CPU version 2.5+");

    // Two packages of two cores with two threads each.
    std::string text;
    for (int p = 0, n = 0; p < 2; ++p)
        for (int c = 0; c < 2; ++c)
            for (int t = 0; t < 2; ++t, ++n)
                text += "processor\t: " + std::to_string(n) +
                        "\nmodel name\t: Xeon\nphysical id\t: " + std::to_string(p) +
                        "\ncore id\t\t: " + std::to_string(c) + "\n\n";
    tree.Write("/proc/cpuinfo", text);
    EXPECT_EQ(cpu->GetNumCpuPackages(), 2u);
    EXPECT_EQ(cpu->GetNumCpuCores(), 4u);
    EXPECT_EQ(cpu->GetNumCpuThreads(), 8u);

    tree.Write("/proc/cpuinfo", "");
    EXPECT_THROW(cpu->GetNumCpuThreads(), HostCtlException);
}

TEST_F(LinuxHostTest, MemoryIsTheKernelsTotalInPages) {
    auto memory = tree.Host()->GetMemoryInfo();
    EXPECT_EQ(memory->GetTotalPages() * memory->GetPageSize(),
              1003456ull * 1024 / memory->GetPageSize() * memory->GetPageSize());
    tree.Write("/proc/meminfo", "MemFree: 1 kB\n");
    EXPECT_THROW(memory->GetTotalPages(), HostCtlException);
}

TEST_F(LinuxHostTest, AdaptersAreTheInterfacesWithADeviceBehindThem) {
    auto host = tree.Host();
    const auto pnics = host->GetNetworkInfo()->GetPnics();
    ASSERT_EQ(pnics.size(), 1u);
    EXPECT_EQ(pnics[0]->GetName(), "ens3");
    EXPECT_EQ(pnics[0]->GetMacAddress(), "52:54:00:12:34:56");
    EXPECT_TRUE(pnics[0]->IsLinkUp());
    EXPECT_EQ(pnics[0]->GetSpeedMbps(), 0);  // virtio reports -1: no speed to show
    EXPECT_EQ(pnics[0]->GetDriver(), "virtio_net");
    EXPECT_EQ(pnics[0]->GetLabel(), "virtio_net");  // no modalias: the driver names it
    EXPECT_EQ(host->GetPnic("ens3")->GetName(), "ens3");
    EXPECT_THROW(host->GetPnic("br0"), HostCtlException);
    EXPECT_THROW(host->GetPnic("lo"), HostCtlException);
}

TEST_F(LinuxHostTest, TheManagementInterfaceIsWhereTheDefaultRouteLeaves) {
    auto network = tree.Host()->GetNetworkInfo();
    EXPECT_EQ(network->GetManagementInterfaceName(), "br0");
    auto nic = network->GetManagementInterface();
    ASSERT_NE(nic, nullptr);
    EXPECT_TRUE(nic->IsEnabled());
    EXPECT_TRUE(nic->GetDhcpBound());
    const IpConfig config = nic->GetIpConfig();
    EXPECT_TRUE(config.GetUseDhcp());
    EXPECT_EQ(config.GetIpv4Address().GetStringAddress(), "192.168.77.50");
    EXPECT_EQ(config.GetIpv4Netmask().GetStringAddress(), "255.255.255.0");
    EXPECT_EQ(config.GetIpv4Gateway().GetStringAddress(), "192.168.77.1");
    EXPECT_EQ(tree.Host()->GetRoutingInfo()->GetZenKernelDefaultGateway().GetStringAddress(), "192.168.77.1");

    // Changes are refused, and the running state is untouched by the attempt.
    IpConfig change = config;
    change.SetUseDhcp(false);
    EXPECT_THROW(nic->SetIpConfig(change), HostCtlException);
    EXPECT_THROW(tree.Host()->GetDnsConfig()->SetHostname("other", false), HostCtlException);
    EXPECT_EQ(nic->GetIpConfig(), config);

    // Without any route or global address there is no management interface.
    tree.kernel->routes.clear();
    tree.kernel->addresses.resize(1);
    EXPECT_EQ(network->GetManagementInterfaceName(), "");
    EXPECT_EQ(network->GetManagementInterface(), nullptr);
}

TEST(RunningAddresses, TheChoiceFollowsTheLowestMetricThenIpv6ThenAGlobalAddress) {
    const std::vector<std::string> interfaces{"br0", "ens4", "virbr0"};
    const auto a = [](auto... args) { return LinuxHostTree::Address(args...); };
    EXPECT_EQ(LinuxHost::ChooseManagementInterface(
                  interfaces, interfaces, {},
                  {{"br0", AF_INET, "10.0.0.1", 600}, {"ens4", AF_INET, "10.1.0.1", 100}}),
              "ens4");
    EXPECT_EQ(LinuxHost::ChooseManagementInterface(interfaces, interfaces, {},
                                                   {{"ens4", AF_INET6, "fe80::1", 1024}}),
              "ens4");
    // A route out of an interface the host does not list (a VPN tunnel gone since) is not the answer.
    EXPECT_EQ(LinuxHost::ChooseManagementInterface(interfaces, interfaces,
                                                   {a("ens4", AF_INET, "10.1.0.5", 24, 0xFFFFFFFFu, 0)},
                                                   {{"tun9", AF_INET, "", 0}}),
              "ens4");
    // Without a route, an address counts only where the management network can be (the hypervisor's own
    // bridge for its machines is not).
    EXPECT_EQ(LinuxHost::ChooseManagementInterface(interfaces, {"br0", "ens4"},
                                                   {a("virbr0", AF_INET, "192.168.122.1", 24)}, {}),
              "");
    // Loopback and link-local addresses do not make an interface reachable from elsewhere.
    EXPECT_EQ(LinuxHost::ChooseManagementInterface(
                  interfaces, interfaces,
                  {a("br0", AF_INET, "169.254.3.3", 16), a("ens4", AF_INET6, "fe80::2", 64)}, {}),
              "");
}

TEST(RunningAddresses, EachAddressIsLabelledByHowItCame) {
    const auto a = [](auto... args) { return LinuxHostTree::Address(args...); };
    const std::vector<LinuxHost::KernelAddress> addresses{
        a("br0", AF_INET, "10.0.0.5", 16),
        a("br0", AF_INET, "10.0.0.6", 16),  // secondary
        a("br0", AF_INET6, "fe80::1", 64),
        a("br0", AF_INET6, "fd00::5", 64),
        a("br0", AF_INET6, "fd77::1234", 128, 3600),
        a("br0", AF_INET6, "fd77::5054:ff:fe12:3456", 64, 86400),
        a("br0", AF_INET6, "fd77::dead:beef", 64, 86400, IFA_F_TEMPORARY),
        a("ens4", AF_INET6, "fd99::1", 64),
    };
    const IpConfig config =
        LinuxHost::RunningIpConfig("br0", addresses, {{"br0", AF_INET6, "fe80::1", 1024}});
    EXPECT_FALSE(config.GetUseDhcp());
    EXPECT_EQ(config.GetIpv4Address().GetStringAddress(), "10.0.0.5");
    EXPECT_EQ(config.GetIpv4Netmask().GetStringAddress(), "255.255.0.0");
    EXPECT_EQ(config.GetIpv4Gateway().GetStringAddress(), "0.0.0.0");
    EXPECT_EQ(config.GetIpv6Gateway().GetStringAddress(), "fe80::1");
    std::map<std::string, int> types;
    for (const Ipv6Network& n : config.GetIpv6Network()) types[n.GetStringAddress()] = n.GetIpv6AddressType();
    EXPECT_EQ(types, (std::map<std::string, int>{{"fe80::1", IPV6_ADDRESS_OTHER},
                                                 {"fd00::5", IPV6_ADDRESS_STATIC},
                                                 {"fd77::1234", IPV6_ADDRESS_DHCP},
                                                 {"fd77::5054:ff:fe12:3456", IPV6_ADDRESS_AUTOCONF}}));
    EXPECT_TRUE(config.GetUseIpv6Dhcp());
    EXPECT_TRUE(config.GetUseIpv6RouterAdvertised());

    // No IPv4 address: IPv4 is off there, which the welcome screen shows by showing none.
    EXPECT_TRUE(LinuxHost::RunningIpConfig("ens4", addresses, {}).GetIpv4UseNone());
}

TEST_F(LinuxHostTest, NamesComeFromTheKernelTheHostsFileAndTheResolver) {
    auto dns = tree.Host()->GetDnsConfig();
    EXPECT_EQ(dns->GetHostname(), "kovo-guest");
    EXPECT_EQ(dns->GetDomain(), "lab.example");
    EXPECT_EQ(dns->GetNameServers(), (std::vector<std::string>{"192.168.77.1"}));
    EXPECT_EQ(dns->GetIpv6NameServers(false), (std::vector<std::string>{"fd77::1"}));
    EXPECT_EQ(dns->GetIpv6NameServers(true), (std::vector<std::string>{"192.168.77.1", "fd77::1"}));
    EXPECT_EQ(dns->GetSearchDomains(), (std::vector<std::string>{"lab.example", "example"}));

    // A kernel that holds the full name gives the domain itself; a host the hosts file does not name
    // takes the resolver's domain.
    tree.Write("/proc/sys/kernel/hostname", "esx1.corp.example\n");
    EXPECT_EQ(dns->GetHostname(), "esx1");
    EXPECT_EQ(dns->GetDomain(), "corp.example");
    tree.Write("/proc/sys/kernel/hostname", "other\n");
    tree.Write("/etc/resolv.conf", "domain site.example\n");
    EXPECT_EQ(dns->GetDomain(), "site.example");
}

TEST_F(LinuxHostTest, OptionsLiveInTheConsolesOwnFileAndADamagedFileIsNotReadAsDefaults) {
    auto host = tree.Host();
    auto option = host->GetUserAdvancedOptions()->FindOption("KovoTimeOut");
    ASSERT_NE(option, nullptr);
    EXPECT_EQ(option->GetIntValue(), 0);  // never set
    option->SetIntValue(300);
    EXPECT_TRUE(tree.Files().Exists(LinuxHost::LinuxOptions::kPath));

    tree.Write(LinuxHost::LinuxOptions::kPath, "{\"/UserVars/KovoTimeOut\": ");
    EXPECT_THROW(option->GetIntValue(), HostCtlException);
    EXPECT_THROW(option->SetIntValue(10), HostCtlException);
    tree.Write(LinuxHost::LinuxOptions::kPath, "{\"/UserVars/KovoTimeOut\": 99999999}");
    EXPECT_THROW(option->GetIntValue(), HostCtlException);
}

TEST_F(LinuxHostTest, WhatALinuxHostHasNoCounterpartForIsRefusedNotFaked) {
    auto host = tree.Host();
    EXPECT_TRUE(host->GetSmartCardInfo()->GetAllSlots().empty());
    EXPECT_THROW(host->GetStorageInfo()->GetAdapterVersion("zenhba0"), HostCtlException);
    EXPECT_THROW(host->GetVirtualSwitchInfo(), HostCtlException);
    EXPECT_THROW(host->GetDvPort("dvs", "1"), HostCtlException);
    EXPECT_FALSE(host->GetNetworkInfo()->IsNetDumperEnabled());
    EXPECT_EQ(host->Exec("/sbin/firmwareConfig.py --reset-only"), 127);
}

// The one test that asks this machine's kernel: reading only, in the namespace the test runs in.
TEST(NetlinkNetwork, ReadsLoopbacksAddressAsPermanent) {
    const auto addresses = LinuxHost::NetlinkNetwork().Addresses();
    bool loopback = false;
    for (const auto& a : addresses)
        if (a.interface == "lo" && a.family == AF_INET && a.address == "127.0.0.1") {
            loopback = true;
            EXPECT_EQ(a.prefixLength, 8);
            EXPECT_TRUE(a.Forever());
        }
    EXPECT_TRUE(loopback);
    EXPECT_NO_THROW(LinuxHost::NetlinkNetwork().DefaultRoutes());
}

}  // namespace
