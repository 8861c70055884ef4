#pragma once

#include <string>
#include <vector>

namespace HostCtl::Network {
class VirtualSwitchInfo;
class ZenkNic;
}  // namespace HostCtl::Network

namespace Kovo {

class HostAccess;

// Safe-mode networking: moves the management interface and the uplinks of the switch that carries it
// onto a new standard switch, for a host whose management network sits on a broken distributed switch.
//
// In order: the new switch "xSwitch<i>" (the first free i from 0) and its port group "Management
// Network<j>" (the first free j from 1) are created, every kernel interface is disabled, the management
// interface is connected to the new port group, each uplink of the old switch is moved over and joins the
// new switch's teaming policy, and the management interface is enabled again. A failed uplink move or
// teaming update is logged and the next uplink moved; any other failure of the host ends the run, logged,
// and leaves what was done in place: half a move is still better than the broken switch.
class SafeModeNetwork {
  public:
    // `nic` is the management interface as the restore menu found it.
    SafeModeNetwork(HostAccess& host, HostCtl::Network::ZenkNic& nic);

    // Logs every failure and throws none; false when any part of the move failed, so the operator can
    // be told.
    bool Run();

  private:
    using Switches = HostCtl::Network::VirtualSwitchInfo;
    // The uplinks attached to the standard or distributed switch of that name.
    static std::vector<std::string> UplinksOf(Switches& switches, const std::string& switchName);
    // `prefix` followed by the first number from `first` on that `taken` says is free.
    template <typename Taken>
    static std::string FirstFree(const std::string& prefix, int first, Taken taken);
    // False when an uplink did not make it onto the new switch or its teaming order.
    static bool MoveUplinks(Switches& switches, const std::vector<std::string>& uplinks,
                            const std::string& target);

    HostAccess& _host;
    HostCtl::Network::ZenkNic& _nic;
};

}  // namespace Kovo
