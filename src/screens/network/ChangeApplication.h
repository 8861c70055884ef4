#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/hostctl/IpConfig.h"
#include "platform/hostctl/NetworkInfo.h"

namespace Kovo {

class Frame;
class HostAccess;
struct PendingNetwork;

// Writes the network window's pending record to the host in one fixed order: uplinks, MAC address and
// VLAN (left alone on a distributed switch), IPv4, the IPv6 switch and modes, the interface's IP
// configuration, the default gateways, lease renewal, the VLAN restart, host name and name servers,
// search suffixes, the DNS save, and the restart question when IPv6 is switched. Each change is logged
// as it is made. The first platform failure is logged and shown on `owner` as one line (what was being
// set, then the host's reason) and ends the run; the host agent is told to refresh its view of the
// network however the run ends.
// On a host that can undo a change by itself, the run opens one first: the steps wait in the host's
// configuration, then the whole is put in place and tested, and the operator keeps it within the time
// the host gives. A failed step, no answer, or a "no" restores the previous configuration, and the
// screen says which interfaces were put back.
class ChangeApplication {
  public:
    // `showAddress` rebuilds the window's detail pane once a new address is on the interface.
    ChangeApplication(HostAccess& host, PendingNetwork& pending, Frame& owner,
                      std::function<void()> showAddress);

    void Run();

  private:
    // The steps in their order; false after the first failure (shown).
    bool ApplySteps();
    void ApplyAdapters();
    void ApplyMacAddress();
    void ApplyVlan();
    void ChooseIpv4();
    void ChooseIpv6();
    void WriteIpConfig();
    void ApplyIpv4Gateway();
    void ApplyIpv6Gateway();
    void RestartInterface();
    void ApplyDns();
    // Runs one step; on a platform failure logs and shows prefix + reason and answers false.
    bool Guarded(const char* prefix, const std::function<void()>& step);

    HostAccess& _host;
    PendingNetwork& _pending;
    Frame& _owner;
    std::function<void()> _showAddress;

    // The interface's configuration as the host had it before this run.
    HostCtl::Network::IpConfig _configured;
    std::vector<std::string> _currentUplinks;
    bool _uplinksRead = false;
    bool _adaptersChanged = false;
    bool _vlanChanged = false;
    bool _addressChanged = false;
    bool _renewIpv4 = false;
    bool _renewIpv6 = false;
};

}  // namespace Kovo
