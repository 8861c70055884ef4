#include "platform/zenkctl/SmartCardInfoImpl.h"

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"

namespace Json = ZenkCtl::Network::Json;
using nlohmann::json;

namespace ZenkCtl::Hardware {

SmartCardInfoImpl::SmartCardInfoImpl(std::shared_ptr<Store::HostStore> store) : _store(std::move(store)) {}

std::vector<HostCtl::Hardware::SmartCardSlot> SmartCardInfoImpl::GetAllSlots() {
    std::vector<HostCtl::Hardware::SmartCardSlot> slots;
    const json list = _store->Get(Store::Schema::kSmartCardSlots);
    if (!list.is_array()) return slots;
    for (const auto& s : list) {
        slots.push_back({static_cast<int>(Json::Integer(s, "id")), Json::Text(s, "description")});
    }
    return slots;
}

bool SmartCardInfoImpl::GetToken(const HostCtl::Hardware::SmartCardSlot& slot,
                                 HostCtl::Hardware::SmartCardToken& token) {
    const json list = _store->Get(Store::Schema::kSmartCardSlots);
    if (list.is_array()) {
        for (const auto& s : list) {
            if (Json::Integer(s, "id") != slot.id) continue;
            if (!s.contains("token") || s["token"].is_null()) return false;
            const json& t = s["token"];
            token = {Json::Text(t, "label"), Json::Text(t, "serialNumber"), Json::TextList(t, "userIds")};
            return true;
        }
    }
    throw HostCtl::Lib::HostCtlException("Smart card slot " + std::to_string(slot.id) + " does not exist");
}

}  // namespace ZenkCtl::Hardware
