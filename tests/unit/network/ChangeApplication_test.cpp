#include "network/ChangeApplication.h"

#include <gtest/gtest.h>
#include <poll.h>

#include "../support/Recording.h"
#include "network/PendingNetwork.h"
#include "platform/hostctl/Ipv6Address.h"

namespace Kovo {
namespace {

using namespace Testing;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv6Address;
using nlohmann::json;

// Over the default host unless a test makes another.
class ChangeApplicationTest : public ScriptedScreen {
  protected:
    void SetUp() override {
        ScriptedScreen::SetUp();
        Make(Scenario("default"));
    }
    // `undoing`: a host that undoes a network change by itself, as a Linux host's network service does.
    void Make(const json& document, bool undoing = false) {
        store_ = std::make_unique<ScratchStore>(Booted(document));
        if (undoing) {
            // It outlives the process's own end, as the console's host does: the change's tests ping on
            // threads that nobody joins, which may still be at work while static objects are destroyed.
            static auto* forever = new std::vector<std::unique_ptr<RecordingHost>>;
            forever->push_back(std::make_unique<RecordingHost>(store_->Get(), true));
            host_ = forever->back().get();
            host_->change.offered = true;
        } else {
            owned_ = std::make_unique<RecordingHost>(store_->Get(), true);
            host_ = owned_.get();
        }
        pending_ = PendingNetwork::Read(*host_);
        host_->calls.clear();
    }
    // Applies the record with `keys` typed ahead; a failure's message dialog is closed as an operator
    // would.
    void Apply(const std::string& keys = Keys::kEnter) {
        Type(keys);
        TestRootFrame root;
        bool shown = false;
        ChangeApplication(*host_, pending_, root, [&shown] { shown = true; }).Run();
        addressShown_ = shown;
    }
    json At(const std::string& pointer) const { return store_->At(pointer); }
    void Fault(const std::string& operation, const std::string& text) { store_->Fault(operation, text); }
    const Calls& Made() const { return host_->calls; }
    static bool KeysWaiting() {
        pollfd keyboard{0, POLLIN, 0};
        return poll(&keyboard, 1, 0) > 0;
    }
    bool LoggedStartingWith(const std::string& prefix) const {
        return !host_->StartingWith("log: " + prefix).empty();
    }

    // The position of `call` in the calls made; the end when it was not made.
    std::size_t Position(const std::string& call) const {
        return static_cast<std::size_t>(std::find(Made().begin(), Made().end(), call) - Made().begin());
    }

    std::unique_ptr<ScratchStore> store_;
    std::unique_ptr<RecordingHost> owned_;
    RecordingHost* host_ = nullptr;
    PendingNetwork pending_;
    bool addressShown_ = false;
};

json DhcpHost() {
    json host = Scenario("default");
    host["network"]["zenkNics"][0]["ipConfig"]["ipv4"] = {{"mode", "dhcp"}};
    host["network"]["zenkNics"][0]["dhcpBound"] = true;
    host["network"]["dhcpLeases"]["zk0"]["ipv4"] = {
        {"address", "10.20.30.77"}, {"netmask", "255.255.255.0"}, {"gateway", "10.20.30.1"}};
    return host;
}

TEST_F(ChangeApplicationTest, StaticAddressChangeRunsEveryStepInOrder) {
    pending_.applied.SetIpv4Address(Ipv4Address("10.20.30.50"));
    Apply();
    const Calls expected = {
        "log: Setting adapters to zennic0 zennic1",
        "log: Setting ipv4 configuration to 10.20.30.50 255.255.255.0 on zk0",
        "NetworkInfo.SetZenkIpv6Enabled",
        "log: Setting ipv6 configuration",
        "ZenkNic.SetIpConfig",
        // A new address always rewrites the gateway, even the same one.
        "log: Setting default gateway to 10.20.30.1",
        "RoutingInfo.SetZenKernelDefaultGateway",
        "log: Setting hostname to kovo-host-01.lab.example",
        "DnsConfig.SetFqdn",
        "log: Setting nameservers to 10.20.30.2 10.20.30.3",
        "DnsConfig.RemoveNameServers",
        "DnsConfig.AddNameServer",
        "DnsConfig.AddNameServer",
        "log: Setting suffixes to ",
        "DnsConfig.SetSearchDomainsString",
        "DnsConfig.SaveConfig",
        "refresh",
    };
    EXPECT_EQ(Made(), expected);
    EXPECT_TRUE(addressShown_);
    EXPECT_EQ(At("/network/zenkNics/0/running/ipv4/address"), "10.20.30.50");
}

TEST_F(ChangeApplicationTest, UnchangedStaticAddressWritesOnlyWhatDiffers) {
    const json before = At("/network");
    pending_.changed = true;
    Apply();
    EXPECT_FALSE(LoggedStartingWith("Setting ipv4 configuration"));
    EXPECT_FALSE(LoggedStartingWith("Setting default gateway"));
    EXPECT_FALSE(addressShown_);
    // Nothing was edited, so the host's network reads as before (the DNS save is counted, nothing else).
    json after = At("/network");
    after["dns"].erase("saved");
    EXPECT_EQ(after, before);

    pending_.applied.SetIpv4Gateway(Ipv4Address("10.20.30.254"));
    host_->calls.clear();
    Apply();
    EXPECT_FALSE(LoggedStartingWith("Setting ipv4 configuration"));
    EXPECT_EQ(At("/network/routing/ipv4DefaultGateway"), "10.20.30.254");
}

TEST_F(ChangeApplicationTest, NewlyChosenDhcpSwitchesWithoutGatewayOrRenewalAndTakesDnsFromIt) {
    pending_.modes.SetUseDhcp(true);
    pending_.modes.SetDnsFromDhcp(true);
    Apply();
    EXPECT_TRUE(host_->Made("log: Switching to DHCP on zk0"));
    EXPECT_FALSE(LoggedStartingWith("Setting default gateway"));
    EXPECT_FALSE(LoggedStartingWith("Renew DHCP lease"));
    // DNS now comes from DHCP: host name and name servers are left to it.
    EXPECT_FALSE(LoggedStartingWith("Setting hostname"));
    EXPECT_EQ(At("/network/zenkNics/0/ipConfig/ipv4/mode"), "dhcp");
    EXPECT_EQ(At("/network/zenkNics/0/ipConfig/dnsFromDhcp"), true);

    // DNS from DHCP is kept only where DHCP runs.
    Make(Scenario("default"));
    pending_.modes.SetDnsFromDhcp(true);  // but IPv4 stays static, and DHCPv6 is off
    Apply();
    EXPECT_EQ(At("/network/zenkNics/0/ipConfig/dnsFromDhcp"), false);
    EXPECT_TRUE(host_->Made("log: Setting hostname to kovo-host-01.lab.example"));
}

TEST_F(ChangeApplicationTest, DhcpAlreadyOnRenewsTheLeaseOnlyWhenTheAdaptersChanged) {
    Make(DhcpHost());
    pending_.changed = true;
    Apply();
    EXPECT_FALSE(LoggedStartingWith("Renew DHCP lease"));
    EXPECT_FALSE(LoggedStartingWith("Switching to DHCP"));

    Make(DhcpHost());
    pending_.adapters = {"zennic0"};
    Apply();
    const Calls tail = host_->From("ZenkNic.SetIpConfig");
    ASSERT_GE(tail.size(), 4u);
    // The interface stays bound to its lease, then renews it.
    EXPECT_EQ(Calls(tail.begin() + 1, tail.begin() + 4),
              (Calls{"ZenkNic.SetDhcpBound", "log: Renew DHCP lease on zk0", "ZenkNic.RenewIpv4Lease"}));
    EXPECT_EQ(At("/network/zenkNics/0/dhcpBound"), true);
    EXPECT_FALSE(host_->Made("ZenkNic.RenewIpv6Lease"));
    EXPECT_EQ(At("/network/switches/0/uplinks"), json::array({"zennic0"}));
}

TEST_F(ChangeApplicationTest, NoneClearsTheAddressAndTheGateway) {
    pending_.applied.SetIpv4UseNone();
    pending_.applied.SetIpv4Gateway(Ipv4Address());
    Apply();
    EXPECT_TRUE(host_->Made("log: Setting ipv4 configuration to none on zk0"));
    EXPECT_TRUE(host_->Made("log: Setting default gateway to 0.0.0.0"));
    EXPECT_EQ(At("/network/zenkNics/0/ipConfig/ipv4/mode"), "none");
    EXPECT_EQ(At("/network/routing/ipv4DefaultGateway"), "");

    // Already none: nothing to say about IPv4 the second time.
    Make(store_->At(""));
    pending_.changed = true;
    Apply();
    EXPECT_FALSE(LoggedStartingWith("Setting ipv4 configuration"));
}

TEST_F(ChangeApplicationTest, HostNamesAndNameServers) {
    pending_.hostname = "node-b";
    pending_.primaryDns = std::make_unique<Ipv4Address>("0.0.0.0");
    pending_.alternateDns = std::make_unique<Ipv6Address>("::");
    Apply();
    // A name without a domain keeps the host's domain; unspecified servers are none.
    EXPECT_TRUE(host_->Made("DnsConfig.SetHostname"));
    EXPECT_FALSE(host_->Made("DnsConfig.SetFqdn"));
    EXPECT_TRUE(host_->Made("log: Setting nameservers to 0.0.0.0 ::"));
    EXPECT_FALSE(host_->Made("DnsConfig.AddNameServer"));
    EXPECT_EQ(At("/network/dns/nameServers"), json::array());
    EXPECT_EQ(At("/network/dns/hostname"), "node-b");
    EXPECT_EQ(At("/network/dns/domain"), "lab.example");

    Make(Scenario("default"));
    pending_.hostname = "node-c.other.example";
    pending_.primaryDns = std::make_unique<Ipv6Address>("2001:db8::53");
    pending_.alternateDns.reset();
    Apply();
    EXPECT_TRUE(host_->Made("log: Setting nameservers to 2001:db8::53 "));
    EXPECT_EQ(At("/network/dns/ipv6NameServers"), json::array({"2001:db8::53"}));
    EXPECT_EQ(At("/network/dns/hostname"), "node-c");
    EXPECT_EQ(At("/network/dns/domain"), "other.example");
    // The new domain leads the search list.
    EXPECT_EQ(At("/network/dns/searchDomains"), json::array({"other.example"}));
}

TEST_F(ChangeApplicationTest, SuffixesFollowTheDomainInTheOrderTyped) {
    pending_.suffixes = "a.example, b.example  c.example";
    Apply();
    EXPECT_TRUE(host_->Made("log: Setting suffixes to a.example, b.example  c.example"));
    EXPECT_EQ(host_->StartingWith("DnsConfig.AddSearchDomain").size(), 3u);
    EXPECT_EQ(At("/network/dns/searchDomains"),
              json::array({"lab.example", "a.example", "b.example", "c.example"}));

    // Read back, the same list gives the same text: applying it again changes nothing.
    Make(store_->At(""));
    EXPECT_EQ(pending_.suffixes, "a.example b.example c.example");
    pending_.changed = true;
    Apply();
    EXPECT_EQ(At("/network/dns/searchDomains"),
              json::array({"lab.example", "a.example", "b.example", "c.example"}));

    Make(Scenario("default"));
    pending_.suffixes.clear();
    Apply();
    EXPECT_FALSE(host_->Made("DnsConfig.AddSearchDomain"));
    EXPECT_EQ(At("/network/dns/searchDomains"), json::array({"lab.example"}));
}

TEST_F(ChangeApplicationTest, ASuffixThatIsNoNameChangesNoDnsSetting) {
    pending_.hostname = "node-d";
    pending_.suffixes = "good.example a..b";
    Apply();
    EXPECT_TRUE(host_->Made("error: Setting DNS failed: Invalid search domain: a..b"));
    EXPECT_TRUE(host_->StartingWith("DnsConfig.").empty());
    EXPECT_EQ(At("/network/dns/hostname"), "kovo-host-01");
    EXPECT_EQ(At("/network/dns/searchDomains"), json::array({"lab.example"}));
}

TEST_F(ChangeApplicationTest, AdaptersFollowTheOperatorsOrder) {
    pending_.adapters = {"zennic2", "zennic0"};
    Apply();
    const Calls expected = {
        "log: Setting adapters to zennic2 zennic0",
        "VirtualSwitchInfo.RemoveUplink",
        "VirtualSwitchInfo.SetTeamingPolicy",
        "VirtualSwitchInfo.AddUplink",
        "VirtualSwitchInfo.SetTeamingPolicy",
        // The first adapter chosen differs from the first uplink: its MAC address goes to the interface.
        "ZenkNic.SetMacAddressFromPnic",
    };
    const Calls made = host_->From("log: Setting adapters");
    ASSERT_GE(made.size(), expected.size());
    EXPECT_EQ(Calls(made.begin(), made.begin() + static_cast<long>(expected.size())), expected);
    EXPECT_EQ(At("/network/zenkNics/0/mac"), "00:1b:21:4a:20:00");
    EXPECT_EQ(At("/network/switches/0/uplinks"), json::array({"zennic0", "zennic2"}));
    EXPECT_EQ(At("/network/switches/0/teaming/uplinkOrder"), json::array({"zennic0", "zennic2"}));
}

TEST_F(ChangeApplicationTest, VlanChangeRestartsTheInterface) {
    pending_.vlan = 42;
    Apply();
    EXPECT_EQ(At("/network/switches/0/portGroups/0/vlanId"), 42);
    const Calls restart = host_->From("log: Changed vlan, restarting management interface");
    ASSERT_GE(restart.size(), 4u);
    EXPECT_EQ(Calls(restart.begin() + 1, restart.begin() + 4),
              (Calls{"ZenkNic.Disable", "ZenkNic.Commit", "ZenkNic.Enable"}));
    EXPECT_LT(Position("VirtualSwitchInfo.SetPortGroupVlan"), Position("ZenkNic.Disable"));
}

TEST_F(ChangeApplicationTest, DistributedSwitchKeepsItsAdaptersAndVlanButTakesIpAndDns) {
    Make(Scenario("dvs"));
    pending_.adapters = {"zennic3"};
    pending_.vlan = 7;
    pending_.applied.SetIpv4Address(Ipv4Address("10.20.30.60"));
    pending_.hostname = "dvs-host";
    Apply();
    EXPECT_FALSE(LoggedStartingWith("Setting adapters"));
    EXPECT_TRUE(host_->StartingWith("VirtualSwitchInfo.").empty());
    EXPECT_TRUE(host_->StartingWith("DVPort.").empty());
    EXPECT_TRUE(host_->StartingWith("ZenkNic.SetMacAddress").empty());
    EXPECT_TRUE(LoggedStartingWith("Setting ipv4 configuration to 10.20.30.60"));
    EXPECT_EQ(At("/network/dns/hostname"), "dvs-host");
}

TEST_F(ChangeApplicationTest, AnUnknownConnectionIsTreatedAsAStandardSwitch) {
    pending_.applied.SetIpv4Address(Ipv4Address("10.20.30.50"));
    Fault("ZenkNic.GetConnectionPoint", "port table busy");
    Apply();
    EXPECT_TRUE(host_->Made("log: Could not determine if a DVS was in use: port table busy"));
    // The switch side cannot be read either: logged, nothing changed there, and the rest applies.
    EXPECT_TRUE(host_->Made("error: Getting switch name failed: port table busy"));
    EXPECT_TRUE(host_->StartingWith("VirtualSwitchInfo.").empty());
    EXPECT_EQ(At("/network/zenkNics/0/ipConfig/ipv4/address"), "10.20.30.50");

    // An interface gone since the window read it: said so, and its first write fails visibly.
    Make(Scenario("default"));
    pending_.changed = true;
    store_->Get()->Update([](json& d) { d["network"]["zenkNics"] = json::array(); });
    Apply();
    EXPECT_TRUE(host_->Made("error: Could not locate the management interface"));
    // The uplinks cannot be read, so the MAC address is left alone; the first write then fails.
    EXPECT_TRUE(host_->StartingWith("ZenkNic.SetMac").empty());
    EXPECT_TRUE(
        host_->Made("error: Setting ip configuration failed: Kernel network interface zk0 does not exist"));
    EXPECT_EQ(Made().back(), "refresh");
}

// A failure of each guarded step is logged and shown, and ends the run but for the refresh.
TEST_F(ChangeApplicationTest, AFailedStepIsLoggedShownAndEndsTheRunButTheRefresh) {
    const struct {
        const char* fault;
        const char* line;
        const char* notAfter;  // a call that must not be made once the step failed
    } steps[] = {
        {"ZenkNic.SetMacAddressFromPnic", "Setting mac address of zennic failed: ", "ZenkNic.SetIpConfig"},
        {"ZenkNic.GetIpConfig", "Setting ip configuration failed: ", "NetworkInfo.SetZenkIpv6Enabled"},
        {"NetworkInfo.SetZenkIpv6Enabled", "Setting ipv6 configuration failed: ", "ZenkNic.SetIpConfig"},
        {"ZenkNic.SetIpConfig",
         "Setting ip/ipv6 configuration failed: ", "RoutingInfo.SetZenKernelDefaultGateway"},
        {"RoutingInfo.SetZenKernelDefaultGateway",
         "Setting default gateway failed: ", "RoutingInfo.SetIpv6ZenKernelDefaultGateway"},
        {"RoutingInfo.SetIpv6ZenKernelDefaultGateway",
         "Setting default ipv6 gateway failed: ", "DnsConfig.RemoveNameServers"},
        {"DnsConfig.SetFqdn", "Setting DNS failed: ", "DnsConfig.SaveConfig"},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.fault);
        Make(Scenario("default"));
        pending_.adapters = {"zennic1", "zennic0"};
        pending_.applied.SetIpv4Address(Ipv4Address("10.20.30.50"));
        pending_.ipv6GatewayChanged = true;
        Fault(step.fault, "the host refused");
        Apply();
        const std::string line = std::string(step.line) + "the host refused";
        const Calls tail = host_->From("error: " + line);
        if (tail.empty()) {
            ADD_FAILURE() << "no line " << line;
            continue;
        }
        // The operator was shown the same line, then only the refresh followed.
        EXPECT_EQ(tail.back(), "refresh");
        EXPECT_EQ(tail.size(), 2u);
        EXPECT_FALSE(host_->Made(step.notAfter));
        // The message dialog read the Enter typed for it.
        EXPECT_FALSE(KeysWaiting());
    }
}

TEST_F(ChangeApplicationTest, UplinkAndVlanFailuresAreLoggedAndTheRestApplies) {
    pending_.adapters = {"zennic0", "zennic1", "zennic2"};
    pending_.vlan = 5;
    pending_.applied.SetIpv4Address(Ipv4Address("10.20.30.50"));
    Fault("VirtualSwitchInfo.AddUplink", "no free port");
    Fault("VirtualSwitchInfo.SetPortGroupVlan", "vlan refused");
    Apply();
    EXPECT_TRUE(host_->Made("error: Adding uplink zennic2 failed: no free port"));
    EXPECT_TRUE(host_->Made("error: Setting VlanID failed: vlan refused"));
    EXPECT_FALSE(LoggedStartingWith("Changed vlan"));
    EXPECT_EQ(At("/network/zenkNics/0/ipConfig/ipv4/address"), "10.20.30.50");
    EXPECT_EQ(Made().back(), "refresh");
}

// On a host that undoes a change by itself, the steps run inside the change, which is put in place after
// the last of them and kept only when the operator says so.
TEST_F(ChangeApplicationTest, OnAnUndoingHostTheStepsRunInsideAChangeTheOperatorKeeps) {
    Make(Scenario("default"), true);
    pending_.applied.SetIpv4Address(Ipv4Address("10.20.30.50"));
    Apply("y");
    const std::size_t begin = Position("Network.BeginChange 120"), step = Position("ZenkNic.SetIpConfig"),
                      last = Position("DnsConfig.SaveConfig"), apply = Position("Change.Apply"),
                      keep = Position("Change.Keep");
    EXPECT_LT(begin, step);
    EXPECT_LT(last, apply);
    EXPECT_LT(apply, keep);
    EXPECT_LT(keep, Made().size());
    EXPECT_EQ(Position("Change.RollBack"), Made().size());
    EXPECT_EQ(Made().back(), "refresh");
    EXPECT_TRUE(addressShown_);
}

TEST_F(ChangeApplicationTest, OnAnUndoingHostNoEscOrTimeRunningOutRestoresThePreviousNetwork) {
    struct Case {
        std::string keys;
        int secondsLeft;
    };
    for (const Case& answer : {Case{"n\n", 120}, Case{Keys::kEsc + "\n", 120}, Case{"\n", 0}}) {
        Make(Scenario("default"), true);
        host_->change.secondsLeft = answer.secondsLeft;
        pending_.applied.SetIpv4Address(Ipv4Address("10.20.30.50"));
        Apply(answer.keys);
        EXPECT_LT(Position("Change.Apply"), Position("Change.RollBack")) << answer.keys;
        EXPECT_EQ(Position("Change.Keep"), Made().size()) << answer.keys;
        EXPECT_TRUE(host_->Made("log: Restored the previous network configuration")) << answer.keys;
        EXPECT_EQ(Made().back(), "refresh") << answer.keys;
    }
}

TEST_F(ChangeApplicationTest, OnAnUndoingHostAFailedStepOrAFailedApplyRestoresThePreviousNetwork) {
    Make(Scenario("default"), true);
    pending_.applied.SetIpv4Address(Ipv4Address("10.20.30.50"));
    Fault("RoutingInfo.SetZenKernelDefaultGateway", "the host refused");
    Apply(std::string(Keys::kEnter) + Keys::kEnter);
    EXPECT_TRUE(host_->Made("error: Setting default gateway failed: the host refused"));
    EXPECT_EQ(Position("Change.Apply"), Made().size());
    EXPECT_LT(Position("Change.RollBack"), Made().size());

    Make(Scenario("default"), true);
    host_->change.applyFailure = "the bridge would not come up";
    pending_.applied.SetIpv4Address(Ipv4Address("10.20.30.50"));
    Apply(std::string(Keys::kEnter) + Keys::kEnter);
    EXPECT_TRUE(host_->Made(
        "error: Putting the network configuration in place failed: the bridge would not come up"));
    EXPECT_LT(Position("Change.Apply"), Position("Change.RollBack"));
    EXPECT_TRUE(host_->Made("log: Restored the previous network configuration"));
}

}  // namespace
}  // namespace Kovo
