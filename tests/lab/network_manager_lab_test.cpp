// The network service's client against a real NetworkManager in the lab's host (tests/lab/nm-lab): what
// it reads is what the kernel and nmcli say, and what it sets is what they show afterwards.
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <cctype>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include "ShellSteps.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/linux/NetworkManagerClient.h"

namespace LinuxHost {
namespace {

using namespace std::chrono_literals;
using KovoE2e::Output;
using KovoE2e::WaitFor;
using Value = Bus::Value;

// The kernel's IPv4 addresses on an interface, as "a.b.c.d/n" words.
std::string KernelIpv4(const std::string& interface) {
    return Output("ip -4 -o addr show dev " + interface + " | awk '{print $4}' | paste -sd' '");
}

Value Ethernet(const std::string& id, const std::string& interface, Value ipv4) {
    return {{"connection",
             {{"id", Bus::Variant("s", id)},
              {"type", Bus::Variant("s", "802-3-ethernet")},
              {"interface-name", Bus::Variant("s", interface)}}},
            {"ipv4", std::move(ipv4)},
            {"ipv6", {{"method", Bus::Variant("s", "ignore")}}}};
}

Value StaticIpv4(const std::string& address, const std::string& gateway) {
    return {{"method", Bus::Variant("s", "manual")},
            {"address-data", Bus::Variant("aa{sv}", Value::array({{{"address", Bus::Variant("s", address)},
                                                                   {"prefix", Bus::Variant("u", 24)}}}))},
            {"gateway", Bus::Variant("s", gateway)}};
}

// Each test starts with no profile on the lab's host and its NICs down to nothing.
class NetworkManagerLab : public ::testing::Test {
  protected:
    void SetUp() override {
        for (const NmProfile& profile : nm_.Profiles()) nm_.DeleteProfile(profile.path);
        ASSERT_TRUE(WaitFor([&] { return KernelIpv4("e0").empty(); }, 20s)) << KernelIpv4("e0");
    }
    void TearDown() override {
        for (const NmProfile& profile : nm_.Profiles()) nm_.DeleteProfile(profile.path);
    }
    NmDevice Device(const std::string& interface) {
        for (NmDevice& device : nm_.Devices())
            if (device.interface == interface) return device;
        ADD_FAILURE() << "no device " << interface;
        return {};
    }

    NetworkManagerClient nm_ = NetworkManagerClient::Connect();
};

TEST_F(NetworkManagerLab, TheNicsAreReadAsTheKernelHasThem) {
    ASSERT_TRUE(nm_.Running());
    EXPECT_EQ(nm_.Version(), Output("nmcli -g VERSION general"));
    for (const char* name : {"e0", "e1"}) {
        const NmDevice nic = Device(name);
        EXPECT_TRUE(nic.wired) << name;
        EXPECT_EQ(nic.type, NmDevice::kVeth) << name;
        EXPECT_TRUE(nic.Managed()) << name;
        EXPECT_TRUE(nic.carrier) << name;
        std::string mac;
        std::ifstream(std::string("/sys/class/net/") + name + "/address") >> mac;
        std::string reported = nic.hwAddress;
        for (char& c : reported) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        EXPECT_EQ(reported, mac) << name;
        EXPECT_EQ(nic.driver, "veth") << name;
    }
}

TEST_F(NetworkManagerLab, AProfileSetIsWhatNmcliAndTheKernelShow) {
    const std::string path =
        nm_.AddProfile(Ethernet("lab static", "e0", StaticIpv4("192.168.88.20", "192.168.88.1")));
    EXPECT_EQ(Output("nmcli -g ipv4.method,ipv4.addresses,ipv4.gateway connection show 'lab static'"),
              "manual\n192.168.88.20/24\n192.168.88.1");
    nm_.Activate(path, Device("e0").path);
    ASSERT_TRUE(WaitFor([] { return KernelIpv4("e0") == "192.168.88.20/24"; }, 20s)) << KernelIpv4("e0");

    // The running configuration as the client reads it.
    const NmDevice e0 = Device("e0");
    const NmIpConfig running = nm_.IpConfig(e0.ip4Config, AF_INET);
    ASSERT_EQ(running.addresses.size(), 1u);
    EXPECT_EQ(running.addresses[0].address, "192.168.88.20");
    EXPECT_EQ(running.addresses[0].prefix, 24u);
    EXPECT_EQ(running.gateway, "192.168.88.1");
    bool listed = false;
    for (const NmActive& active : nm_.ActiveConnections())
        listed |= active.profile == path && active.devices == std::vector<std::string>{e0.path};
    EXPECT_TRUE(listed);

    // Changed and applied again: the old address goes.
    nm_.UpdateProfile(path, Ethernet("lab static", "e0", StaticIpv4("192.168.88.21", "192.168.88.1")));
    nm_.Activate(path, e0.path);
    ASSERT_TRUE(WaitFor([] { return KernelIpv4("e0") == "192.168.88.21/24"; }, 20s)) << KernelIpv4("e0");
    for (const NmProfile& profile : nm_.Profiles()) {
        if (profile.path == path) {
            EXPECT_EQ(profile.Get("ipv4", "address-data")[0]["address"]["v"], "192.168.88.21");
        }
    }

    nm_.DeleteProfile(path);
    EXPECT_EQ(Output("nmcli -g NAME connection show"), "");
    EXPECT_TRUE(WaitFor([] { return KernelIpv4("e0").empty(); }, 20s)) << KernelIpv4("e0");
}

TEST_F(NetworkManagerLab, ARefusalCarriesTheServicesReasonAndChangesNothing) {
    const std::string path =
        nm_.AddProfile(Ethernet("lab static", "e0", StaticIpv4("192.168.88.20", "192.168.88.1")));
    Value bad = Ethernet("lab static", "e0", StaticIpv4("192.168.88.22", "192.168.88.1"));
    bad["ipv4"]["method"] = Bus::Variant("s", "sometimes");
    try {
        nm_.UpdateProfile(path, bad);
        ADD_FAILURE() << "the service took an unknown method";
    } catch (const HostCtl::Lib::HostCtlException& e) {
        EXPECT_NE(std::string(e.what()).find("ipv4.method"), std::string::npos) << e.what();
    }
    EXPECT_EQ(Output("nmcli -g ipv4.method,ipv4.addresses connection show 'lab static'"),
              "manual\n192.168.88.20/24");
    EXPECT_THROW(nm_.Activate("/org/freedesktop/NetworkManager/Settings/999999"),
                 HostCtl::Lib::HostCtlException);
}

// The service undoes a change by itself when its checkpoint is left alone, and keeps it once the
// checkpoint is destroyed.
TEST_F(NetworkManagerLab, ACheckpointLeftAloneRollsBackAndADestroyedOneKeeps) {
    const std::string path =
        nm_.AddProfile(Ethernet("lab lease", "e0", {{"method", Bus::Variant("s", "auto")}}));
    const NmDevice e0 = Device("e0");
    nm_.Activate(path, e0.path);
    std::string lease;
    ASSERT_TRUE(WaitFor([&] { return (lease = KernelIpv4("e0")).rfind("192.168.88.1", 0) == 0; }, 30s))
        << KernelIpv4("e0");

    const std::string checkpoint = nm_.CreateCheckpoint({e0.path}, 3);
    nm_.UpdateProfile(path, Ethernet("lab lease", "e0", StaticIpv4("192.168.88.50", "192.168.88.1")));
    nm_.Activate(path, e0.path);
    ASSERT_TRUE(WaitFor([] { return KernelIpv4("e0") == "192.168.88.50/24"; }, 20s)) << KernelIpv4("e0");
    EXPECT_TRUE(WaitFor([&] { return KernelIpv4("e0") == lease; }, 30s)) << KernelIpv4("e0");
    EXPECT_EQ(Output("nmcli -g ipv4.method connection show 'lab lease'"), "auto");
    EXPECT_THROW(nm_.DestroyCheckpoint(checkpoint),
                 HostCtl::Lib::HostCtlException);  // gone with the rollback

    const std::string kept = nm_.CreateCheckpoint({e0.path}, 3);
    nm_.UpdateProfile(path, Ethernet("lab lease", "e0", StaticIpv4("192.168.88.51", "192.168.88.1")));
    nm_.Activate(path, e0.path);
    ASSERT_TRUE(WaitFor([] { return KernelIpv4("e0") == "192.168.88.51/24"; }, 20s)) << KernelIpv4("e0");
    nm_.DestroyCheckpoint(kept);
    std::this_thread::sleep_for(5s);
    EXPECT_EQ(KernelIpv4("e0"), "192.168.88.51/24");

    // Rolled back on request, the change goes at once, and the answer names the device.
    const std::string asked = nm_.CreateCheckpoint({e0.path}, 60);
    nm_.UpdateProfile(path, Ethernet("lab lease", "e0", StaticIpv4("192.168.88.52", "192.168.88.1")));
    nm_.Activate(path, e0.path);
    ASSERT_TRUE(WaitFor([] { return KernelIpv4("e0") == "192.168.88.52/24"; }, 20s)) << KernelIpv4("e0");
    const std::map<std::string, bool> restored = nm_.RollBackCheckpoint(asked);
    EXPECT_EQ(restored, (std::map<std::string, bool>{{e0.path, true}}));
    EXPECT_TRUE(WaitFor([] { return KernelIpv4("e0") == "192.168.88.51/24"; }, 20s)) << KernelIpv4("e0");
}

}  // namespace
}  // namespace LinuxHost
