#pragma once

#include <cctype>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/hostctl/Pnic.h"
#include "platform/hostctl/ZenkNic.h"

namespace HostCtl::Network {

// A name the kernel would give an interface: 1 to 15 bytes, not "." or "..", no '/', ':' or blank. A
// platform refuses any other name its host's configuration holds.
inline bool IsValidInterfaceName(std::string_view name) {
    if (name.empty() || name.size() > 15 || name == "." || name == "..") return false;
    for (char c : name)
        if (c == '/' || c == ':' || c == '\0' || std::isspace(static_cast<unsigned char>(c))) return false;
    return true;
}

// A change of the host's network that the host undoes by itself unless it is kept in time: from the
// moment it opens, the network settings made through the platform wait in the host's configuration until
// Apply puts them in place together. Destroying a change that was not kept rolls it back.
class NetworkChange {
  public:
    virtual ~NetworkChange() = default;
    // Puts every setting made since the change opened in place; HostCtlException when the host could not.
    virtual void Apply() = 0;
    // Seconds until the host goes back by itself; 0 once kept or rolled back.
    virtual int SecondsLeft() = 0;
    virtual void Keep() = 0;
    // Goes back at once; the interfaces the host put back, by name.
    virtual std::vector<std::string> RollBack() = 0;
};

// The host's network as a whole: its physical NICs, the management interface and the settings that
// belong to no single interface.
class NetworkInfo {
  public:
    virtual ~NetworkInfo() = default;

    virtual std::vector<std::unique_ptr<Pnic>> GetPnics() = 0;
    // Makes the host look up which interface is the management interface again.
    virtual void UpdateManagementInterface() = 0;
    // nullptr when the host has no management interface.
    virtual std::unique_ptr<ZenkNic> GetManagementInterface() = 0;
    // "" when the host has no management interface.
    virtual std::string GetManagementInterfaceName() = 0;

    virtual bool IsZenkIpv6Enabled() = 0;
    // Takes effect at the next boot; GetPendingZenkIpv6Enabled tells what that boot will have.
    virtual void SetZenkIpv6Enabled(bool enabled) = 0;
    virtual bool GetPendingZenkIpv6Enabled() = 0;

    virtual void DisableNetDumper() = 0;
    virtual bool IsNetDumperEnabled() = 0;
    // The factory network restore: everything configured goes, then the host configures itself afresh.
    virtual void ClearNetworkConfig() = 0;
    virtual void AutoConfigNetwork() = 0;

    // Opens a change that rolls back after `rollbackSeconds` unless kept; nullptr on a host that cannot
    // undo a change by itself, where each setting takes effect as it is made.
    virtual std::unique_ptr<NetworkChange> BeginChange(int rollbackSeconds) {
        (void)rollbackSeconds;
        return nullptr;
    }
    // What the first change will take over from how the host was set up otherwise, for the operator to
    // read before confirming it; "" when there is nothing to take over.
    virtual std::string TakeOverNotice() { return {}; }
};

}  // namespace HostCtl::Network
