#include "platform/zenkctl/PnicImpl.h"

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"

namespace ZenkCtl::Network {

PnicImpl::PnicImpl(const std::string& name, std::shared_ptr<Store::HostStore> store) {
    const nlohmann::json document = store->Read();
    const nlohmann::json* node = Json::FindNamed(Json::At(document, Store::Schema::kPnics), name);
    if (node == nullptr) throw HostCtl::Lib::HostCtlException("Physical NIC " + name + " does not exist");
    Load(*node);
}

PnicImpl::PnicImpl(const nlohmann::json& node) {
    Load(node);
}

void PnicImpl::Load(const nlohmann::json& node) {
    _name = Json::Text(node, "name");
    _label = Json::Text(node, "label");
    _mac = Json::Text(node, "mac");
    _driver = Json::Text(node, "driver");
    _linkUp = Json::Flag(node, "linkUp");
    _speed = static_cast<int>(Json::Integer(node, "speedMbps"));
}

}  // namespace ZenkCtl::Network
