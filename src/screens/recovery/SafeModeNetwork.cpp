#include "recovery/SafeModeNetwork.h"

#include "frames/HostAccess.h"
#include "frames/Log.h"
#include "network/ManagementSwitch.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/Portset.h"
#include "platform/hostctl/VirtualSwitchInfo.h"
#include "platform/hostctl/ZenKernelNicInfo.h"
#include "platform/hostctl/ZenkNic.h"

namespace Kovo {

using HostCtl::Lib::HostCtlException;

SafeModeNetwork::SafeModeNetwork(HostAccess& host, HostCtl::Network::ZenkNic& nic) : _host(host), _nic(nic) {}

template <typename Taken>
std::string SafeModeNetwork::FirstFree(const std::string& prefix, int first, Taken taken) {
    for (int i = first;; ++i) {
        std::string name = prefix + std::to_string(i);
        if (!taken(name)) return name;
    }
}

std::vector<std::string> SafeModeNetwork::UplinksOf(Switches& switches, const std::string& switchName) {
    for (const auto& standard : switches.GetVirtualSwitches())
        if (standard.name == switchName) return standard.uplinks;
    for (const auto& distributed : switches.GetDvSwitches())
        if (distributed.name == switchName) return distributed.uplinks;
    throw HostCtlException("Switch " + switchName + " does not exist");
}

bool SafeModeNetwork::MoveUplinks(Switches& switches, const std::vector<std::string>& uplinks,
                                  const std::string& target) {
    bool moved = true;
    for (const auto& uplink : uplinks) {
        try {
            ManagementSwitch::MoveUplink(switches, uplink, target);
        } catch (const HostCtlException& e) {
            LogFailure("Moving uplink " + uplink + " failed: ", e);
            moved = false;
            continue;
        }
        try {
            ManagementSwitch::AddToTeaming(switches, target, uplink);
        } catch (const HostCtlException& e) {
            LogFailure("VS: add uplink to teaming policy failed: ", e);
            moved = false;
        }
    }
    return moved;
}

bool SafeModeNetwork::Run() {
    try {
        // The lookup only confirms that the host still has a management interface; the move works on
        // the one the menu handed over.
        {
            auto network = _host.Network();
            network->UpdateManagementInterface();
            const auto management = network->GetManagementInterface();
            if (!management || !management->IsValid()) {
                LogError("Could not find the management network");
                return false;
            }
        }
        auto switches = _host.Switches();
        // Read before anything changes: the uplinks leave the old switch one by one below.
        const std::vector<std::string> uplinks =
            UplinksOf(*switches, ManagementSwitch::SwitchOf(_host, _nic));

        auto portsets = _host.Portsets();
        const std::string switchName = FirstFree(
            "xSwitch", 0, [&](const std::string& name) { return portsets->IsValidVirtualSwitch(name); });
        switches->AddVirtualSwitch(switchName, HostCtl::Network::Portset::DEF_NUM_PORTS);

        auto portGroups = _host.PortGroups();
        const std::string portGroup = FirstFree("Management Network", 1, [&](const std::string& name) {
            return portGroups->IsValidPortGroup(name);
        });
        switches->AddPortGroup(switchName, portGroup);

        // Nothing but the management interface may come up on the moved uplinks.
        for (const auto& nic : _host.ZenKernelNics()->GetZenKernelNics()) nic->Disable();

        _nic.ConnectToPortGroup(portGroup);
        const bool moved = MoveUplinks(*switches, uplinks, switchName);
        _nic.Enable();
        return moved;
    } catch (const std::exception& e) {
        LogFailure("Changing to legacy virtual switch failed: ", e);
        return false;
    }
}

}  // namespace Kovo
