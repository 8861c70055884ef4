// The Linux platform's management network on a real NetworkManager in the lab's host: taken over from
// another tool's profile, changed inside a checkpoint and kept or rolled back, and moved between NICs,
// each time as the kernel and nmcli then show it.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>

#include "LabSteps.h"
#include "ShellSteps.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/Ipv4Address.h"
#include "platform/linux/NmNetwork.h"

namespace LinuxHost {
namespace {

using namespace std::chrono_literals;
using HostCtl::Network::Ipv4Address;
using KovoE2e::Output;
using KovoE2e::WaitFor;
using Value = Bus::Value;

std::string KernelIpv4(const std::string& interface) {
    return Output("ip -4 -o addr show dev " + interface + " 2>/dev/null | awk '{print $4}' | paste -sd' '");
}

// The bridge or bond a NIC is a port of, as the kernel has it; "" for none.
std::string ControllerOf(const std::string& nic) {
    return Output("ip -o link show dev " + nic + " | grep -o 'master [^ ]*' | cut -d' ' -f2");
}

bool IsLease(const std::string& address) {
    return address.rfind("192.168.88.1", 0) == 0 && address.size() > std::string("192.168.88.1").size() + 3;
}

ManagementNetwork Static(const std::string& address, std::vector<std::string> uplinks = {"e0"}) {
    ManagementNetwork network;
    network.uplinks = std::move(uplinks);
    network.ip.SetUseDhcp(false);
    network.ip.SetIpv4Address(Ipv4Address(address));
    network.ip.SetIpv4Netmask(Ipv4Address("255.255.255.0"));
    network.ip.SetIpv4Gateway(Ipv4Address("192.168.88.1"));
    network.nameServers = {"192.168.88.1"};
    return network;
}

// Each test starts on a host whose network another tool set up.
class NmNetworkLab : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_NE(network_, nullptr) << "no network service on the lab's bus";
        Output(KovoLab::kReset);
        ASSERT_TRUE(
            WaitFor([] { return ControllerOf("e0").empty() && KernelIpv4("xswitch0").empty(); }, 20s));
        ASSERT_EQ(Output(KovoLab::kForeignDhcp), "up");
        ASSERT_TRUE(WaitFor([] { return IsLease(KernelIpv4("e0")); }, 30s)) << KernelIpv4("e0");
    }
    void TearDown() override { Output(KovoLab::kReset); }

    std::shared_ptr<NmNetwork> network_ =
        NmNetwork::IfRunning(std::make_shared<NetlinkNetwork>(), HostFiles("/"));
};

TEST_F(NmNetworkLab, AnotherToolsNetworkIsReadAsItIsAndTakenOverByTheFirstChange) {
    EXPECT_FALSE(network_->ConsoleMade());
    EXPECT_EQ(network_->ManagementInterface(), "e0");
    const ManagementNetwork before = network_->Management();
    EXPECT_EQ(before.uplinks, std::vector<std::string>{"e0"});
    EXPECT_TRUE(before.ip.GetUseDhcp());

    network_->Store(Static("192.168.88.40"));
    EXPECT_TRUE(network_->ConsoleMade());
    EXPECT_EQ(KernelIpv4("xswitch0"), "192.168.88.40/24");
    EXPECT_EQ(ControllerOf("e0"), "xswitch0");
    EXPECT_EQ(KernelIpv4("e0"), "");
    EXPECT_EQ(network_->ManagementInterface(), "xswitch0");
    EXPECT_EQ(network_->Management(), Static("192.168.88.40"));
    // The other tool's profile is kept for the operator, but no longer takes the NIC at start.
    EXPECT_EQ(Output("nmcli -g connection.autoconnect connection show 'Wired e0'"), "no");
    EXPECT_EQ(Output("nmcli -g ipv4.method,ipv4.addresses connection show 'Management Network'"),
              "manual\n192.168.88.40/24");
}

TEST_F(NmNetworkLab, AChangeInsideACheckpointWaitsForActivateAndRollsBackWhole) {
    network_->OpenChange(60);
    EXPECT_TRUE(network_->ChangeOpen());
    network_->Store(Static("192.168.88.41"));
    // Only the profiles changed so far.
    EXPECT_TRUE(IsLease(KernelIpv4("e0"))) << KernelIpv4("e0");
    network_->Activate();
    EXPECT_EQ(KernelIpv4("xswitch0"), "192.168.88.41/24");
    EXPECT_GT(network_->SecondsLeft(), 50);

    const std::vector<std::string> restored = network_->RollBack();
    EXPECT_FALSE(network_->ChangeOpen());
    EXPECT_NE(std::find(restored.begin(), restored.end(), "e0"), restored.end());
    EXPECT_TRUE(WaitFor([] { return IsLease(KernelIpv4("e0")); }, 30s)) << KernelIpv4("e0");
    EXPECT_TRUE(WaitFor([] { return KernelIpv4("xswitch0").empty(); }, 10s)) << KernelIpv4("xswitch0");
    EXPECT_EQ(Output("nmcli -g NAME connection show"), "Wired e0");
    EXPECT_EQ(Output("nmcli -g connection.autoconnect connection show 'Wired e0'"), "yes");
}

TEST_F(NmNetworkLab, AKeptChangeOutlivesItsRollbackTime) {
    network_->OpenChange(3);
    network_->Store(Static("192.168.88.42"));
    network_->Activate();
    network_->Keep();
    EXPECT_EQ(network_->SecondsLeft(), 0);
    std::this_thread::sleep_for(5s);
    EXPECT_EQ(KernelIpv4("xswitch0"), "192.168.88.42/24");
    EXPECT_EQ(ControllerOf("e0"), "xswitch0");
}

// One change at a time: a second console's change waits for the first's to be kept or undone, and a
// checkpoint another tool made is left to that tool.
TEST_F(NmNetworkLab, AChangeIsRefusedWhileAnotherIsOpen) {
    std::shared_ptr<NmNetwork> other =
        NmNetwork::IfRunning(std::make_shared<NetlinkNetwork>(), HostFiles("/"));
    ASSERT_NE(other, nullptr);
    network_->OpenChange(60);
    try {
        other->OpenChange(60);
        ADD_FAILURE() << "a second change was opened";
    } catch (const HostCtl::Lib::HostCtlException& e) {
        EXPECT_NE(std::string(e.what()).find("Another console is changing the management network"),
                  std::string::npos)
            << e.what();
    }
    network_->RollBack();
    other->OpenChange(60);
    EXPECT_TRUE(other->ChangeOpen());
    other->Keep();

    NetworkManagerClient client = NetworkManagerClient::Connect();
    const std::string foreign = client.CreateCheckpoint({}, 60);
    try {
        network_->OpenChange(60);
        ADD_FAILURE() << "a change was opened over another tool's checkpoint";
    } catch (const HostCtl::Lib::HostCtlException& e) {
        EXPECT_NE(std::string(e.what()).find("waits to be kept or undone"), std::string::npos) << e.what();
    }
    EXPECT_EQ(client.Checkpoints(), std::vector<std::string>{foreign});
    client.DestroyCheckpoint(foreign);
}

TEST_F(NmNetworkLab, TheUplinkMovesToAnotherNic) {
    network_->Store(Static("192.168.88.43"));
    ASSERT_EQ(ControllerOf("e0"), "xswitch0");
    // The bridge takes the new first uplink's MAC, as the window asks when the first uplink changes.
    const std::string e1Mac = Output("cat /sys/class/net/e1/address");
    ManagementNetwork moved = Static("192.168.88.43", {"e1"});
    moved.mac = e1Mac;
    network_->Store(moved);
    EXPECT_TRUE(WaitFor([] { return ControllerOf("e1") == "xswitch0" && ControllerOf("e0").empty(); }, 20s))
        << ControllerOf("e0") << "/" << ControllerOf("e1");
    EXPECT_EQ(Output("cat /sys/class/net/xswitch0/address"), e1Mac);
    EXPECT_EQ(Output("nmcli -g NAME connection show | sort | paste -sd,"),
              "Management Network,Management Network port e1,Wired e0");
    const ManagementNetwork read = network_->Management();
    EXPECT_EQ(read.uplinks, std::vector<std::string>{"e1"});
    EXPECT_EQ(read.mac, e1Mac);
    // The address still answers through the new NIC.
    EXPECT_EQ(Output("ping -c 1 -W 5 -I xswitch0 192.168.88.1 >/dev/null && echo answers"), "answers");
}

// A NIC another tool configures (as ifupdown does, the service told to leave it alone) cannot become a
// port of the bridge: a change is refused in words before anything is touched, and the host keeps its
// address.
TEST_F(NmNetworkLab, AManagementNicTheServiceLeavesAloneIsRefusedInWordsAndKeepsItsAddress) {
    Output("nmcli device set e0 managed no");
    ASSERT_TRUE(
        WaitFor([] { return Output("nmcli -g GENERAL.STATE device show e0").rfind("10 ", 0) == 0; }, 10s));
    const std::string address = KernelIpv4("e0");
    ASSERT_TRUE(IsLease(address)) << address;
    EXPECT_EQ(network_->ManagementInterface(), "e0");
    const std::vector<std::function<void()>> changes = {[&] { network_->OpenChange(60); },
                                                        [&] { network_->Store(Static("192.168.88.45")); }};
    for (const auto& change : changes) {
        try {
            change();
            ADD_FAILURE() << "a change of a NIC the service does not manage went ahead";
        } catch (const HostCtl::Lib::HostCtlException& e) {
            EXPECT_NE(std::string(e.what()).find("The network service does not manage e0"), std::string::npos)
                << e.what();
        }
    }
    EXPECT_FALSE(network_->ChangeOpen());
    EXPECT_EQ(KernelIpv4("e0"), address);
    EXPECT_EQ(ControllerOf("e0"), "");
    EXPECT_EQ(Output("nmcli -g NAME connection show"), "Wired e0");
    EXPECT_EQ(NetworkManagerClient::Connect().Checkpoints(), std::vector<std::string>{});
}

// A checkpoint does not cover the host's name and name table: the rollback puts them back itself.
TEST_F(NmNetworkLab, ARollBackPutsTheHostNameAndTheNameTableBack) {
    const std::string name = Output("hostname"), table = Output("cat /etc/hosts");
    network_->OpenChange(60);
    network_->Names().Set("changed-name");
    network_->Names().SetHostsText("127.0.1.1\tchanged-name.lab changed-name\n");
    EXPECT_EQ(Output("hostname"), "changed-name");
    EXPECT_EQ(Output("cat /etc/hostname"), "changed-name");
    network_->RollBack();
    EXPECT_EQ(Output("hostname"), name);
    EXPECT_EQ(Output("cat /etc/hostname"), name);
    EXPECT_EQ(Output("cat /etc/hosts"), table);
}

}  // namespace
}  // namespace LinuxHost
