#include "platform/zenkctl/DVPortImpl.h"

#include <algorithm>

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"

using HostCtl::Lib::HostCtlException;
using nlohmann::json;

namespace ZenkCtl::Network {
namespace {

json* Dvs(json& document, const std::string& name) {
    json* dvs = Json::FindNamed(Json::ArrayAt(document, Store::Schema::kDvs), name);
    if (dvs == nullptr) throw HostCtlException("Distributed switch " + name + " does not exist");
    return dvs;
}

json* Port(json& document, const std::string& dvsName, const std::string& key) {
    json* dvs = Dvs(document, dvsName);
    json* port = dvs->contains("ports") ? Json::FindNamed((*dvs)["ports"], key, "key") : nullptr;
    if (port == nullptr) throw HostCtlException("Port " + key + " does not exist on " + dvsName);
    return port;
}

// A NIC can leave the switch while a port still names it; the port then no longer uses it.
std::vector<std::string> ActiveUplinks(const json& dvs, const json& port) {
    const std::vector<std::string> all = Json::TextList(dvs, "uplinks");
    if (!port.contains("uplinks") || port["uplinks"].is_null()) return all;
    std::vector<std::string> active;
    for (const std::string& uplink : Json::TextList(port, "uplinks"))
        if (std::find(all.begin(), all.end(), uplink) != all.end()) active.push_back(uplink);
    return active;
}

}  // namespace

void CheckPortUplinks(const std::string& dvsName, const std::vector<std::string>& switchUplinks,
                      const std::vector<std::string>& uplinks) {
    for (auto it = uplinks.begin(); it != uplinks.end(); ++it) {
        if (std::find(switchUplinks.begin(), switchUplinks.end(), *it) == switchUplinks.end())
            throw HostCtlException(*it + " is not an uplink of " + dvsName);
        if (std::find(uplinks.begin(), it, *it) != it) throw HostCtlException(*it + " is named twice");
    }
}

DVPortImpl::DVPortImpl(std::string dvsName, std::string portKey, std::shared_ptr<Store::HostStore> store)
    : _dvsName(std::move(dvsName)), _portKey(std::move(portKey)), _store(std::move(store)) {}

std::string DVPortImpl::GetPortGroup() {
    json document = _store->Read();
    return Json::Text(*Port(document, _dvsName, _portKey), "portGroup");
}

int DVPortImpl::GetVlanId() {
    json document = _store->Read();
    return static_cast<int>(Json::Integer(*Port(document, _dvsName, _portKey), "vlanId"));
}

void DVPortImpl::SetVlanId(int vlanId) {
    if (vlanId < 0 || vlanId > 4094) {
        throw HostCtlException("Invalid DVPort vlan specified. Valid range is 0-4094.");
    }
    _store->Update([&](json& d) { (*Port(d, _dvsName, _portKey))["vlanId"] = vlanId; });
}

std::vector<std::string> DVPortImpl::GetUplinks() {
    json document = _store->Read();
    const json& port = *Port(document, _dvsName, _portKey);
    return ActiveUplinks(*Dvs(document, _dvsName), port);
}

DvPortProperties DVPortImpl::GetProperties() {
    json document = _store->Read();
    const json& port = *Port(document, _dvsName, _portKey);
    return {Json::Text(port, "name"),
            Json::Text(port, "portGroup"),
            static_cast<int>(Json::Integer(port, "vlanId")),
            Json::Flag(port, "blocked"),
            Json::Flag(port, "hostLocal"),
            ActiveUplinks(*Dvs(document, _dvsName), port)};
}

}  // namespace ZenkCtl::Network
