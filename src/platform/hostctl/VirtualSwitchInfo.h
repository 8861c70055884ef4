#pragma once

#include <string>
#include <vector>

#include "platform/hostctl/NicTeamingPolicy.h"

namespace HostCtl::Network {

struct VirtualSwitch {
    std::string name;
    int numPorts = 0;
    std::vector<std::string> uplinks;
    std::vector<std::string> portGroups;
};

// A distributed switch as far as this host takes part in it.
struct DvSwitch {
    // Switches of another maker can be seen but not repaired from this host.
    static constexpr const char* kOwnVendor = "Halvor";
    std::string name;
    std::vector<std::string> uplinks;
    std::vector<std::string> portKeys;
    std::string vendor = kOwnVendor;
    std::vector<std::string> portNames;
    bool IsOwnKind() const { return vendor == kOwnVendor; }
};

// A port of a distributed switch.
struct DvPortProperties {
    std::string name;  // "" for a port without a name
    std::string portGroup;
    int vlanId = 0;  // 0 (none) to 4094
    bool blocked = false;
    bool hostLocal = false;
    std::vector<std::string> uplinks;
};

// The standard and distributed switches of the host, their uplinks, teaming and port groups.
class VirtualSwitchInfo {
  public:
    virtual ~VirtualSwitchInfo() = default;

    virtual std::vector<VirtualSwitch> GetVirtualSwitches() = 0;
    virtual std::vector<DvSwitch> GetDvSwitches() = 0;
    virtual void AddVirtualSwitch(const std::string& name, int numPorts) = 0;
    virtual void RemoveVirtualSwitch(const std::string& name) = 0;
    virtual void AddUplink(const std::string& switchName, const std::string& pnic) = 0;
    virtual void RemoveUplink(const std::string& switchName, const std::string& pnic) = 0;
    virtual void RemoveDvsUplink(const std::string& dvsName, const std::string& pnic) = 0;
    // The key of the new port.
    virtual std::string AddDvsHostLocalPort(const std::string& dvsName,
                                            const DvPortProperties& properties) = 0;
    // The switch (standard or distributed) that has pnic as an uplink; "" when none has.
    virtual std::string FindUplinkOwner(const std::string& pnic) = 0;
    virtual NicTeamingPolicy GetTeamingPolicy(const std::string& switchName) = 0;
    virtual void SetTeamingPolicy(const std::string& switchName, const NicTeamingPolicy& policy) = 0;
    virtual void AddPortGroup(const std::string& switchName, const std::string& portGroup,
                              int vlanId = 0) = 0;
    virtual std::string GetPortGroupSwitch(const std::string& portGroup) = 0;
    virtual int GetPortGroupVlan(const std::string& portGroup) = 0;
    virtual void SetPortGroupVlan(const std::string& portGroup, int vlanId) = 0;
};

// A port of a distributed switch, by its switch and key.
class DVPort {
  public:
    virtual ~DVPort() = default;

    virtual std::string GetDvsName() const = 0;
    virtual std::string GetPortKey() const = 0;
    virtual std::string GetPortGroup() = 0;
    virtual int GetVlanId() = 0;
    // 0 to 4094.
    virtual void SetVlanId(int vlanId) = 0;
    virtual std::vector<std::string> GetUplinks() = 0;
    virtual DvPortProperties GetProperties() = 0;
};

// Lookups by name alone, for the checks of names an operator typed.
class PortGroup {
  public:
    virtual ~PortGroup() = default;
    virtual bool IsValidPortGroup(const std::string& name) = 0;
};

}  // namespace HostCtl::Network
