#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace HostCtl::Network {

// The NIC teaming policy of a standard switch or port group. The flag word records which settings the
// policy states explicitly; a setting whose flag is clear is inherited and its value is meaningless.
class NicTeamingPolicy {
  public:
    static constexpr uint32_t FLAG_EXPLICIT_ORDER = 1u << 4;  // the uplink order is explicit
    static constexpr uint32_t FLAG_EXPLICIT_MAX_ACTIVE = 1u
                                                         << 6;  // the maximum of active uplinks is explicit

    uint32_t GetFlags() const { return _flags; }
    void SetFlags(uint32_t flags) { _flags = flags; }
    bool HasExplicitUplinkOrder() const { return (_flags & FLAG_EXPLICIT_ORDER) != 0; }
    bool HasExplicitMaxActiveUplinks() const { return (_flags & FLAG_EXPLICIT_MAX_ACTIVE) != 0; }

    const std::vector<std::string>& GetUplinkOrder() const { return _uplinkOrder; }
    // Sets the order and marks it explicit.
    void SetUplinkOrder(const std::vector<std::string>& order);
    uint32_t GetMaxActiveUplinks() const { return _maxActiveUplinks; }
    // Sets the maximum and marks it explicit.
    void SetMaxActiveUplinks(uint32_t maximum);

    const std::string& GetLoadBalancing() const { return _loadBalancing; }
    void SetLoadBalancing(const std::string& policy) { _loadBalancing = policy; }

    // The policy after an uplink joins the switch: the order is kept only when it was explicit (else it
    // restarts empty), an explicit maximum grows by one whether or not the uplink was listed, and the
    // uplink is appended when it is not yet in the order.
    static NicTeamingPolicy WithUplinkAdded(const NicTeamingPolicy& current, const std::string& uplink);
    // The policy after an uplink leaves the switch: only an explicit order that lists the uplink changes;
    // the uplink is erased and an explicit maximum shrinks by one (never below zero).
    static NicTeamingPolicy WithUplinkRemoved(const NicTeamingPolicy& current, const std::string& uplink);

    bool operator==(const NicTeamingPolicy& other) const = default;

  private:
    uint32_t _flags = 0;
    std::vector<std::string> _uplinkOrder;
    uint32_t _maxActiveUplinks = 0;
    std::string _loadBalancing = "loadbalance_srcid";
};

}  // namespace HostCtl::Network
