#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/hostctl/NicTeamingPolicy.h"
#include "platform/hostctl/VirtualSwitchInfo.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/DVPortImpl.h"

namespace ZenkCtl::Network {

using HostCtl::Network::DvSwitch;
using HostCtl::Network::VirtualSwitch;

// Standard switches ("/network/switches") with their uplinks, teaming policies and port groups, and the
// distributed switches ("/network/dvs") the host is a member of.
class VirtualSwitchInfoImpl : public HostCtl::Network::VirtualSwitchInfo {
  public:
    explicit VirtualSwitchInfoImpl(std::shared_ptr<Store::HostStore> store);
    ~VirtualSwitchInfoImpl() override = default;

    std::vector<VirtualSwitch> GetVirtualSwitches() override;
    std::vector<DvSwitch> GetDvSwitches() override;

    void AddVirtualSwitch(const std::string& name, int numPorts) override;
    void RemoveVirtualSwitch(const std::string& name) override;

    // Attaches a physical NIC to a standard switch; it must exist and be free. The teaming policy is
    // not touched (see NicTeamingPolicy::WithUplinkAdded).
    void AddUplink(const std::string& switchName, const std::string& pnic) override;
    void RemoveUplink(const std::string& switchName, const std::string& pnic) override;
    void RemoveDvsUplink(const std::string& dvsName, const std::string& pnic) override;
    // Adds a host-local port to one of the platform's own distributed switches and returns its key (one
    // more than the highest numeric key there). The name must be new on the switch; the port is
    // host-local whatever the properties say.
    std::string AddDvsHostLocalPort(const std::string& dvsName, const DvPortProperties& properties) override;
    // The standard or distributed switch that holds a physical NIC, or empty.
    std::string FindUplinkOwner(const std::string& pnic) override;

    HostCtl::Network::NicTeamingPolicy GetTeamingPolicy(const std::string& switchName) override;
    void SetTeamingPolicy(const std::string& switchName,
                          const HostCtl::Network::NicTeamingPolicy& policy) override;

    void AddPortGroup(const std::string& switchName, const std::string& portGroup, int vlanId = 0) override;
    // The standard switch a port group belongs to; HostCtlException when there is none.
    std::string GetPortGroupSwitch(const std::string& portGroup) override;
    int GetPortGroupVlan(const std::string& portGroup) override;
    // 0 (none) to 4095 (all VLANs).
    void SetPortGroupVlan(const std::string& portGroup, int vlanId) override;

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network
