#pragma once

#include <memory>

#include "platform/hostctl/Portset.h"
#include "platform/hostctl/VirtualSwitchInfo.h"
#include "platform/linux/NmNetwork.h"

namespace LinuxHost {

// The switches of a host whose network the service runs. The management network's switch is the
// console's bridge (ManagementProfiles::kBridge), with one port group, the management network; any other
// bridge or bond that holds NICs is shown as a switch of its own, so a NIC taken from it is known to be
// taken. Only the management switch is changed here; a NIC it takes leaves its other owner by itself.
class NmSwitches : public HostCtl::Network::VirtualSwitchInfo {
  public:
    NmSwitches(std::shared_ptr<NmNetwork> network, HostFiles files);

    std::vector<HostCtl::Network::VirtualSwitch> GetVirtualSwitches() override;
    std::vector<HostCtl::Network::DvSwitch> GetDvSwitches() override;
    void AddVirtualSwitch(const std::string& name, int numPorts) override;
    void RemoveVirtualSwitch(const std::string& name) override;
    void AddUplink(const std::string& switchName, const std::string& pnic) override;
    void RemoveUplink(const std::string& switchName, const std::string& pnic) override;
    void RemoveDvsUplink(const std::string& dvsName, const std::string& pnic) override;
    std::string AddDvsHostLocalPort(const std::string& dvsName,
                                    const HostCtl::Network::DvPortProperties& properties) override;
    std::string FindUplinkOwner(const std::string& pnic) override;
    HostCtl::Network::NicTeamingPolicy GetTeamingPolicy(const std::string& switchName) override;
    void SetTeamingPolicy(const std::string& switchName,
                          const HostCtl::Network::NicTeamingPolicy& policy) override;
    void AddPortGroup(const std::string& switchName, const std::string& portGroup, int vlanId) override;
    std::string GetPortGroupSwitch(const std::string& portGroup) override;
    int GetPortGroupVlan(const std::string& portGroup) override;
    void SetPortGroupVlan(const std::string& portGroup, int vlanId) override;

  private:
    // The bridge or bond a NIC is a port of, as the kernel has it; "" for none.
    std::string KernelController(const std::string& nic) const;
    std::shared_ptr<NmNetwork> _network;
    HostFiles _files;
};

// Names of switches and port groups, for the checks of names an operator typed.
class NmPortNames : public HostCtl::Network::Portset, public HostCtl::Network::PortGroup {
  public:
    explicit NmPortNames(std::shared_ptr<NmNetwork> network, HostFiles files);
    bool IsValidVirtualSwitch(const std::string& name) override;
    bool IsValidPortGroup(const std::string& name) override;

  private:
    std::shared_ptr<NmNetwork> _network;
    HostFiles _files;
};

}  // namespace LinuxHost
