#include "platform/zenkctl/RoutingInfoImpl.h"

#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetStack.h"
#include "platform/zenkctl/NetworkJson.h"

using nlohmann::json;
using namespace HostCtl::Network;

namespace ZenkCtl::Network {

RoutingInfoImpl::RoutingInfoImpl(const std::string& netstack, std::shared_ptr<Store::HostStore> store)
    : _store(std::move(store)) {
    RequireDefaultNetStack(netstack);
}

Ipv4Address RoutingInfoImpl::GetZenKernelDefaultGateway() {
    const std::string text = Json::Text(_store->Get(Store::Schema::kRouting), "ipv4DefaultGateway");
    if (text.empty()) return Ipv4Address();
    return Ipv4Address(text);  // a malformed stored gateway is a HostCtlException
}

void RoutingInfoImpl::SetZenKernelDefaultGateway(const Ipv4Address& gateway, bool) {
    _store->Update([&](json& document) {
        Json::ObjectAt(document, Store::Schema::kRouting)["ipv4DefaultGateway"] =
            gateway.IsUnspecified() ? "" : gateway.GetStringAddress();
    });
}

Ipv6Address RoutingInfoImpl::GetIpv6ZenKernelDefaultGateway() {
    const std::string text = Json::Text(_store->Get(Store::Schema::kRouting), "ipv6DefaultGateway");
    if (text.empty()) return Ipv6Address();
    return Ipv6Address(text);
}

void RoutingInfoImpl::SetIpv6ZenKernelDefaultGateway(const Ipv6Address& gateway) {
    _store->Update([&](json& document) {
        Json::ObjectAt(document, Store::Schema::kRouting)["ipv6DefaultGateway"] =
            gateway.IsUnspecified() ? "" : gateway.GetScopedStringAddress();
    });
}

}  // namespace ZenkCtl::Network
