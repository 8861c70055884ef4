#include "platform/linux/ManagementProfiles.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cctype>

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/Ipv4Address.h"
#include "platform/hostctl/Ipv6Address.h"

namespace LinuxHost {

namespace {

using HostCtl::Network::IpConfig;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv6Address;
using HostCtl::Network::Ipv6Network;
using Value = Bus::Value;

// User data keys besides the role: the teaming order of three or more uplinks (a bond's primary says only
// which comes first), and whether DHCPv6 was asked for alongside router advertisements (the service's
// "auto" method does DHCPv6 whenever the router says so, either way).
constexpr const char* kOrderKey = "kovo.order";
constexpr const char* kIpv6DhcpKey = "kovo.ipv6-dhcp";

Value Text(const std::string& text) {
    return Bus::Variant("s", text);
}

Value Connection(const std::string& id, const char* type, const std::string& interface) {
    return {{"id", Text(id)},
            {"type", Text(type)},
            {"interface-name", Text(interface)},
            {"autoconnect", Bus::Variant("b", true)}};
}

Value UserData(Value data) {
    return {{"data", Bus::Variant("a{ss}", std::move(data))}};
}

// IPv4 name servers as the service takes them: addresses in network byte order.
uint32_t NetworkOrder(const Ipv4Address& address) {
    return htonl(address.GetHostOrder());
}

Value AddressData(const std::string& address, int prefix) {
    return {{"address", Text(address)}, {"prefix", Bus::Variant("u", prefix)}};
}

bool IsIpv6(const std::string& server) {
    return server.find(':') != std::string::npos;
}

// The IP settings of the profile that holds the management address.
void RenderIp(const ManagementNetwork& network, Value& settings) {
    const IpConfig& ip = network.ip;
    Value ipv4 = Value::object();
    if (ip.GetUseDhcp()) {
        ipv4["method"] = Text("auto");
    } else if (ip.GetIpv4UseNone()) {
        ipv4["method"] = Text("disabled");
    } else {
        ipv4["method"] = Text("manual");
        ipv4["address-data"] =
            Bus::Variant("aa{sv}", Value::array({AddressData(ip.GetIpv4Address().GetStringAddress(),
                                                             ip.GetIpv4Netmask().GetPrefixLength())}));
        if (!ip.GetIpv4Gateway().IsUnspecified())
            ipv4["gateway"] = Text(ip.GetIpv4Gateway().GetStringAddress());
    }

    Value ipv6 = Value::object();
    std::vector<Ipv6Network> statics;
    for (const Ipv6Network& net : ip.GetIpv6Network())
        if (net.GetIpv6AddressType() == HostCtl::Network::IPV6_ADDRESS_STATIC) statics.push_back(net);
    if (ip.GetUseIpv6RouterAdvertised())
        ipv6["method"] = Text("auto");
    else if (ip.GetUseIpv6Dhcp())
        ipv6["method"] = Text("dhcp");
    else if (!statics.empty())
        ipv6["method"] = Text("manual");
    else
        ipv6["method"] = Text("link-local");
    if (!statics.empty()) {
        Value addresses = Value::array();
        for (const Ipv6Network& net : statics)
            addresses.push_back(AddressData(net.GetStringAddress(), net.GetPrefixLength()));
        ipv6["address-data"] = Bus::Variant("aa{sv}", addresses);
    }
    if (!ip.GetIpv6Gateway().IsUnspecified()) ipv6["gateway"] = Text(ip.GetIpv6Gateway().GetStringAddress());

    // Servers the operator set count alone; DHCP's come on top only where they are asked for.
    const bool fromDhcp = ip.GetDnsFromDhcp();
    ipv4["ignore-auto-dns"] = Bus::Variant("b", !fromDhcp);
    ipv6["ignore-auto-dns"] = Bus::Variant("b", !fromDhcp);
    Value servers4 = Value::array(), servers6 = Value::array();
    for (const std::string& server : network.nameServers) {
        if (IsIpv6(server)) {
            const Ipv6Address address(server);
            const auto& bytes = address.GetBytes();
            servers6.push_back(Value(std::vector<uint8_t>(bytes.begin(), bytes.end())));
        } else {
            servers4.push_back(NetworkOrder(Ipv4Address(server)));
        }
    }
    // The service takes name servers and search domains only on a family that has addresses.
    const bool hasIpv4 = !ip.GetIpv4UseNone();
    const bool hasIpv6 = ip.GetUseIpv6RouterAdvertised() || ip.GetUseIpv6Dhcp() || !statics.empty();
    if (!servers4.empty() && !hasIpv4)
        throw HostCtl::Lib::HostCtlException(
            "IPv4 name servers need an IPv4 address on the management interface");
    if (!servers6.empty() && !hasIpv6)
        throw HostCtl::Lib::HostCtlException(
            "IPv6 name servers need IPv6 on the management interface: router advertisements, DHCPv6 or a "
            "static IPv6 address");
    if (!network.searchDomains.empty() && !hasIpv4 && !hasIpv6)
        throw HostCtl::Lib::HostCtlException("Search domains need an IP address on the management interface");
    if (!servers4.empty()) ipv4["dns"] = Bus::Variant("au", servers4);
    if (!servers6.empty()) ipv6["dns"] = Bus::Variant("aay", servers6);
    if (!network.searchDomains.empty())
        (hasIpv4 ? ipv4 : ipv6)["dns-search"] = Bus::Variant("as", network.searchDomains);

    settings["ipv4"] = std::move(ipv4);
    settings["ipv6"] = std::move(ipv6);
    settings["user"]["data"]["v"][kIpv6DhcpKey] = ip.GetUseIpv6Dhcp() ? "yes" : "no";
}

// A bridge or bond that carries no address of its own.
void RenderNoIp(Value& settings) {
    settings["ipv4"] = {{"method", Text("disabled")}};
    settings["ipv6"] = {{"method", Text("disabled")}};
}

Value Port(const std::string& nic, const std::string& controller, const char* portType) {
    Value connection =
        Connection(std::string(ManagementProfiles::kName) + " port " + nic, "802-3-ethernet", nic);
    connection["master"] = Text(controller);
    connection["slave-type"] = Text(portType);
    return {{"connection", connection}, {"user", UserData({{ManagementProfiles::kRoleKey, "port"}})}};
}

const Value& Setting(const NmProfile& profile, const char* setting, const char* key) {
    return profile.Get(setting, key);
}

std::string UserValue(const NmProfile& profile, const char* key) {
    const Value& data = profile.Get("user", "data");
    const auto found = data.is_object() ? data.find(key) : data.end();
    return data.is_object() && found != data.end() && found->is_string() ? found->get<std::string>() : "";
}

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        if (end > start) parts.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

void ParseIp(const NmProfile& profile, ManagementNetwork& network) {
    IpConfig& ip = network.ip;
    const std::string method4 = profile.Text("ipv4", "method");
    if (method4 == "auto") {
        ip.SetUseDhcp(true);
    } else if (method4 == "manual") {
        ip.SetUseDhcp(false);
        const Value& addresses = Setting(profile, "ipv4", "address-data");
        if (addresses.is_array() && !addresses.empty()) {
            const Value& first = addresses[0];
            ip.SetIpv4Address(Ipv4Address(first.at("address").at("v").get<std::string>()));
            ip.SetIpv4Netmask(Ipv4Address::FromPrefixLength(first.at("prefix").at("v").get<int>()));
        }
        const std::string gateway = profile.Text("ipv4", "gateway");
        if (!gateway.empty()) ip.SetIpv4Gateway(Ipv4Address(gateway));
    } else {
        ip.SetIpv4UseNone();
    }

    const std::string method6 = profile.Text("ipv6", "method");
    ip.SetUseIpv6RouterAdvertised(method6 == "auto");
    ip.SetUseIpv6Dhcp(method6 == "dhcp" || (method6 == "auto" && UserValue(profile, kIpv6DhcpKey) != "no"));
    const Value& addresses6 = Setting(profile, "ipv6", "address-data");
    if (addresses6.is_array())
        for (const Value& address : addresses6)
            ip.AddIpv6Network(Ipv6Network(Ipv6Address(address.at("address").at("v").get<std::string>()),
                                          address.at("prefix").at("v").get<int>()));
    const std::string gateway6 = profile.Text("ipv6", "gateway");
    if (!gateway6.empty()) ip.SetIpv6Gateway(Ipv6Address(gateway6));

    const Value& ignore = Setting(profile, "ipv4", "ignore-auto-dns");
    ip.SetDnsFromDhcp(!(ignore.is_boolean() && ignore.get<bool>()));
    const Value& servers4 = Setting(profile, "ipv4", "dns");
    if (servers4.is_array())
        for (const Value& server : servers4)
            network.nameServers.push_back(
                Ipv4Address::FromHostOrder(ntohl(server.get<uint32_t>())).GetStringAddress());
    const Value& servers6 = Setting(profile, "ipv6", "dns");
    if (servers6.is_array())
        for (const Value& server : servers6) {
            std::array<uint8_t, 16> bytes{};
            if (!server.is_array() || server.size() != bytes.size()) continue;
            for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = server[i].get<uint8_t>();
            network.nameServers.push_back(Ipv6Address(bytes).GetStringAddress());
        }
    for (const char* family : {"ipv4", "ipv6"}) {
        const Value& search = Setting(profile, family, "dns-search");
        if (search.is_array())
            for (const Value& domain : search) network.searchDomains.push_back(domain.get<std::string>());
    }
}

}  // namespace

std::string ManagementProfiles::Interface(const ManagementNetwork& network) {
    return network.vlan == 0 ? kBridge : std::string(kBridge) + "." + std::to_string(network.vlan);
}

std::vector<Bus::Value> ManagementProfiles::Render(const ManagementNetwork& network) {
    std::vector<Value> profiles;

    Value bridgeConnection = Connection(kName, "bridge", kBridge);
    // Bringing the bridge up brings its ports (and theirs) up with it.
    bridgeConnection["autoconnect-slaves"] = Bus::Variant("i", 1);
    Value bridge = {{"connection", bridgeConnection},
                    {"bridge", {{"stp", Bus::Variant("b", false)}}},
                    {"user", UserData({{kRoleKey, "bridge"}})}};
    // The service's bus name for the MAC an interface takes, as text ("cloned-mac-address" wants bytes).
    if (!network.mac.empty()) bridge["802-3-ethernet"] = {{"assigned-mac-address", Text(network.mac)}};
    if (network.vlan == 0)
        RenderIp(network, bridge);
    else
        RenderNoIp(bridge);
    profiles.push_back(std::move(bridge));

    if (network.uplinks.size() >= 2) {
        Value bondConnection = Connection(std::string(kName) + " bond", "bond", kBond);
        bondConnection["master"] = Text(kBridge);
        bondConnection["slave-type"] = Text("bridge");
        bondConnection["autoconnect-slaves"] = Bus::Variant("i", 1);
        std::string order;
        for (const std::string& nic : network.uplinks) order += (order.empty() ? "" : ",") + nic;
        profiles.push_back({{"connection", bondConnection},
                            {"bond",
                             {{"options", Bus::Variant("a{ss}", {{"mode", "active-backup"},
                                                                 {"primary", network.uplinks.front()},
                                                                 {"miimon", "100"}})}}},
                            {"user", UserData({{kRoleKey, "bond"}, {kOrderKey, order}})}});
        for (const std::string& nic : network.uplinks) profiles.push_back(Port(nic, kBond, "bond"));
    } else {
        for (const std::string& nic : network.uplinks) profiles.push_back(Port(nic, kBridge, "bridge"));
    }

    if (network.vlan != 0) {
        Value vlan = {{"connection", Connection(std::string(kName) + " VLAN " + std::to_string(network.vlan),
                                                "vlan", Interface(network))},
                      {"vlan", {{"parent", Text(kBridge)}, {"id", Bus::Variant("u", network.vlan)}}},
                      {"user", UserData({{kRoleKey, "vlan"}})}};
        RenderIp(network, vlan);
        profiles.push_back(std::move(vlan));
    }
    return profiles;
}

std::optional<ManagementNetwork> ManagementProfiles::Parse(const std::vector<NmProfile>& profiles) {
    try {
        return ParseProfiles(profiles);
    } catch (const Value::exception& e) {
        // An operator's edit the service took but the console cannot follow.
        throw HostCtl::Lib::HostCtlException(
            std::string("The management network's profiles cannot be read: ") + e.what());
    }
}

std::optional<ManagementNetwork> ManagementProfiles::ParseProfiles(const std::vector<NmProfile>& profiles) {
    const NmProfile* bridge = nullptr;
    const NmProfile* bond = nullptr;
    const NmProfile* vlan = nullptr;
    std::vector<const NmProfile*> ports;
    for (const NmProfile& profile : profiles) {
        const std::string role = RoleOf(profile);
        if (role == "bridge" && !bridge) bridge = &profile;
        if (role == "bond" && !bond) bond = &profile;
        if (role == "vlan" && !vlan) vlan = &profile;
        if (role == "port") ports.push_back(&profile);
    }
    if (!bridge) return std::nullopt;

    ManagementNetwork network;
    // The service gives it in capitals; the kernel, and so every other MAC the console shows, in small
    // letters.
    network.mac = bridge->Text("802-3-ethernet", "assigned-mac-address");
    std::transform(network.mac.begin(), network.mac.end(), network.mac.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (vlan) {
        network.vlan = Setting(*vlan, "vlan", "id").get<int>();  // the service always states it
        ParseIp(*vlan, network);
    } else {
        ParseIp(*bridge, network);
    }

    // Ports name their controller by interface or by profile UUID.
    auto portsOf = [&](const NmProfile& controller) {
        std::vector<std::string> nics;
        for (const NmProfile* port : ports) {
            const std::string master = port->Controller();
            if (master == controller.InterfaceName() || master == controller.Uuid())
                nics.push_back(port->InterfaceName());
        }
        std::sort(nics.begin(), nics.end());
        return nics;
    };
    if (bond) {
        std::vector<std::string> nics = portsOf(*bond);
        // The order the console wrote, for the ports still there; any other after them.
        std::vector<std::string> order;
        for (const std::string& nic : Split(UserValue(*bond, kOrderKey), ','))
            if (std::find(nics.begin(), nics.end(), nic) != nics.end()) order.push_back(nic);
        for (const std::string& nic : nics)
            if (std::find(order.begin(), order.end(), nic) == order.end()) order.push_back(nic);
        network.uplinks = order;
    } else {
        network.uplinks = portsOf(*bridge);
    }
    return network;
}

void ManagementProfiles::ReadIp(const NmProfile& profile, ManagementNetwork& network) {
    try {
        ParseIp(profile, network);
    } catch (const Value::exception& e) {
        throw HostCtl::Lib::HostCtlException("The profile " + profile.Id() + " cannot be read: " + e.what());
    }
}

std::string ManagementProfiles::RoleOf(const NmProfile& profile) {
    return UserValue(profile, kRoleKey);
}

std::string ManagementProfiles::Key(const Bus::Value& settings) {
    return settings.at("user").at("data").at("v").at(kRoleKey).get<std::string>() + " " +
           settings.at("connection").at("interface-name").at("v").get<std::string>();
}

std::string ManagementProfiles::Key(const NmProfile& profile) {
    return RoleOf(profile) + " " + profile.InterfaceName();
}

}  // namespace LinuxHost
