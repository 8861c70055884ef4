// The management network as the network service's profiles: every shape the console makes reads back
// as it was written, the profiles have the shape the service needs (a bridge, its ports or a bond under
// it, a VLAN link on it), and profiles an operator edited or made are read for what they are.
#include <gtest/gtest.h>

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/Ipv4Address.h"
#include "platform/hostctl/Ipv6Network.h"
#include "platform/linux/ManagementProfiles.h"

namespace LinuxHost {
namespace {

using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv6Address;
using HostCtl::Network::Ipv6Network;
using Value = Bus::Value;

// Profiles as the service would hand them back: each with a path and a UUID.
std::vector<NmProfile> Stored(const std::vector<Value>& rendered) {
    std::vector<NmProfile> profiles;
    int n = 0;
    for (Value settings : rendered) {
        ++n;
        settings["connection"]["uuid"] = Bus::Variant("s", "uuid-" + std::to_string(n));
        profiles.push_back({"/org/freedesktop/NetworkManager/Settings/" + std::to_string(n), settings});
    }
    return profiles;
}

ManagementNetwork Dhcp(std::vector<std::string> uplinks) {
    ManagementNetwork network;
    network.uplinks = std::move(uplinks);
    network.ip.SetUseDhcp(true);
    network.ip.SetDnsFromDhcp(true);
    return network;
}

ManagementNetwork Static(std::vector<std::string> uplinks, int vlan) {
    ManagementNetwork network;
    network.uplinks = std::move(uplinks);
    network.vlan = vlan;
    network.mac = "52:54:00:77:00:03";
    network.ip.SetUseDhcp(false);
    network.ip.SetIpv4Address(Ipv4Address("10.1.2.3"));
    network.ip.SetIpv4Netmask(Ipv4Address("255.255.252.0"));
    network.ip.SetIpv4Gateway(Ipv4Address("10.1.0.1"));
    network.ip.AddIpv6Network(Ipv6Network("fd00:1::5/64"));
    network.ip.AddIpv6Network(Ipv6Network("fd00:2::5/112"));
    network.ip.SetIpv6Gateway(Ipv6Address("fd00:1::1"));
    network.nameServers = {"10.1.0.53", "10.1.0.54", "fd00:1::53"};
    network.searchDomains = {"corp.example", "example"};
    return network;
}

const Value* WithRole(const std::vector<Value>& rendered, const std::string& role,
                      const std::string& interface) {
    for (const Value& settings : rendered)
        if (ManagementProfiles::Key(settings) == role + " " + interface) return &settings;
    return nullptr;
}

std::string Text(const Value& settings, const char* setting, const char* key) {
    return settings.at(setting).at(key).at("v").get<std::string>();
}

TEST(ManagementProfiles, EveryShapeReadsBackAsItWasWritten) {
    std::vector<ManagementNetwork> networks = {Dhcp({"ens3"}), Dhcp({}), Static({"ens4", "ens3"}, 0),
                                               Static({"ens5", "ens3", "ens4"}, 4094), Static({"ens3"}, 20)};
    // IPv4 off; IPv6 from router advertisements alone, with DHCPv6 beside them, and DHCPv6 alone.
    ManagementNetwork off = Dhcp({"ens3"});
    off.ip.SetIpv4UseNone();
    networks.push_back(off);
    for (const auto& [ra, dhcp] : {std::pair{true, false}, {true, true}, {false, true}}) {
        ManagementNetwork v6 = Dhcp({"ens3"});
        v6.ip.SetUseIpv6RouterAdvertised(ra);
        v6.ip.SetUseIpv6Dhcp(dhcp);
        networks.push_back(v6);
    }
    // Servers set by the operator while the addresses still come from DHCP.
    ManagementNetwork servers = Dhcp({"ens3"});
    servers.ip.SetDnsFromDhcp(false);
    servers.nameServers = {"192.0.2.1"};
    networks.push_back(servers);
    // IPv4 off: the search domains go with IPv6.
    ManagementNetwork v6only = off;
    v6only.ip.SetUseIpv6RouterAdvertised(true);
    v6only.searchDomains = {"corp.example"};
    networks.push_back(v6only);

    for (const ManagementNetwork& network : networks) {
        const std::optional<ManagementNetwork> read =
            ManagementProfiles::Parse(Stored(ManagementProfiles::Render(network)));
        ASSERT_TRUE(read.has_value());
        EXPECT_EQ(*read, network) << ManagementProfiles::Render(network)[0].dump();
    }
}

// The service refuses name settings on a family without addresses, with a message about its own fields:
// the console says what is missing instead.
TEST(ManagementProfiles, NameSettingsNeedAFamilyWithAddresses) {
    ManagementNetwork v6servers = Dhcp({"ens3"});
    v6servers.nameServers = {"fd00:1::53"};
    ManagementNetwork v4servers = Dhcp({"ens3"});
    v4servers.ip.SetIpv4UseNone();
    v4servers.ip.SetUseIpv6RouterAdvertised(true);
    v4servers.nameServers = {"10.1.0.53"};
    ManagementNetwork domains = Dhcp({"ens3"});
    domains.ip.SetIpv4UseNone();
    domains.searchDomains = {"corp.example"};
    for (const auto& [network, message] : {std::pair{v6servers, "IPv6 name servers need IPv6"},
                                           {v4servers, "IPv4 name servers need"},
                                           {domains, "Search domains need"}}) {
        try {
            ManagementProfiles::Render(network);
            ADD_FAILURE() << message << ": rendered";
        } catch (const HostCtl::Lib::HostCtlException& e) {
            EXPECT_NE(std::string(e.what()).find(message), std::string::npos) << e.what();
        }
    }
}

// One uplink as a port of the bridge, the name servers in the service's byte order and the bridge's MAC
// are the lab's to prove against the real service; bonds and VLANs the lab's kernel cannot make.
TEST(ManagementProfiles, TwoUplinksAreAnActiveBackupBondUnderTheBridgeFirstOnePrimary) {
    const std::vector<Value> rendered = ManagementProfiles::Render(Static({"ens4", "ens3"}, 0));
    const Value* bond = WithRole(rendered, "bond", "mgmtbond0");
    ASSERT_NE(bond, nullptr);
    EXPECT_EQ(Text(*bond, "connection", "master"), "xswitch0");
    EXPECT_EQ(Text(*bond, "connection", "slave-type"), "bridge");
    EXPECT_EQ((*bond)["bond"]["options"]["v"],
              Value::parse(R"({"mode":"active-backup","primary":"ens4","miimon":"100"})"));
    // A port of the bridge, it carries no address settings of its own.
    EXPECT_FALSE(bond->contains("ipv4"));
    for (const char* nic : {"ens3", "ens4"}) {
        const Value* port = WithRole(rendered, "port", nic);
        ASSERT_NE(port, nullptr) << nic;
        EXPECT_EQ(Text(*port, "connection", "master"), "mgmtbond0") << nic;
        EXPECT_EQ(Text(*port, "connection", "slave-type"), "bond") << nic;
    }
}

TEST(ManagementProfiles, AVlanIsALinkOnTheBridgeThatHoldsTheAddress) {
    const ManagementNetwork network = Static({"ens3"}, 20);
    const std::vector<Value> rendered = ManagementProfiles::Render(network);
    EXPECT_EQ(ManagementProfiles::Interface(network), "xswitch0.20");
    EXPECT_EQ(Text(rendered[0], "ipv4", "method"), "disabled");
    EXPECT_EQ(Text(rendered[0], "ipv6", "method"), "disabled");
    const Value* vlan = WithRole(rendered, "vlan", "xswitch0.20");
    ASSERT_NE(vlan, nullptr);
    EXPECT_EQ(Text(*vlan, "vlan", "parent"), "xswitch0");
    EXPECT_EQ((*vlan)["vlan"]["id"]["v"], 20);
    EXPECT_EQ(Text(*vlan, "ipv4", "method"), "manual");
    EXPECT_EQ(Text(*vlan, "ipv6", "gateway"), "fd00:1::1");
}

TEST(ManagementProfiles, ProfilesAnOperatorEditedOrMadeAreReadForWhatTheyAre) {
    std::vector<NmProfile> profiles = Stored(ManagementProfiles::Render(Static({"ens5", "ens3", "ens4"}, 0)));
    for (NmProfile& profile : profiles) {
        // Renamed, and the ports pointing at their bond by its UUID.
        profile.settings["connection"]["id"] = Bus::Variant("s", "renamed");
        if (ManagementProfiles::RoleOf(profile) == "port")
            profile.settings["connection"]["master"] = Bus::Variant("s", profiles[1].Uuid());
    }
    // A port gone and one more added by hand: the written order for those left, the new one after them.
    profiles.erase(profiles.begin() + 2);
    NmProfile extra = profiles.back();
    extra.path += "0";
    extra.settings["connection"]["interface-name"] = Bus::Variant("s", "ens9");
    profiles.push_back(extra);
    // Another tool's profile on a NIC of the bond counts for nothing.
    profiles.push_back({"/x", Value::parse(R"({"connection":{"id":{"t":"s","v":"Wired"},
        "interface-name":{"t":"s","v":"ens3"},"type":{"t":"s","v":"802-3-ethernet"}}})")});
    const std::optional<ManagementNetwork> read = ManagementProfiles::Parse(profiles);
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->uplinks, (std::vector<std::string>{"ens3", "ens4", "ens9"}));

    // Without the console's bridge there is no management network of its own.
    EXPECT_FALSE(ManagementProfiles::Parse({profiles.back()}).has_value());

    // A VLAN profile without its id cannot be followed, and says so.
    std::vector<NmProfile> vlan = Stored(ManagementProfiles::Render(Static({"ens3"}, 20)));
    vlan.back().settings["vlan"].erase("id");
    EXPECT_THROW(ManagementProfiles::Parse(vlan), HostCtl::Lib::HostCtlException);
}

}  // namespace
}  // namespace LinuxHost
