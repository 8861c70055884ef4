#include "platform/linux/NmSwitches.h"

#include <algorithm>
#include <map>

#include "platform/hostctl/HostCtlException.h"
#include "platform/linux/NotAvailable.h"

namespace LinuxHost {

namespace {

using HostCtl::Network::NicTeamingPolicy;

bool Contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

void RequireManagementSwitch(const std::string& name) {
    if (name != ManagementProfiles::kBridge) NotAvailable("Changing the switch " + name);
}

void RequireManagementPortGroup(const std::string& portGroup) {
    if (portGroup != ManagementProfiles::kName)
        throw HostCtl::Lib::HostCtlException("The host has no port group " + portGroup);
}

}  // namespace

NmSwitches::NmSwitches(std::shared_ptr<NmNetwork> network, HostFiles files)
    : _network(std::move(network)), _files(std::move(files)) {}

std::string NmSwitches::KernelController(const std::string& nic) const {
    return _files.LinkName("/sys/class/net/" + nic + "/master");
}

std::vector<HostCtl::Network::VirtualSwitch> NmSwitches::GetVirtualSwitches() {
    const ManagementNetwork management = _network->Management();
    HostCtl::Network::VirtualSwitch own;
    own.name = ManagementProfiles::kBridge;
    own.numPorts = HostCtl::Network::Portset::DEF_NUM_PORTS;
    own.uplinks = management.uplinks;
    own.portGroups = {ManagementProfiles::kName};
    std::vector<HostCtl::Network::VirtualSwitch> switches{own};

    // Other owners of NICs: a bond counts as the bridge above it, if any.
    std::map<std::string, std::vector<std::string>> others;
    for (const NmDevice& nic : _network->Nics()) {
        if (Contains(management.uplinks, nic.interface)) continue;
        std::string owner = KernelController(nic.interface);
        if (owner.empty()) continue;
        if (const std::string above = KernelController(owner); !above.empty()) owner = above;
        if (owner != ManagementProfiles::kBridge) others[owner].push_back(nic.interface);
    }
    for (auto& [name, uplinks] : others) {
        HostCtl::Network::VirtualSwitch other;
        other.name = name;
        other.numPorts = HostCtl::Network::Portset::DEF_NUM_PORTS;
        other.uplinks = std::move(uplinks);
        switches.push_back(std::move(other));
    }
    return switches;
}

std::vector<HostCtl::Network::DvSwitch> NmSwitches::GetDvSwitches() {
    return {};  // distributed switches are a feature of the other kind of host
}

void NmSwitches::AddVirtualSwitch(const std::string&, int) {
    NotAvailable("Another standard switch");
}
void NmSwitches::RemoveVirtualSwitch(const std::string& name) {
    NotAvailable("Removing the switch " + name);
}

void NmSwitches::AddUplink(const std::string& switchName, const std::string& pnic) {
    RequireManagementSwitch(switchName);
    ManagementNetwork network = _network->Management();
    if (Contains(network.uplinks, pnic)) return;
    network.uplinks.push_back(pnic);
    _network->Store(network);
}

void NmSwitches::RemoveUplink(const std::string& switchName, const std::string& pnic) {
    // A NIC leaves another owner when the management switch takes it: its profile there stops starting.
    if (switchName != ManagementProfiles::kBridge) return;
    ManagementNetwork network = _network->Management();
    const auto found = std::find(network.uplinks.begin(), network.uplinks.end(), pnic);
    if (found == network.uplinks.end()) return;
    network.uplinks.erase(found);
    _network->Store(network);
}

void NmSwitches::RemoveDvsUplink(const std::string&, const std::string&) {
    NotAvailable("A distributed switch");
}
std::string NmSwitches::AddDvsHostLocalPort(const std::string&, const HostCtl::Network::DvPortProperties&) {
    NotAvailable("A distributed switch");
}

std::string NmSwitches::FindUplinkOwner(const std::string& pnic) {
    for (const HostCtl::Network::VirtualSwitch& owner : GetVirtualSwitches())
        if (Contains(owner.uplinks, pnic)) return owner.name;
    return {};
}

NicTeamingPolicy NmSwitches::GetTeamingPolicy(const std::string& switchName) {
    NicTeamingPolicy policy;
    if (switchName != ManagementProfiles::kBridge) return policy;
    // Active-backup: one uplink carries the traffic, the others wait in their order.
    policy.SetUplinkOrder(_network->Management().uplinks);
    policy.SetMaxActiveUplinks(1);
    policy.SetLoadBalancing("failover_explicit");
    return policy;
}

void NmSwitches::SetTeamingPolicy(const std::string& switchName, const NicTeamingPolicy& policy) {
    if (switchName != ManagementProfiles::kBridge || !policy.HasExplicitUplinkOrder()) return;
    ManagementNetwork network = _network->Management();
    // The policy orders the uplinks the switch has; it adds and removes none.
    std::vector<std::string> order;
    for (const std::string& nic : policy.GetUplinkOrder())
        if (Contains(network.uplinks, nic) && !Contains(order, nic)) order.push_back(nic);
    for (const std::string& nic : network.uplinks)
        if (!Contains(order, nic)) order.push_back(nic);
    if (order == network.uplinks) return;
    network.uplinks = order;
    _network->Store(network);
}

void NmSwitches::AddPortGroup(const std::string& switchName, const std::string& portGroup, int) {
    NotAvailable("The port group " + portGroup + " on " + switchName);
}

std::string NmSwitches::GetPortGroupSwitch(const std::string& portGroup) {
    RequireManagementPortGroup(portGroup);
    return ManagementProfiles::kBridge;
}

int NmSwitches::GetPortGroupVlan(const std::string& portGroup) {
    RequireManagementPortGroup(portGroup);
    return _network->Management().vlan;
}

void NmSwitches::SetPortGroupVlan(const std::string& portGroup, int vlanId) {
    RequireManagementPortGroup(portGroup);
    if (vlanId < 0 || vlanId > 4094)
        throw HostCtl::Lib::HostCtlException("Invalid VLAN ID " + std::to_string(vlanId));
    ManagementNetwork network = _network->Management();
    if (network.vlan == vlanId) return;
    network.vlan = vlanId;
    _network->Store(network);
}

NmPortNames::NmPortNames(std::shared_ptr<NmNetwork> network, HostFiles files)
    : _network(std::move(network)), _files(std::move(files)) {}

bool NmPortNames::IsValidVirtualSwitch(const std::string& name) {
    for (const auto& known : NmSwitches(_network, _files).GetVirtualSwitches())
        if (known.name == name) return true;
    return false;
}

bool NmPortNames::IsValidPortGroup(const std::string& name) {
    return name == ManagementProfiles::kName;
}

}  // namespace LinuxHost
