#include "platform/zenkctl/ZenkNicRuntime.h"

#include <cstdio>

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"

using nlohmann::json;
using namespace HostCtl::Network;

namespace ZenkCtl::Network {
namespace {

bool ParseMac(const std::string& mac, unsigned char out[6]) {
    if (mac.size() != 17) return false;
    for (int i = 0; i < 6; ++i) {
        const char* p = mac.c_str() + i * 3;
        if (!std::isxdigit(static_cast<unsigned char>(p[0])) ||
            !std::isxdigit(static_cast<unsigned char>(p[1])))
            return false;
        if (i < 5 && p[2] != ':') return false;
        unsigned value = 0;
        std::sscanf(p, "%2x", &value);
        out[i] = static_cast<unsigned char>(value);
    }
    return true;
}

void AddLeaseNetworks(IpConfig& running, const json& list, int type) {
    if (!list.is_array()) return;
    for (const auto& entry : list) {
        const std::string address = Json::Text(entry, "address");
        if (!Ipv6Address::IsValidAddress(address)) continue;
        Ipv6Network network(Ipv6Address(address), static_cast<int>(Json::Integer(entry, "prefixLength", 64)));
        network.SetIpv6AddressType(type);
        running.AddIpv6Network(network);
    }
}

}  // namespace

bool ZenkNicRuntime::IsValidMac(const std::string& mac) {
    unsigned char bytes[6];
    return ParseMac(mac, bytes);
}

std::string ZenkNicRuntime::LinkLocalFor(const std::string& mac) {
    unsigned char m[6];
    if (!ParseMac(mac, m)) return {};
    std::array<uint8_t, 16> bytes{
        0xfe, 0x80, 0,    0,    0,    0,    0,   0, static_cast<uint8_t>(m[0] ^ 0x02),
        m[1], m[2], 0xff, 0xfe, m[3], m[4], m[5]};
    return Ipv6Address(bytes).GetStringAddress();
}

void ZenkNicRuntime::Apply(json& document, const std::string& nicName) {
    try {
        ApplyChecked(document, nicName);
    } catch (const json::exception& e) {
        throw HostCtl::Lib::HostCtlException("The host configuration of " + nicName +
                                             " is malformed: " + e.what());
    }
}

void ZenkNicRuntime::ApplyChecked(json& document, const std::string& nicName) {
    json* nic = Json::FindNamed(Json::ArrayAt(document, Store::Schema::kZenkNics), nicName);
    if (nic == nullptr)
        throw HostCtl::Lib::HostCtlException("Kernel network interface " + nicName + " does not exist");
    const IpConfig configured = Json::ToIpConfig((*nic)["ipConfig"]);
    IpConfig running;
    running.SetUseDhcp(configured.GetUseDhcp(), configured.GetIpv4UseNone());
    running.SetDnsFromDhcp(configured.GetDnsFromDhcp());
    running.SetUseIpv6Dhcp(configured.GetUseIpv6Dhcp());
    running.SetUseIpv6RouterAdvertised(configured.GetUseIpv6RouterAdvertised());

    if (Json::Flag(*nic, "enabled", true)) {
        const json& leases = Json::At(document, Store::Schema::kDhcpLeases);
        const json lease = leases.is_object() && leases.contains(nicName) ? leases[nicName] : json();
        const json v4lease = lease.is_object() && lease.contains("ipv4") ? lease["ipv4"] : json();
        if (configured.GetUseDhcp()) {
            if (v4lease.is_object()) {
                IpConfig fromLease = Json::ToIpConfig({{"ipv4", v4lease}});
                running.SetIpv4Address(fromLease.GetIpv4Address());
                running.SetIpv4Netmask(fromLease.GetIpv4Netmask());
                running.SetIpv4Gateway(fromLease.GetIpv4Gateway());
                if (!fromLease.GetIpv4Gateway().IsUnspecified()) {
                    Json::ObjectAt(document, Store::Schema::kRouting)["ipv4DefaultGateway"] =
                        fromLease.GetIpv4Gateway().GetStringAddress();
                }
                if (configured.GetDnsFromDhcp()) {
                    json& dns = Json::ObjectAt(document, Store::Schema::kDns);
                    dns["nameServers"] = Json::TextList(v4lease, "dns");
                    if (v4lease.contains("domain")) dns["domain"] = Json::Text(v4lease, "domain");
                }
            }
        } else if (!configured.GetIpv4UseNone()) {
            running.SetIpv4Address(configured.GetIpv4Address());
            running.SetIpv4Netmask(configured.GetIpv4Netmask());
            running.SetIpv4Gateway(configured.GetIpv4Gateway());
        }
        if (Json::Flag(document[json::json_pointer(Store::Schema::kNetwork)], "ipv6Enabled", true)) {
            const std::string linkLocal = LinkLocalFor(Json::Text(*nic, "mac"));
            if (!linkLocal.empty()) {
                Ipv6Network ll(Ipv6Address(linkLocal), 64);
                ll.SetIpv6AddressType(IPV6_ADDRESS_OTHER);
                running.AddIpv6Network(ll);
            }
            for (const auto& n : configured.GetIpv6Network()) running.AddIpv6Network(n);
            const json v6lease = lease.is_object() && lease.contains("ipv6") ? lease["ipv6"] : json();
            if (v6lease.is_object()) {
                if (configured.GetUseIpv6RouterAdvertised() && v6lease.contains("ra")) {
                    AddLeaseNetworks(running, v6lease["ra"], IPV6_ADDRESS_AUTOCONF);
                }
                if (configured.GetUseIpv6Dhcp() && v6lease.contains("dhcp")) {
                    AddLeaseNetworks(running, v6lease["dhcp"], IPV6_ADDRESS_DHCP);
                }
            }
            running.SetIpv6Gateway(configured.GetIpv6Gateway());
        }
    }
    (*nic)["running"] = Json::FromIpConfig(running);
}

}  // namespace ZenkCtl::Network
