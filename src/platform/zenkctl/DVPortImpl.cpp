#include "platform/zenkctl/DVPortImpl.h"

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/InjectedFault.h"
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

}  // namespace

DVPortImpl::DVPortImpl(std::string dvsName, std::string portKey, std::shared_ptr<Store::HostStore> store)
    : _dvsName(std::move(dvsName)), _portKey(std::move(portKey)), _store(std::move(store)) {}

std::string DVPortImpl::GetPortGroup() {
    json document = _store->Read();
    return Json::Text(*Port(document, _dvsName, _portKey), "portGroup");
}

int DVPortImpl::GetVlanId() {
    Store::ThrowIfInjected(*_store, "DVPort.GetVlanId");
    json document = _store->Read();
    return static_cast<int>(Json::Integer(*Port(document, _dvsName, _portKey), "vlanId"));
}

void DVPortImpl::SetVlanId(int vlanId) {
    Store::ThrowIfInjected(*_store, "DVPort.SetVlanId");
    if (vlanId < 0 || vlanId > 4094) {
        throw HostCtlException("Invalid DVPort vlan specified. Valid range is 0-4094.");
    }
    _store->Update([&](json& d) { (*Port(d, _dvsName, _portKey))["vlanId"] = vlanId; });
}

std::vector<std::string> DVPortImpl::GetUplinks() {
    json document = _store->Read();
    return Json::TextList(*Dvs(document, _dvsName), "uplinks");
}

}  // namespace ZenkCtl::Network
