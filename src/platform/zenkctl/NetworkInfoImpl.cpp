#include "platform/zenkctl/NetworkInfoImpl.h"

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/Portset.h"
#include "platform/hostctl/ShellWords.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"
#include "platform/zenkctl/PnicImpl.h"
#include "platform/zenkctl/ZenkNicImpl.h"
#include "platform/zenkctl/ZenkNicRuntime.h"

using HostCtl::Lib::HostCtlException;
using nlohmann::json;
namespace Schema = ZenkCtl::Store::Schema;

namespace ZenkCtl::Network {

NetworkInfoImpl::NetworkInfoImpl(std::shared_ptr<Store::HostStore> store) : _store(std::move(store)) {}

std::vector<std::unique_ptr<HostCtl::Network::Pnic>> NetworkInfoImpl::GetPnics() {
    std::vector<std::unique_ptr<HostCtl::Network::Pnic>> pnics;
    const auto snapshot = _store->Snapshot();
    const json& document = *snapshot;
    const json& list = Json::At(document, Schema::kPnics);
    if (!list.is_null() && !list.is_array())
        throw HostCtlException("Host configuration /network/pnics is not a list");
    for (const auto& node : list) pnics.push_back(std::make_unique<PnicImpl>(node));
    return pnics;
}

void NetworkInfoImpl::UpdateManagementInterface() {
    const auto snapshot = _store->Snapshot();
    const json& document = *snapshot;
    const json* nic = Json::ManagementNic(document);
    const std::string name = nic ? Json::Text(*nic, "name") : std::string();
    if (!name.empty() && !HostCtl::Network::IsValidInterfaceName(name))
        throw HostCtlException("Host configuration names the management interface " +
                               HostCtl::QuoteShellWord(name) + ", which is not an interface name");
    _management = name;
    _looked = true;
}

std::string NetworkInfoImpl::GetManagementInterfaceName() {
    if (!_looked) UpdateManagementInterface();
    return _management;
}

std::unique_ptr<HostCtl::Network::ZenkNic> NetworkInfoImpl::GetManagementInterface() {
    const std::string name = GetManagementInterfaceName();
    if (name.empty()) return nullptr;
    return std::make_unique<ZenkNicImpl>(name, _store);
}

bool NetworkInfoImpl::IsZenkIpv6Enabled() {
    return Json::Flag(_store->Get(Schema::kNetwork), "ipv6Enabled", true);
}

bool NetworkInfoImpl::GetPendingZenkIpv6Enabled() {
    const json pending = _store->Get(Schema::kPendingBoot);
    return pending.is_object() && pending.contains("ipv6Enabled") ? Json::Flag(pending, "ipv6Enabled")
                                                                  : IsZenkIpv6Enabled();
}

void NetworkInfoImpl::SetZenkIpv6Enabled(bool enabled) {
    _store->Update(
        [&](json& document) { Json::ObjectAt(document, Schema::kPendingBoot)["ipv6Enabled"] = enabled; });
}

void NetworkInfoImpl::DisableNetDumper() {
    _store->Update([](json& document) { Json::ObjectAt(document, Schema::kNetDumper)["enabled"] = false; });
}

bool NetworkInfoImpl::IsNetDumperEnabled() {
    return Json::Flag(_store->Get(Schema::kNetDumper), "enabled");
}

void NetworkInfoImpl::ClearNetworkConfig() {
    _store->Update([](json& document) {
        document[json::json_pointer(Schema::kSwitches)] = json::array();
        document[json::json_pointer(Schema::kZenkNics)] = json::array();
        json& dvs = Json::ArrayAt(document, Schema::kDvs);
        for (auto& d : dvs) d["uplinks"] = json::array();
        document[json::json_pointer(Schema::kRouting)] = {{"ipv4DefaultGateway", ""},
                                                          {"ipv6DefaultGateway", ""}};
        json& dns = Json::ObjectAt(document, Schema::kDns);
        dns["nameServers"] = json::array();
        dns["ipv6NameServers"] = json::array();
        dns["searchDomains"] = json::array();
    });
    _looked = false;
}

void NetworkInfoImpl::AutoConfigNetwork() {
    _store->Update([](json& document) {
        const json& pnics = Json::ArrayAt(document, Schema::kPnics);
        if (pnics.empty()) throw HostCtlException("No physical NIC to configure the management network on");
        const json* uplink = &pnics[0];
        for (const auto& p : pnics) {
            if (Json::Flag(p, "linkUp")) {
                uplink = &p;
                break;
            }
        }
        const std::string uplinkName = Json::Text(*uplink, "name");
        const std::string mac = Json::Text(*uplink, "mac");
        json& switches = Json::ArrayAt(document, Schema::kSwitches);
        if (Json::FindNamed(switches, "xSwitch0") != nullptr) {
            throw HostCtlException("Cannot auto-configure the network: xSwitch0 exists already");
        }
        HostCtl::Network::NicTeamingPolicy teaming;
        teaming.SetUplinkOrder({uplinkName});
        switches.push_back({{"name", "xSwitch0"},
                            {"numPorts", HostCtl::Network::Portset::DEF_NUM_PORTS},
                            {"mtu", 1500},
                            {"uplinks", {uplinkName}},
                            {"teaming", Json::FromTeaming(teaming)},
                            {"portGroups", {{{"name", "Management Network"}, {"vlanId", 0}}}}});
        HostCtl::Network::IpConfig config;
        config.SetUseDhcp(true);
        config.SetDnsFromDhcp(true);
        config.SetUseIpv6RouterAdvertised(true);
        json& nics = Json::ArrayAt(document, Schema::kZenkNics);
        nics.push_back({{"name", "zk0"},
                        {"mac", mac},
                        {"mtu", 1500},
                        {"enabled", true},
                        {"management", true},
                        {"connection", {{"type", "portGroup"}, {"portGroup", "Management Network"}}},
                        {"ipConfig", Json::FromIpConfig(config)}});
        ZenkNicRuntime::Apply(document, "zk0");
    });
    _looked = false;
}

}  // namespace ZenkCtl::Network
