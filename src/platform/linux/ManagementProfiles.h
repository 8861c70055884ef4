#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/hostctl/IpConfig.h"
#include "platform/linux/Bus.h"
#include "platform/linux/NetworkManagerClient.h"

namespace LinuxHost {

// The management network as the console keeps it, one value for the whole: a Linux bridge (the standard
// switch) whose ports are the uplinks, the VLAN the management address sits on, and the management
// interface's IP and DNS settings.
struct ManagementNetwork {
    // NICs in teaming order. Two or more make an active-backup bond under the bridge, the first its primary.
    std::vector<std::string> uplinks;
    int vlan = 0;  // 0: the address is on the bridge itself
    // The bridge's MAC address ("" lets the kernel choose): the first uplink's own, as the host had it.
    std::string mac;
    HostCtl::Network::IpConfig ip;
    std::vector<std::string> nameServers;  // IPv4 and IPv6, in order
    std::vector<std::string> searchDomains;

    bool operator==(const ManagementNetwork& other) const = default;
};

// The network service's profiles that make a management network, and the way back. Each profile the
// console makes is marked with its role in the profile's user data ("kovo.role"), so the console finds
// its own whatever an operator renamed; their names are for people reading `nmcli connection`.
class ManagementProfiles {
  public:
    static constexpr const char* kBridge = "xswitch0";
    static constexpr const char* kBond = "mgmtbond0";
    static constexpr const char* kName = "Management Network";
    static constexpr const char* kRoleKey = "kovo.role";

    // The interface that holds the management address.
    static std::string Interface(const ManagementNetwork& network);

    // The settings of every profile of `network`, the bridge first. Each has its role and interface name;
    // none has a UUID yet.
    static std::vector<Bus::Value> Render(const ManagementNetwork& network);
    // The management network the console's profiles among `profiles` describe; nullopt when there is no
    // bridge profile of the console's.
    static std::optional<ManagementNetwork> Parse(const std::vector<NmProfile>& profiles);

    // The IP and DNS settings a profile holds, into `network`.
    static void ReadIp(const NmProfile& profile, ManagementNetwork& network);

    // A profile's role ("bridge", "bond", "port", "vlan"), "" for one the console did not make.
    static std::string RoleOf(const NmProfile& profile);
    // The role and interface name of rendered settings, which together name a profile of the console's.
    static std::string Key(const Bus::Value& settings);
    static std::string Key(const NmProfile& profile);

  private:
    static std::optional<ManagementNetwork> ParseProfiles(const std::vector<NmProfile>& profiles);
};

}  // namespace LinuxHost
