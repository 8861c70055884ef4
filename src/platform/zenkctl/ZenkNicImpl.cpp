#include "platform/zenkctl/ZenkNicImpl.h"

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/ShellWords.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"
#include "platform/zenkctl/ZenkNicRuntime.h"

using HostCtl::Lib::HostCtlException;
using nlohmann::json;
using namespace HostCtl::Network;

namespace ZenkCtl::Network {

ZenkNicImpl::ZenkNicImpl(std::string name, std::shared_ptr<Store::HostStore> store)
    : _name(std::move(name)), _store(std::move(store)) {
    if (!HostCtl::Network::IsValidInterfaceName(_name))
        throw HostCtl::Lib::HostCtlException("Host configuration names an interface " +
                                             HostCtl::QuoteShellWord(_name) +
                                             ", which is not an interface name");
}

bool ZenkNicImpl::IsStale() const {
    return _stale || _generation != _store->Generation();
}

void ZenkNicImpl::Refresh() {
    const std::string generation = _store->Generation();
    const auto snapshot = _store->Snapshot();
    const json& document = *snapshot;
    const json* nic = Json::FindNamed(Json::At(document, Store::Schema::kZenkNics), _name);
    if (nic == nullptr) throw HostCtlException("Kernel network interface " + _name + " does not exist");
    _node = *nic;
    _generation = generation;
    _stale = false;
}

const json& ZenkNicImpl::Node() {
    if (IsStale()) Refresh();
    return _node;
}

bool ZenkNicImpl::IsValid() {
    const auto snapshot = _store->Snapshot();
    const json& document = *snapshot;
    return Json::FindNamed(Json::At(document, Store::Schema::kZenkNics), _name) != nullptr;
}

void ZenkNicImpl::Change(const std::function<void(json&, json&)>& change, bool rerun) {
    _store->Update([&](json& document) {
        json* nic = Json::FindNamed(Json::ArrayAt(document, Store::Schema::kZenkNics), _name);
        if (nic == nullptr) throw HostCtlException("Kernel network interface " + _name + " does not exist");
        change(*nic, document);
        if (rerun) ZenkNicRuntime::Apply(document, _name);
    });
    _stale = true;
}

IpConfig ZenkNicImpl::GetIpConfig() {
    return Json::ToIpConfig(Node().value("running", json::object()));
}

IpConfig ZenkNicImpl::GetConfiguredIpConfig() {
    return Json::ToIpConfig(Node().value("ipConfig", json::object()));
}

void ZenkNicImpl::SetIpConfig(const IpConfig& config) {
    if (!config.GetUseDhcp() && !config.GetIpv4UseNone() && !config.GetIpv4Address().IsUnspecified() &&
        !config.GetIpv4Netmask().IsValidNetmask()) {
        throw HostCtlException("Invalid netmask " + config.GetIpv4Netmask().GetStringAddress() + " for " +
                               _name);
    }
    Change([&](json& nic, json&) { nic["ipConfig"] = Json::FromIpConfig(config); }, true);
}

std::string ZenkNicImpl::GetMacAddress() {
    return Json::Text(Node(), "mac");
}

void ZenkNicImpl::SetMacAddress(const std::string& mac) {
    if (!ZenkNicRuntime::IsValidMac(mac)) throw HostCtlException("Invalid MAC address: " + mac);
    Change([&](json& nic, json&) { nic["mac"] = mac; }, true);
}

void ZenkNicImpl::SetMacAddressFromPnic(const Pnic& pnic) {
    SetMacAddress(pnic.GetMacAddress());
}

bool ZenkNicImpl::GetDhcpBound() {
    return Json::Flag(Node(), "dhcpBound");
}

void ZenkNicImpl::SetDhcpBound(bool bound) {
    Change([&](json& nic, json&) { nic["dhcpBound"] = bound; }, false);
}

void ZenkNicImpl::RenewIpv4Lease() {
    Change(
        [&](json& nic, json&) {
            if (!Json::ToIpConfig(nic.value("ipConfig", json::object())).GetUseDhcp()) {
                throw HostCtlException("Cannot renew the DHCP lease of " + _name + ": DHCP is not in use");
            }
            nic["leaseRenewals"]["ipv4"] =
                Json::Integer(nic.value("leaseRenewals", json::object()), "ipv4") + 1;
        },
        true);
}

void ZenkNicImpl::RenewIpv6Lease() {
    Change(
        [&](json& nic, json&) {
            if (!Json::ToIpConfig(nic.value("ipConfig", json::object())).GetUseIpv6Dhcp()) {
                throw HostCtlException("Cannot renew the DHCPv6 lease of " + _name +
                                       ": DHCPv6 is not in use");
            }
            nic["leaseRenewals"]["ipv6"] =
                Json::Integer(nic.value("leaseRenewals", json::object()), "ipv6") + 1;
        },
        true);
}

void ZenkNicImpl::Disable() {
    Change([](json& nic, json&) { nic["enabled"] = false; }, true);
}

void ZenkNicImpl::Commit() {
    Change([](json& nic, json&) { nic["commits"] = Json::Integer(nic, "commits") + 1; }, true);
}

void ZenkNicImpl::Enable() {
    // Coming up asks the DHCP servers again: each configured family counts a renewal, and the running
    // state is re-worked from the current lease in the same write.
    Change(
        [](json& nic, json&) {
            const IpConfig configured = Json::ToIpConfig(nic.value("ipConfig", json::object()));
            const json renewals = nic.value("leaseRenewals", json::object());
            if (configured.GetUseDhcp()) nic["leaseRenewals"]["ipv4"] = Json::Integer(renewals, "ipv4") + 1;
            if (configured.GetUseIpv6Dhcp())
                nic["leaseRenewals"]["ipv6"] = Json::Integer(renewals, "ipv6") + 1;
            nic["enabled"] = true;
        },
        true);
}

bool ZenkNicImpl::IsEnabled() {
    return Json::Flag(Node(), "enabled", true);
}

ConnectionPoint ZenkNicImpl::GetConnectionPoint() {
    ConnectionPoint point;
    const json& node = Node();
    const json connection = node.contains("connection") ? node["connection"] : json::object();
    const std::string type = Json::Text(connection, "type");
    if (type == "portGroup") {
        point.connecteeType = CONNECTEE_PORTGROUP;
        point.portGroup = Json::Text(connection, "portGroup");
    } else if (type == "dvPort") {
        point.connecteeType = CONNECTEE_DVPORT;
        point.dvsName = Json::Text(connection, "dvs");
        point.portKey = Json::Text(connection, "port");
    } else if (type == "opaque") {
        point.connecteeType = CONNECTEE_OPAQUE;
        point.networkId = Json::Text(connection, "networkId");
    }
    return point;
}

void ZenkNicImpl::ConnectToPortGroup(const std::string& portGroup) {
    Change(
        [&](json& nic, json& document) {
            bool found = false;
            for (const auto& vswitch : Json::ArrayAt(document, Store::Schema::kSwitches)) {
                if (vswitch.contains("portGroups") && Json::FindNamed(vswitch["portGroups"], portGroup))
                    found = true;
            }
            if (!found) throw HostCtlException("Port group " + portGroup + " does not exist");
            nic["connection"] = {{"type", "portGroup"}, {"portGroup", portGroup}};
        },
        false);
}

void ZenkNicImpl::ConnectToDvPort(const std::string& dvsName, const std::string& portKey) {
    Change(
        [&](json& nic, json& document) {
            const json* dvs = Json::FindNamed(Json::ArrayAt(document, Store::Schema::kDvs), dvsName);
            if (dvs == nullptr) throw HostCtlException("Distributed switch " + dvsName + " does not exist");
            if (!dvs->contains("ports") || !Json::FindNamed((*dvs)["ports"], portKey, "key")) {
                throw HostCtlException("Port " + portKey + " does not exist on " + dvsName);
            }
            nic["connection"] = {{"type", "dvPort"}, {"dvs", dvsName}, {"port", portKey}};
        },
        false);
}

}  // namespace ZenkCtl::Network
