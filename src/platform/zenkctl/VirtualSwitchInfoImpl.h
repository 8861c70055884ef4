#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/hostctl/NicTeamingPolicy.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

struct VirtualSwitch {
    std::string name;
    int numPorts = 0;
    std::vector<std::string> uplinks;
    std::vector<std::string> portGroups;
};

struct DvSwitch {
    std::string name;
    std::vector<std::string> uplinks;
    std::vector<std::string> portKeys;
};

// Standard switches ("/network/switches") with their uplinks, teaming policies and port groups, and the
// distributed switches ("/network/dvs") the host is a member of.
class VirtualSwitchInfoImpl {
  public:
    explicit VirtualSwitchInfoImpl(std::shared_ptr<Store::HostStore> store = Store::HostStore::System());

    std::vector<VirtualSwitch> GetVirtualSwitches();
    std::vector<DvSwitch> GetDvSwitches();

    void AddVirtualSwitch(const std::string& name, int numPorts);
    void RemoveVirtualSwitch(const std::string& name);

    // Attaches a physical NIC to a standard switch; it must exist and be free. The teaming policy is
    // not touched (see NicTeamingPolicy::WithUplinkAdded).
    void AddUplink(const std::string& switchName, const std::string& pnic);
    void RemoveUplink(const std::string& switchName, const std::string& pnic);
    void RemoveDvsUplink(const std::string& dvsName, const std::string& pnic);
    // The standard or distributed switch that holds a physical NIC, or empty.
    std::string FindUplinkOwner(const std::string& pnic);

    HostCtl::Network::NicTeamingPolicy GetTeamingPolicy(const std::string& switchName);
    void SetTeamingPolicy(const std::string& switchName, const HostCtl::Network::NicTeamingPolicy& policy);

    void AddPortGroup(const std::string& switchName, const std::string& portGroup, int vlanId = 0);
    // The standard switch a port group belongs to; HostCtlException when there is none.
    std::string GetPortGroupSwitch(const std::string& portGroup);
    int GetPortGroupVlan(const std::string& portGroup);
    // 0 (none) to 4095 (all VLANs).
    void SetPortGroupVlan(const std::string& portGroup, int vlanId);

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network
