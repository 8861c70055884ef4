#include "platform/zenkctl/VirtualSwitchInfoImpl.h"

#include <algorithm>

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/Portset.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"

using HostCtl::Lib::HostCtlException;
using nlohmann::json;
namespace Schema = ZenkCtl::Store::Schema;

namespace ZenkCtl::Network {
namespace {

json& Switch(json& document, const std::string& name) {
    json* s = Json::FindNamed(Json::ArrayAt(document, Schema::kSwitches), name);
    if (s == nullptr) throw HostCtlException("Virtual switch " + name + " does not exist");
    return *s;
}

json& List(json& node, const char* key) {
    if (!node[key].is_array()) node[key] = json::array();
    return node[key];
}

bool Holds(const json& list, const std::string& value) {
    return list.is_array() && std::find(list.begin(), list.end(), value) != list.end();
}

json* PortGroup(json& document, const std::string& name, std::string* owner = nullptr) {
    for (auto& s : Json::ArrayAt(document, Schema::kSwitches)) {
        if (!s.contains("portGroups")) continue;
        if (json* pg = Json::FindNamed(s["portGroups"], name)) {
            if (owner != nullptr) *owner = Json::Text(s, "name");
            return pg;
        }
    }
    return nullptr;
}

std::string Owner(const json& document, const std::string& pnic) {
    for (const char* where : {Schema::kSwitches, Schema::kDvs}) {
        const json& list = Json::At(document, where);
        if (!list.is_array()) continue;
        for (const auto& s : list) {
            if (s.is_object() && s.contains("uplinks") && Holds(s["uplinks"], pnic))
                return Json::Text(s, "name");
        }
    }
    return {};
}

}  // namespace

VirtualSwitchInfoImpl::VirtualSwitchInfoImpl(std::shared_ptr<Store::HostStore> store)
    : _store(std::move(store)) {}

std::vector<VirtualSwitch> VirtualSwitchInfoImpl::GetVirtualSwitches() {
    std::vector<VirtualSwitch> result;
    const json list = _store->Get(Schema::kSwitches);
    if (!list.is_array()) return result;
    for (const auto& s : list) {
        VirtualSwitch v{Json::Text(s, "name"),
                        static_cast<int>(Json::Integer(s, "numPorts")),
                        Json::TextList(s, "uplinks"),
                        {}};
        if (s.contains("portGroups") && s["portGroups"].is_array()) {
            for (const auto& pg : s["portGroups"]) v.portGroups.push_back(Json::Text(pg, "name"));
        }
        result.push_back(std::move(v));
    }
    return result;
}

std::vector<DvSwitch> VirtualSwitchInfoImpl::GetDvSwitches() {
    std::vector<DvSwitch> result;
    const json list = _store->Get(Schema::kDvs);
    if (!list.is_array()) return result;
    for (const auto& s : list) {
        DvSwitch d{Json::Text(s, "name"),
                   Json::TextList(s, "uplinks"),
                   {},
                   Json::Text(s, "vendor", DvSwitch::kOwnVendor),
                   {}};
        if (s.contains("ports") && s["ports"].is_array()) {
            for (const auto& p : s["ports"]) {
                d.portKeys.push_back(Json::Text(p, "key"));
                d.portNames.push_back(Json::Text(p, "name"));
            }
        }
        result.push_back(std::move(d));
    }
    return result;
}

void VirtualSwitchInfoImpl::AddVirtualSwitch(const std::string& name, int numPorts) {
    if (name.empty() || name.size() > 31) throw HostCtlException("Invalid virtual switch name: " + name);
    if (numPorts < 1 || numPorts > HostCtl::Network::Portset::MAX_NUM_PORTS) {
        throw HostCtlException("Invalid number of ports for " + name + ": " + std::to_string(numPorts));
    }
    _store->Update([&](json& d) {
        json& switches = Json::ArrayAt(d, Schema::kSwitches);
        if (Json::FindNamed(switches, name) != nullptr)
            throw HostCtlException("Virtual switch " + name + " exists already");
        switches.push_back({{"name", name},
                            {"numPorts", numPorts},
                            {"mtu", 1500},
                            {"uplinks", json::array()},
                            {"teaming", Json::FromTeaming({})},
                            {"portGroups", json::array()}});
    });
}

void VirtualSwitchInfoImpl::RemoveVirtualSwitch(const std::string& name) {
    _store->Update([&](json& d) {
        json& vswitch = Switch(d, name);
        for (const auto& nic : Json::ArrayAt(d, Schema::kZenkNics)) {
            const json connection = nic.value("connection", json::object());
            if (vswitch.contains("portGroups") &&
                Json::FindNamed(vswitch["portGroups"], Json::Text(connection, "portGroup"))) {
                throw HostCtlException("Virtual switch " + name + " is in use by " + Json::Text(nic, "name"));
            }
        }
        auto& switches = Json::ArrayAt(d, Schema::kSwitches);
        switches.erase(std::remove_if(switches.begin(), switches.end(),
                                      [&](const json& s) { return Json::Text(s, "name") == name; }),
                       switches.end());
    });
}

void VirtualSwitchInfoImpl::AddUplink(const std::string& switchName, const std::string& pnic) {
    _store->Update([&](json& d) {
        if (Json::FindNamed(Json::ArrayAt(d, Schema::kPnics), pnic) == nullptr) {
            throw HostCtlException("Physical NIC " + pnic + " does not exist");
        }
        json& vswitch = Switch(d, switchName);
        const std::string owner = Owner(d, pnic);
        if (owner == switchName) return;
        if (!owner.empty()) throw HostCtlException("Physical NIC " + pnic + " is in use by " + owner);
        List(vswitch, "uplinks").push_back(pnic);
    });
}

void VirtualSwitchInfoImpl::RemoveUplink(const std::string& switchName, const std::string& pnic) {
    _store->Update([&](json& d) {
        json& uplinks = List(Switch(d, switchName), "uplinks");
        auto it = std::find(uplinks.begin(), uplinks.end(), pnic);
        if (it == uplinks.end()) throw HostCtlException(pnic + " is not an uplink of " + switchName);
        uplinks.erase(it);
    });
}

void VirtualSwitchInfoImpl::RemoveDvsUplink(const std::string& dvsName, const std::string& pnic) {
    _store->Update([&](json& d) {
        json* dvs = Json::FindNamed(Json::ArrayAt(d, Schema::kDvs), dvsName);
        if (dvs == nullptr) throw HostCtlException("Distributed switch " + dvsName + " does not exist");
        json& uplinks = List(*dvs, "uplinks");
        auto it = std::find(uplinks.begin(), uplinks.end(), pnic);
        if (it == uplinks.end()) throw HostCtlException(pnic + " is not an uplink of " + dvsName);
        uplinks.erase(it);
    });
}

std::string VirtualSwitchInfoImpl::AddDvsHostLocalPort(const std::string& dvsName,
                                                       const DvPortProperties& properties) {
    if (properties.name.empty()) throw HostCtlException("A host local port needs a name");
    if (properties.vlanId < 0 || properties.vlanId > 4094)
        throw HostCtlException("Invalid DVPort vlan specified. Valid range is 0-4094.");
    std::string key;
    _store->Update([&](json& d) {
        json* dvs = Json::FindNamed(Json::ArrayAt(d, Schema::kDvs), dvsName);
        if (dvs == nullptr) throw HostCtlException("Distributed switch " + dvsName + " does not exist");
        const std::string vendor = Json::Text(*dvs, "vendor", DvSwitch::kOwnVendor);
        if (vendor != DvSwitch::kOwnVendor)
            throw HostCtlException("Host local ports cannot be added to " + dvsName + " of " + vendor);
        CheckPortUplinks(dvsName, Json::TextList(*dvs, "uplinks"), properties.uplinks);
        json& ports = List(*dvs, "ports");
        if (Json::FindNamed(ports, properties.name) != nullptr)
            throw HostCtlException("Port " + properties.name + " exists already on " + dvsName);
        // Keys of up to nine digits count; a longer one cannot be the next key anyway.
        long highest = -1;
        for (const auto& port : ports) {
            const std::string k = Json::Text(port, "key");
            if (!k.empty() && k.size() <= 9 &&
                std::all_of(k.begin(), k.end(), [](char c) { return c >= '0' && c <= '9'; }))
                highest = std::max(highest, std::stol(k));
        }
        key = std::to_string(highest + 1);
        ports.push_back({{"key", key},
                         {"name", properties.name},
                         {"portGroup", properties.portGroup},
                         {"vlanId", properties.vlanId},
                         {"blocked", properties.blocked},
                         {"hostLocal", true},
                         {"uplinks", properties.uplinks}});
    });
    return key;
}

std::string VirtualSwitchInfoImpl::FindUplinkOwner(const std::string& pnic) {
    return Owner(*_store->Snapshot(), pnic);
}

HostCtl::Network::NicTeamingPolicy VirtualSwitchInfoImpl::GetTeamingPolicy(const std::string& switchName) {
    json document = _store->Read();
    return Json::ToTeaming(Switch(document, switchName).value("teaming", json::object()));
}

void VirtualSwitchInfoImpl::SetTeamingPolicy(const std::string& switchName,
                                             const HostCtl::Network::NicTeamingPolicy& policy) {
    _store->Update([&](json& d) { Switch(d, switchName)["teaming"] = Json::FromTeaming(policy); });
}

void VirtualSwitchInfoImpl::AddPortGroup(const std::string& switchName, const std::string& portGroup,
                                         int vlanId) {
    if (portGroup.empty() || portGroup.size() > 59)
        throw HostCtlException("Invalid port group name: " + portGroup);
    if (vlanId < 0 || vlanId > 4095) throw HostCtlException("Invalid VLAN id " + std::to_string(vlanId));
    _store->Update([&](json& d) {
        if (PortGroup(d, portGroup) != nullptr)
            throw HostCtlException("Port group " + portGroup + " exists already");
        List(Switch(d, switchName), "portGroups").push_back({{"name", portGroup}, {"vlanId", vlanId}});
    });
}

std::string VirtualSwitchInfoImpl::GetPortGroupSwitch(const std::string& portGroup) {
    json document = _store->Read();
    std::string owner;
    if (PortGroup(document, portGroup, &owner) == nullptr) {
        throw HostCtlException("Port group " + portGroup + " does not exist");
    }
    return owner;
}

int VirtualSwitchInfoImpl::GetPortGroupVlan(const std::string& portGroup) {
    json document = _store->Read();
    const json* pg = PortGroup(document, portGroup);
    if (pg == nullptr) throw HostCtlException("Port group " + portGroup + " does not exist");
    return static_cast<int>(Json::Integer(*pg, "vlanId"));
}

void VirtualSwitchInfoImpl::SetPortGroupVlan(const std::string& portGroup, int vlanId) {
    if (vlanId < 0 || vlanId > 4095) throw HostCtlException("Invalid VLAN id " + std::to_string(vlanId));
    _store->Update([&](json& d) {
        json* pg = PortGroup(d, portGroup);
        if (pg == nullptr) throw HostCtlException("Port group " + portGroup + " does not exist");
        (*pg)["vlanId"] = vlanId;
    });
}

}  // namespace ZenkCtl::Network
