#include "platform/hostctl/NicTeamingPolicy.h"

#include <algorithm>

namespace HostCtl::Network {

void NicTeamingPolicy::SetUplinkOrder(const std::vector<std::string>& order) {
    _uplinkOrder = order;
    _flags |= FLAG_EXPLICIT_ORDER;
}

void NicTeamingPolicy::SetMaxActiveUplinks(uint32_t maximum) {
    _maxActiveUplinks = maximum;
    _flags |= FLAG_EXPLICIT_MAX_ACTIVE;
}

NicTeamingPolicy NicTeamingPolicy::WithUplinkAdded(const NicTeamingPolicy& current,
                                                   const std::string& uplink) {
    NicTeamingPolicy next = current;
    if (!current.HasExplicitUplinkOrder()) next._uplinkOrder.clear();
    if (current.HasExplicitMaxActiveUplinks()) next.SetMaxActiveUplinks(current._maxActiveUplinks + 1);
    if (std::find(next._uplinkOrder.begin(), next._uplinkOrder.end(), uplink) == next._uplinkOrder.end()) {
        std::vector<std::string> order = next._uplinkOrder;
        order.push_back(uplink);
        next.SetUplinkOrder(order);
    }
    return next;
}

NicTeamingPolicy NicTeamingPolicy::WithUplinkRemoved(const NicTeamingPolicy& current,
                                                     const std::string& uplink) {
    NicTeamingPolicy next = current;
    if (!current.HasExplicitUplinkOrder()) return next;
    auto order = current._uplinkOrder;
    auto it = std::find(order.begin(), order.end(), uplink);
    if (it == order.end()) return next;
    order.erase(it);
    next.SetUplinkOrder(order);
    if (current.HasExplicitMaxActiveUplinks()) {
        next.SetMaxActiveUplinks(current._maxActiveUplinks > 0 ? current._maxActiveUplinks - 1 : 0);
    }
    return next;
}

}  // namespace HostCtl::Network
