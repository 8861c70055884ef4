// The Linux platform's management network on a real NetworkManager in the lab's host: taken over from
// another tool's profile, changed inside a checkpoint and kept or rolled back, and moved between NICs,
// each time as the kernel and nmcli then show it.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

#include "LabSteps.h"
#include "ShellSteps.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/Ipv4Address.h"
#include "platform/linux/IfupdownHandover.h"
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

// A NIC the service was told to leave alone, not by ifupdown's file, cannot become a port of the bridge:
// a change is refused in words before anything is touched, and the host keeps its address.
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

// The lease gone (its DHCP server down) and a bridge of the hypervisor's own with an address of its
// own: the management network is still on the NIC, where a change can take it over; not on the bridge.
TEST_F(NmNetworkLab, WithoutItsLeaseTheManagementInterfaceStaysOnTheNic) {
    struct HypervisorBridge {
        HypervisorBridge() {
            Output(
                "ip link add kvbr0 type bridge && ip addr add 192.168.122.1/24 dev kvbr0 && "
                "ip link set kvbr0 up");
        }
        ~HypervisorBridge() { Output("ip link del kvbr0"); }
    } bridge;
    Output("nmcli device set e1 managed no");  // one NIC, so that the test has one answer
    Output("ip -4 addr flush dev e0");
    ASSERT_TRUE(WaitFor([] { return KernelIpv4("e0").empty() && !KernelIpv4("kvbr0").empty(); }, 5s));
    EXPECT_EQ(network_->ManagementInterface(), "e0");
    const std::optional<NmProfile> holder = network_->ForeignHolder();
    ASSERT_TRUE(holder);
    EXPECT_EQ(holder->Id(), "Wired e0");

    // On a NIC that is a bridge's port, the bridge.
    Output(
        "nmcli connection add type bridge ifname fbr0 con-name 'Bridge' ipv4.method auto ipv6.method ignore "
        "bridge.stp no >/dev/null && nmcli connection add type ethernet ifname e0 con-name 'Port e0' "
        "master fbr0 slave-type bridge >/dev/null && nmcli connection up 'Port e0' >/dev/null");
    ASSERT_TRUE(WaitFor([] { return ControllerOf("e0") == "fbr0" && !KernelIpv4("fbr0").empty(); }, 30s));
    Output("ip -4 addr flush dev fbr0");
    ASSERT_TRUE(WaitFor([] { return KernelIpv4("fbr0").empty(); }, 5s));
    EXPECT_EQ(network_->ManagementInterface(), "fbr0");
    EXPECT_EQ(KernelIpv4("fbr0"), "") << "the lease came back: the test no longer tests a host without one";
}

// A change that takes NICs over stops the other tools' profiles for them from starting by themselves; not
// kept, each is as it was, also one that was not up when the change opened (the checkpoint holds only
// what runs).
TEST_F(NmNetworkLab, ARollBackLetsTheOtherToolsProfilesForTheUplinksStartAgain) {
    Output(
        "nmcli connection add type ethernet ifname e1 con-name 'Spare e1' ipv4.method disabled "
        "ipv6.method ignore connection.autoconnect-priority -10 >/dev/null && "
        "nmcli connection add type ethernet ifname e1 con-name 'Wired e1' ipv4.method disabled "
        "ipv6.method ignore >/dev/null && nmcli connection up 'Wired e1' >/dev/null");
    network_->OpenChange(60);
    network_->Store(Static("192.168.88.50", {"e0", "e1"}));
    EXPECT_EQ(Output("nmcli -g connection.autoconnect connection show 'Spare e1'"), "no");
    network_->RollBack();
    for (const char* profile : {"Wired e0", "Wired e1", "Spare e1"})
        EXPECT_EQ(Output(std::string("nmcli -g connection.autoconnect connection show '") + profile + "'"),
                  "yes")
            << profile;
}

// A checkpoint does not cover the host's name, its name table or the IPv6 switch: a change not kept puts
// them back itself, rolled back or kept once the service had already rolled it back.
class Uncovered : public NmNetworkLab {
  protected:
    void Change() {
        network_->Names().Set("changed-name");
        network_->Names().SetHostsText("127.0.1.1\tchanged-name.lab changed-name\n");
        Output(std::string("echo 'net.ipv6.conf.all.disable_ipv6 = 1' > ") + NmNetwork::kIpv6Switch);
        ASSERT_EQ(Output("hostname"), "changed-name");
        ASSERT_EQ(Output("cat /etc/hostname"), "changed-name");
    }
    void ExpectPutBack() {
        EXPECT_EQ(Output("hostname"), name_);
        EXPECT_EQ(Output("cat /etc/hostname"), name_);
        EXPECT_EQ(Output("cat /etc/hosts"), table_);
        EXPECT_FALSE(std::filesystem::exists(NmNetwork::kIpv6Switch));
    }
    const std::string name_ = Output("hostname"), table_ = Output("cat /etc/hosts");
};

TEST_F(Uncovered, ARollBackPutsThemBack) {
    std::filesystem::remove(NmNetwork::kIpv6Switch);
    network_->OpenChange(60);
    Change();
    network_->RollBack();
    ExpectPutBack();
}

TEST_F(Uncovered, AKeepTooLatePutsThemBack) {
    std::filesystem::remove(NmNetwork::kIpv6Switch);
    network_->OpenChange(2);
    Change();
    ASSERT_TRUE(WaitFor([] { return NetworkManagerClient::Connect().Checkpoints().empty(); }, 20s));
    EXPECT_THROW(network_->Keep(), std::exception);
    ExpectPutBack();
}

// A host whose management network ifupdown configures: the first change hands the NIC to the service
// (its stanza out of ifupdown's file, the service restarted) before the checkpoint opens, and a change
// that is not kept gives it back, however it ends.
class IfupdownLab : public ::testing::Test {
  protected:
    void SetUp() override {
        Output(KovoLab::kReset);
        ASSERT_EQ(Output(KovoLab::kIfupdownStatic), "up");
        ASSERT_TRUE(WaitFor([] { return State("e0") == "10"; }, 20s)) << State("e0");
        ASSERT_EQ(KernelIpv4("e0"), "192.168.88.44/24");
        file_ = Output("sha256sum </etc/network/interfaces");
        network_ = NmNetwork::IfRunning(std::make_shared<NetlinkNetwork>(), HostFiles("/"));
        ASSERT_NE(network_, nullptr);
    }
    void TearDown() override { Output(KovoLab::kReset); }

    // ifupdown's route out, which tells the management interface, once its client has set it again.
    static bool RoutesOutOfE0() {
        return Output("ip -4 route show default").find("dev e0") != std::string::npos;
    }
    static std::string State(const std::string& nic) {
        return Output("nmcli -g GENERAL.STATE device show " + nic + " | cut -d' ' -f1");
    }
    // ifupdown runs e0 again, from the file as it was, and the service leaves it alone.
    void ExpectIfupdownHasE0() {
        EXPECT_EQ(Output("sha256sum </etc/network/interfaces"), file_);
        EXPECT_FALSE(std::filesystem::exists("/var/lib/kovo/ifupdown-handover"));
        EXPECT_TRUE(WaitFor([] { return State("e0") == "10"; }, 20s)) << State("e0");
        EXPECT_TRUE(WaitFor([] { return KernelIpv4("e0") == "192.168.88.44/24"; }, 20s)) << KernelIpv4("e0");
        EXPECT_TRUE(WaitFor(RoutesOutOfE0, 20s)) << Output("ip route");
        EXPECT_EQ(Output("ping -c 1 -W 5 -I e0 192.168.88.1 >/dev/null && echo answers"), "answers");
        EXPECT_EQ(ControllerOf("e0"), "");
        EXPECT_EQ(Output("nmcli -g NAME connection show"), "");
        EXPECT_TRUE(WaitFor([] { return Output("ip -o link show xswitch0 2>/dev/null").empty(); }, 10s));
    }
    void ChangeTo46() {
        const std::string address = KernelIpv4("e0");
        network_->OpenChange(60);
        // Handed over as it ran: the address never left.
        EXPECT_EQ(State("e0"), "100");
        EXPECT_EQ(KernelIpv4("e0"), address);
        EXPECT_EQ(Output("grep -c e0 /etc/network/interfaces"), "0");
        network_->Store(Static("192.168.88.46"));
        network_->Activate();
        ASSERT_EQ(KernelIpv4("xswitch0"), "192.168.88.46/24");
        ASSERT_EQ(ControllerOf("e0"), "xswitch0");
    }

    std::string file_;
    std::shared_ptr<NmNetwork> network_;
};

TEST_F(IfupdownLab, TheNicIsReadAsIfupdownRunsItAndOfferedAsAnAdapter) {
    EXPECT_EQ(network_->IfupdownNic(), "e0");
    EXPECT_FALSE(network_->ConsoleMade());
    const ManagementNetwork read = network_->Management();
    EXPECT_EQ(read.uplinks, std::vector<std::string>{"e0"});
    EXPECT_FALSE(read.ip.GetUseDhcp());
    EXPECT_EQ(read.ip.GetIpv4Address().GetStringAddress(), "192.168.88.44");
    std::vector<std::string> nics;
    for (const NmDevice& nic : network_->Nics()) nics.push_back(nic.interface);
    // e1 has a stanza of its own, so the service leaves it to ifupdown too; only the management NIC is
    // taken over.
    EXPECT_EQ(nics, std::vector<std::string>{"e0"});
}

TEST_F(IfupdownLab, AKeptTakeOverLeavesTheNicToTheServiceAndTheRestOfTheFileAsItWas) {
    ChangeTo46();
    network_->Keep();
    EXPECT_FALSE(std::filesystem::exists("/var/lib/kovo/ifupdown-handover"));
    EXPECT_EQ(Output("cat /etc/network/interfaces"),
              "# The interfaces, as the installer wrote them.\nauto lo\niface lo inet loopback\n\n\n"
              "iface e1 inet manual");
    // Nothing of ifupdown's is written out as a profile of the service's.
    EXPECT_EQ(Output("nmcli -g NAME connection show | sort | paste -sd,"),
              "Management Network,Management Network port e0");
    // It stays so when the service starts again, as at the next boot.
    Output(KOVO_LAB_RESTART_SERVICE);
    EXPECT_TRUE(WaitFor([] { return KernelIpv4("xswitch0") == "192.168.88.46/24"; }, 30s))
        << KernelIpv4("xswitch0");
    EXPECT_EQ(ControllerOf("e0"), "xswitch0");
    EXPECT_EQ(NmNetwork::IfRunning(std::make_shared<NetlinkNetwork>(), HostFiles("/"))->IfupdownNic(), "");
}

TEST_F(IfupdownLab, ATakeOverRolledBackGivesTheNicBackToIfupdown) {
    ChangeTo46();
    network_->RollBack();
    ExpectIfupdownHasE0();
}

// Restart Management Network, on a NIC ifupdown configures: ifupdown takes it down and up, and keeps it.
TEST_F(IfupdownLab, ARestartGoesThroughIfupdown) {
    network_->Deactivate();
    EXPECT_EQ(KernelIpv4("e0"), "");
    network_->Activate();
    EXPECT_EQ(KernelIpv4("e0"), "192.168.88.44/24");
    EXPECT_EQ(State("e0"), "10");
    EXPECT_EQ(Output("sha256sum </etc/network/interfaces"), file_);
    EXPECT_EQ(Output("ping -c 1 -W 5 -I e0 192.168.88.1 >/dev/null && echo answers"), "answers");
}

// A service that will not take the NIC (its own settings leave it alone) gets no change: ifupdown has
// the NIC back at once, and no checkpoint is left.
TEST_F(IfupdownLab, ANicTheServiceWillNotTakeIsGivenBackAndTheChangeRefused) {
    Output(
        "printf '[keyfile]\\nunmanaged-devices=interface-name:lo;interface-name:e0\\n' "
        ">/etc/NetworkManager/conf.d/90-leave-e0.conf");
    try {
        network_->OpenChange(60);
        ADD_FAILURE() << "a change was opened on a NIC the service did not take";
    } catch (const HostCtl::Lib::HostCtlException& e) {
        EXPECT_STREQ(e.what(), "The network service did not take e0 over from ifupdown");
    }
    EXPECT_FALSE(network_->ChangeOpen());
    ExpectIfupdownHasE0();
    EXPECT_EQ(NetworkManagerClient::Connect().Checkpoints(), std::vector<std::string>{});
}

// ifupdown's DHCP client runs on while the change is open, and once it is rolled back ifupdown has one
// client for the NIC, with its lease. Kept, the hand-over ends the client: it would put the lease back
// on a port of the bridge.
TEST_F(IfupdownLab, ADhcpNicHasOneClientAfterARollBackAndNoneOnceKept) {
    ASSERT_EQ(Output(KovoLab::kIfupdownDhcp), "up");
    ASSERT_TRUE(WaitFor([] { return IsLease(KernelIpv4("e0")) && RoutesOutOfE0(); }, 30s))
        << KernelIpv4("e0");
    const std::string lease = KernelIpv4("e0");
    // ifupdown's clients for e0 that are alive (not ended and waiting for their parent to see it).
    const auto clients = [](const std::string& nic) {
        return Output("ps -eo stat,args | grep -c '^S.*dhclien[t] .*/run/dhclient." + nic + ".pid'");
    };
    ASSERT_EQ(clients("e0"), "1");
    // Another NIC's client, whose script configures nothing: it is not the take-over's to end.
    Output(
        "dhclient -nw -sf /bin/true -pf /run/dhclient.e1.pid -lf /var/lib/dhcp/dhclient.e1.leases e1 "
        ">/dev/null 2>&1");
    ASSERT_EQ(clients("e1"), "1");
    ASSERT_EQ(KernelIpv4("e1"), "");

    ChangeTo46();
    network_->RollBack();
    EXPECT_TRUE(WaitFor([] { return State("e0") == "10"; }, 20s)) << State("e0");
    EXPECT_TRUE(WaitFor([&lease] { return KernelIpv4("e0") == lease && RoutesOutOfE0(); }, 30s))
        << KernelIpv4("e0") << "\n"
        << Output("ip route");
    EXPECT_EQ(clients("e0"), "1");

    ChangeTo46();
    network_->Keep();
    EXPECT_EQ(clients("e0"), "0");
    EXPECT_EQ(clients("e1"), "1");
    Output("kill -9 $(cat /run/dhclient.e1.pid)");
    EXPECT_EQ(KernelIpv4("e0"), "");
    EXPECT_EQ(KernelIpv4("xswitch0"), "192.168.88.46/24");
}

// Cut off after the change was being kept (the checkpoint gone, the record saying so): the next console
// finishes keeping it instead of putting ifupdown back.
TEST_F(IfupdownLab, ATakeOverCutOffAsItWasKeptIsKeptByTheNextConsole) {
    ChangeTo46();
    IfupdownHandover(HostFiles("/")).MarkKeeping();
    NetworkManagerClient client = NetworkManagerClient::Connect();
    client.DestroyCheckpoint(client.Checkpoints().at(0));
    network_.reset();
    network_ = NmNetwork::IfRunning(std::make_shared<NetlinkNetwork>(), HostFiles("/"));
    ASSERT_NE(network_, nullptr);
    EXPECT_FALSE(std::filesystem::exists("/var/lib/kovo/ifupdown-handover"));
    EXPECT_EQ(Output("grep -c e0 /etc/network/interfaces"), "0");
    EXPECT_EQ(KernelIpv4("xswitch0"), "192.168.88.46/24");
    EXPECT_EQ(ControllerOf("e0"), "xswitch0");
}

// A console killed while its take-over waited to be kept leaves the checkpoint open; one whose host
// restarted meanwhile leaves the console's profiles and no checkpoint. Either way the next console puts
// ifupdown's NIC back as it starts.
TEST_F(IfupdownLab, ATakeOverLeftUnkeptIsPutBackByTheNextConsole) {
    for (const bool restarted : {false, true}) {
        SCOPED_TRACE(restarted ? "host restarted" : "console killed");
        ChangeTo46();
        if (restarted) {
            // What a host restarted keeps: no checkpoint, the console's profiles, a service started afresh.
            NetworkManagerClient client = NetworkManagerClient::Connect();
            client.DestroyCheckpoint(client.Checkpoints().at(0));
            Output(KOVO_LAB_RESTART_SERVICE);
        }
        network_.reset();
        ASSERT_TRUE(std::filesystem::exists("/var/lib/kovo/ifupdown-handover"));
        network_ = NmNetwork::IfRunning(std::make_shared<NetlinkNetwork>(), HostFiles("/"));
        ASSERT_NE(network_, nullptr);
        ExpectIfupdownHasE0();
        EXPECT_EQ(NetworkManagerClient::Connect().Checkpoints(), std::vector<std::string>{});
    }
}

}  // namespace
}  // namespace LinuxHost
