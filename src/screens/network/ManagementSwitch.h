#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/hostctl/ConnectionPoint.h"

namespace HostCtl::Network {
class VirtualSwitchInfo;
class ZenkNic;
}  // namespace HostCtl::Network

namespace Kovo {

class HostAccess;

// The switch side of the management interface: the switch that carries it, that switch's uplinks and
// the VLAN of the interface's port. Every operation reports success as a boolean and logs its own
// failure with the exception's text, so a caller treats a failed read as "nothing to compare" and goes on.
//
// On a standard switch the uplinks are the teaming policy's explicit order (the attached NICs when the
// policy states no order), and adding or removing one also updates that policy. A distributed switch's
// uplinks and ports are read here but its membership is never changed.
class ManagementSwitch {
  public:
    ManagementSwitch(HostAccess& host, HostCtl::Network::ZenkNic& nic);

    // The name of the switch that carries the interface.
    bool Name(std::string& name);
    bool Uplinks(std::vector<std::string>& uplinks);
    // Attaches a NIC. A NIC that another switch holds is taken from it first (the operator confirmed that).
    bool AddUplink(const std::string& pnic);
    bool RemoveUplink(const std::string& pnic);
    bool Vlan(int& vlanId);
    bool SetVlan(int vlanId);

    // Whether the management interface that `locate` finds is a distributed switch's port. Not knowing
    // answers no, so the caller goes on as for a standard switch: a NIC `locate` cannot find (null or
    // invalid) is logged as an error, a host error while it looks or reads the port with `logUnknown`.
    static bool OnDistributedSwitch(const std::function<HostCtl::Network::ZenkNic*()>& locate,
                                    void (*logUnknown)(const std::string&));

    // The steps above without their logging, for other moves of uplinks between switches. Each throws
    // HostCtlException with the host's reason.
    using Switches = HostCtl::Network::VirtualSwitchInfo;
    // The name of the standard or distributed switch whose port the interface is plugged into.
    static std::string SwitchOf(HostAccess& host, HostCtl::Network::ZenkNic& nic);
    // Takes a NIC from the switch that holds it, unless that is `target` (a standard holder's teaming
    // policy lets it go too), and attaches it to the standard switch `target`.
    static void MoveUplink(Switches& switches, const std::string& pnic, const std::string& target);
    // The standard switch's teaming policy once `pnic` has joined it (NicTeamingPolicy::WithUplinkAdded).
    static void AddToTeaming(Switches& switches, const std::string& switchName, const std::string& pnic);

  private:
    enum class Kind { Standard, Distributed };
    // Throws HostCtlException with the reason when the switch cannot be told.
    static HostCtl::Network::ConnectionPoint Connection(HostCtl::Network::ZenkNic& nic);
    static std::string SwitchName(HostAccess& host, const HostCtl::Network::ConnectionPoint& point);
    static Kind KindOf(Switches& switches, const std::string& switchName);
    static void TakeFromOwner(Switches& switches, const std::string& pnic, const std::string& keeper);
    // Attaches or detaches a NIC on the standard switch that carries the interface, then its teaming policy.
    bool ChangeUplink(const std::string& pnic, bool add);

    HostAccess& _host;
    HostCtl::Network::ZenkNic& _nic;
};

}  // namespace Kovo
