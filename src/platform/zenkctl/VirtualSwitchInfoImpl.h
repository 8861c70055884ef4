#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/hostctl/NicTeamingPolicy.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/DVPortImpl.h"

namespace ZenkCtl::Network {

struct VirtualSwitch {
    std::string name;
    int numPorts = 0;
    std::vector<std::string> uplinks;
    std::vector<std::string> portGroups;
};

struct DvSwitch {
    // The maker of the platform's own distributed switches, which are the only ones whose ports the
    // host may add to.
    static constexpr const char* kOwnVendor = "Halvor";

    std::string name;
    std::vector<std::string> uplinks;
    std::vector<std::string> portKeys;
    std::string vendor = kOwnVendor;
    // The ports' names in the order of portKeys, "" for a port without one.
    std::vector<std::string> portNames;

    bool IsOwnKind() const { return vendor == kOwnVendor; }
};

// Standard switches ("/network/switches") with their uplinks, teaming policies and port groups, and the
// distributed switches ("/network/dvs") the host is a member of.
//
// Its operations are virtual so that a caller's tests can record the calls made on it in order.
class VirtualSwitchInfoImpl {
  public:
    explicit VirtualSwitchInfoImpl(std::shared_ptr<Store::HostStore> store = Store::HostStore::System());
    virtual ~VirtualSwitchInfoImpl() = default;

    virtual std::vector<VirtualSwitch> GetVirtualSwitches();
    virtual std::vector<DvSwitch> GetDvSwitches();

    virtual void AddVirtualSwitch(const std::string& name, int numPorts);
    virtual void RemoveVirtualSwitch(const std::string& name);

    // Attaches a physical NIC to a standard switch; it must exist and be free. The teaming policy is
    // not touched (see NicTeamingPolicy::WithUplinkAdded).
    virtual void AddUplink(const std::string& switchName, const std::string& pnic);
    virtual void RemoveUplink(const std::string& switchName, const std::string& pnic);
    virtual void RemoveDvsUplink(const std::string& dvsName, const std::string& pnic);
    // Adds a host-local port to one of the platform's own distributed switches and returns its key (one
    // more than the highest numeric key there). The name must be new on the switch; the port is
    // host-local whatever the properties say.
    virtual std::string AddDvsHostLocalPort(const std::string& dvsName, const DvPortProperties& properties);
    // The standard or distributed switch that holds a physical NIC, or empty.
    virtual std::string FindUplinkOwner(const std::string& pnic);

    virtual HostCtl::Network::NicTeamingPolicy GetTeamingPolicy(const std::string& switchName);
    virtual void SetTeamingPolicy(const std::string& switchName,
                                  const HostCtl::Network::NicTeamingPolicy& policy);

    virtual void AddPortGroup(const std::string& switchName, const std::string& portGroup, int vlanId = 0);
    // The standard switch a port group belongs to; HostCtlException when there is none.
    virtual std::string GetPortGroupSwitch(const std::string& portGroup);
    virtual int GetPortGroupVlan(const std::string& portGroup);
    // 0 (none) to 4095 (all VLANs).
    virtual void SetPortGroupVlan(const std::string& portGroup, int vlanId);

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network
