#include "network/ManagementSwitch.h"

#include <algorithm>

#include "frames/HostAccess.h"
#include "frames/Log.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/NicTeamingPolicy.h"
#include "platform/hostctl/VirtualSwitchInfo.h"
#include "platform/hostctl/ZenkNic.h"

namespace Kovo {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::ConnectionPoint;
using HostCtl::Network::NicTeamingPolicy;

ManagementSwitch::ManagementSwitch(HostAccess& host, HostCtl::Network::ZenkNic& nic)
    : _host(host), _nic(nic) {}

ConnectionPoint ManagementSwitch::Connection(HostCtl::Network::ZenkNic& nic) {
    ConnectionPoint point = nic.GetConnectionPoint();
    switch (point.connecteeType) {
        case HostCtl::Network::CONNECTEE_PORTGROUP:
        case HostCtl::Network::CONNECTEE_DVPORT:
            return point;
        case HostCtl::Network::CONNECTEE_OPAQUE:
            throw HostCtlException("Opaque network connectee type not supported");
        default:
            throw HostCtlException("Unsupported connectee type");
    }
}

std::string ManagementSwitch::SwitchName(HostAccess& host, const ConnectionPoint& point) {
    if (point.connecteeType == HostCtl::Network::CONNECTEE_DVPORT) return point.dvsName;
    return host.Switches()->GetPortGroupSwitch(point.portGroup);
}

std::string ManagementSwitch::SwitchOf(HostAccess& host, HostCtl::Network::ZenkNic& nic) {
    return SwitchName(host, Connection(nic));
}

ManagementSwitch::Kind ManagementSwitch::KindOf(Switches& switches, const std::string& switchName) {
    for (const auto& standard : switches.GetVirtualSwitches())
        if (standard.name == switchName) return Kind::Standard;
    for (const auto& distributed : switches.GetDvSwitches())
        if (distributed.name == switchName) return Kind::Distributed;
    throw HostCtlException("Unsupported xSwitch type");
}

bool ManagementSwitch::OnDistributedSwitch(const std::function<HostCtl::Network::ZenkNic*()>& locate,
                                           void (*logUnknown)(const std::string&)) {
    try {
        HostCtl::Network::ZenkNic* nic = locate();
        if (nic == nullptr || !nic->IsValid()) {
            LogError("Could not locate the management interface");
            return false;
        }
        return nic->GetConnectionPoint().connecteeType == HostCtl::Network::CONNECTEE_DVPORT;
    } catch (const std::exception& e) {
        logUnknown(std::string("Could not determine if a DVS was in use: ") + e.what());
        return false;
    }
}

bool ManagementSwitch::Name(std::string& name) {
    try {
        name = SwitchOf(_host, _nic);
        return true;
    } catch (const std::exception& e) {
        LogFailure("Getting switch name failed: ", e);
        return false;
    }
}

bool ManagementSwitch::Uplinks(std::vector<std::string>& uplinks) {
    std::string name;
    if (!Name(name)) return false;
    try {
        auto switches = _host.Switches();
        if (KindOf(*switches, name) == Kind::Distributed) {
            try {
                for (const auto& distributed : switches->GetDvSwitches())
                    if (distributed.name == name) uplinks = distributed.uplinks;
                return true;
            } catch (const std::exception& e) {
                LogFailure("DVS: getting used uplinks failed: ", e);
                return false;
            }
        }
        const NicTeamingPolicy policy = switches->GetTeamingPolicy(name);
        if (policy.HasExplicitUplinkOrder()) {
            uplinks = policy.GetUplinkOrder();
            return true;
        }
        for (const auto& standard : switches->GetVirtualSwitches())
            if (standard.name == name) uplinks = standard.uplinks;
        return true;
    } catch (const std::exception& e) {
        LogFailure("Getting uplinks failed: ", e);
        return false;
    }
}

void ManagementSwitch::TakeFromOwner(Switches& switches, const std::string& pnic, const std::string& keeper) {
    const std::string owner = switches.FindUplinkOwner(pnic);
    if (owner.empty() || owner == keeper) return;
    if (KindOf(switches, owner) == Kind::Distributed) {
        switches.RemoveDvsUplink(owner, pnic);
        return;
    }
    switches.RemoveUplink(owner, pnic);
    switches.SetTeamingPolicy(owner,
                              NicTeamingPolicy::WithUplinkRemoved(switches.GetTeamingPolicy(owner), pnic));
}

void ManagementSwitch::MoveUplink(Switches& switches, const std::string& pnic, const std::string& target) {
    TakeFromOwner(switches, pnic, target);
    switches.AddUplink(target, pnic);
}

void ManagementSwitch::AddToTeaming(Switches& switches, const std::string& switchName,
                                    const std::string& pnic) {
    switches.SetTeamingPolicy(switchName,
                              NicTeamingPolicy::WithUplinkAdded(switches.GetTeamingPolicy(switchName), pnic));
}

bool ManagementSwitch::ChangeUplink(const std::string& pnic, bool add) {
    std::string name;
    if (!Name(name)) return false;
    auto switches = _host.Switches();
    try {
        if (KindOf(*switches, name) != Kind::Standard) throw HostCtlException("Unsupported xSwitch type");
        if (add) {
            MoveUplink(*switches, pnic, name);
        } else {
            switches->RemoveUplink(name, pnic);
        }
    } catch (const std::exception& e) {
        LogFailure((add ? "Adding uplink " : "Removing uplink ") + pnic + " failed: ", e);
        return false;
    }
    try {
        if (add)
            AddToTeaming(*switches, name, pnic);
        else
            switches->SetTeamingPolicy(
                name, NicTeamingPolicy::WithUplinkRemoved(switches->GetTeamingPolicy(name), pnic));
        return true;
    } catch (const std::exception& e) {
        LogFailure(add ? "VS: add uplink to teaming policy failed: "
                       : "VS: remove uplink from teaming policy failed: ",
                   e);
        return false;
    }
}

bool ManagementSwitch::AddUplink(const std::string& pnic) {
    return ChangeUplink(pnic, true);
}

bool ManagementSwitch::RemoveUplink(const std::string& pnic) {
    return ChangeUplink(pnic, false);
}

bool ManagementSwitch::Vlan(int& vlanId) {
    try {
        const ConnectionPoint point = Connection(_nic);
        vlanId = point.connecteeType == HostCtl::Network::CONNECTEE_DVPORT
                     ? _host.DvPort(point.dvsName, point.portKey)->GetVlanId()
                     : _host.Switches()->GetPortGroupVlan(point.portGroup);
        return true;
    } catch (const std::exception& e) {
        LogFailure("Getting VlanID failed: ", e);
        return false;
    }
}

bool ManagementSwitch::SetVlan(int vlanId) {
    try {
        const ConnectionPoint point = Connection(_nic);
        if (point.connecteeType == HostCtl::Network::CONNECTEE_DVPORT)
            _host.DvPort(point.dvsName, point.portKey)->SetVlanId(vlanId);
        else
            _host.Switches()->SetPortGroupVlan(point.portGroup, vlanId);
        return true;
    } catch (const std::exception& e) {
        LogFailure("Setting VlanID failed: ", e);
        return false;
    }
}

}  // namespace Kovo
