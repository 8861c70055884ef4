#pragma once

#include <cstddef>

// Every platform operation a test host can make fail, named once. The fault decorators check these
// (FaultingHostFactory), the simulated host's documentation lists them, and a unit test walks them all.
namespace HostCtl::Faults {

enum class FaultPoint : int {
    NetworkInfoAutoConfigNetwork,
    NetworkInfoClearNetworkConfig,
    NetworkInfoDisableNetDumper,
    NetworkInfoGetPnics,
    NetworkInfoSetZenkIpv6Enabled,
    NetworkInfoUpdateManagementInterface,
    ZenkNicCommit,
    ZenkNicConnectToDvPort,
    ZenkNicConnectToPortGroup,
    ZenkNicDisable,
    ZenkNicEnable,
    ZenkNicGetConnectionPoint,
    ZenkNicGetIpConfig,
    ZenkNicRenewIpv4Lease,
    ZenkNicRenewIpv6Lease,
    ZenkNicSetDhcpBound,
    ZenkNicSetIpConfig,
    ZenkNicSetMacAddress,
    ZenkNicSetMacAddressFromPnic,
    DnsConfigAddNameServer,
    DnsConfigAddSearchDomain,
    DnsConfigRemoveNameServers,
    DnsConfigSaveConfig,
    DnsConfigSetDomain,
    DnsConfigSetFqdn,
    DnsConfigSetHostname,
    DnsConfigSetSearchDomainsString,
    RoutingInfoGetZenKernelDefaultGateway,
    RoutingInfoSetIpv6ZenKernelDefaultGateway,
    RoutingInfoSetZenKernelDefaultGateway,
    VirtualSwitchInfoAddDvsHostLocalPort,
    VirtualSwitchInfoAddPortGroup,
    VirtualSwitchInfoAddUplink,
    VirtualSwitchInfoAddVirtualSwitch,
    VirtualSwitchInfoGetDvSwitches,
    VirtualSwitchInfoGetPortGroupSwitch,
    VirtualSwitchInfoGetPortGroupVlan,
    VirtualSwitchInfoGetTeamingPolicy,
    VirtualSwitchInfoGetVirtualSwitches,
    VirtualSwitchInfoRemoveDvsUplink,
    VirtualSwitchInfoRemoveUplink,
    VirtualSwitchInfoRemoveVirtualSwitch,
    VirtualSwitchInfoSetPortGroupVlan,
    VirtualSwitchInfoSetTeamingPolicy,
    DVPortGetProperties,
    DVPortGetVlanId,
    DVPortSetVlanId,
    SystemInfoLoadKeyboardMappings,
    SystemInfoSetKeyboardLayout,
    ResourceInfoHasRunningVirtualMachines,
};

struct FaultPointInfo {
    FaultPoint point;
    const char* name;  // "<interface>.<operation>", as a test host names the fault
};

inline constexpr FaultPointInfo kFaultPoints[] = {
    {FaultPoint::NetworkInfoAutoConfigNetwork, "NetworkInfo.AutoConfigNetwork"},
    {FaultPoint::NetworkInfoClearNetworkConfig, "NetworkInfo.ClearNetworkConfig"},
    {FaultPoint::NetworkInfoDisableNetDumper, "NetworkInfo.DisableNetDumper"},
    {FaultPoint::NetworkInfoGetPnics, "NetworkInfo.GetPnics"},
    {FaultPoint::NetworkInfoSetZenkIpv6Enabled, "NetworkInfo.SetZenkIpv6Enabled"},
    {FaultPoint::NetworkInfoUpdateManagementInterface, "NetworkInfo.UpdateManagementInterface"},
    {FaultPoint::ZenkNicCommit, "ZenkNic.Commit"},
    {FaultPoint::ZenkNicConnectToDvPort, "ZenkNic.ConnectToDvPort"},
    {FaultPoint::ZenkNicConnectToPortGroup, "ZenkNic.ConnectToPortGroup"},
    {FaultPoint::ZenkNicDisable, "ZenkNic.Disable"},
    {FaultPoint::ZenkNicEnable, "ZenkNic.Enable"},
    {FaultPoint::ZenkNicGetConnectionPoint, "ZenkNic.GetConnectionPoint"},
    {FaultPoint::ZenkNicGetIpConfig, "ZenkNic.GetIpConfig"},
    {FaultPoint::ZenkNicRenewIpv4Lease, "ZenkNic.RenewIpv4Lease"},
    {FaultPoint::ZenkNicRenewIpv6Lease, "ZenkNic.RenewIpv6Lease"},
    {FaultPoint::ZenkNicSetDhcpBound, "ZenkNic.SetDhcpBound"},
    {FaultPoint::ZenkNicSetIpConfig, "ZenkNic.SetIpConfig"},
    {FaultPoint::ZenkNicSetMacAddress, "ZenkNic.SetMacAddress"},
    {FaultPoint::ZenkNicSetMacAddressFromPnic, "ZenkNic.SetMacAddressFromPnic"},
    {FaultPoint::DnsConfigAddNameServer, "DnsConfig.AddNameServer"},
    {FaultPoint::DnsConfigAddSearchDomain, "DnsConfig.AddSearchDomain"},
    {FaultPoint::DnsConfigRemoveNameServers, "DnsConfig.RemoveNameServers"},
    {FaultPoint::DnsConfigSaveConfig, "DnsConfig.SaveConfig"},
    {FaultPoint::DnsConfigSetDomain, "DnsConfig.SetDomain"},
    {FaultPoint::DnsConfigSetFqdn, "DnsConfig.SetFqdn"},
    {FaultPoint::DnsConfigSetHostname, "DnsConfig.SetHostname"},
    {FaultPoint::DnsConfigSetSearchDomainsString, "DnsConfig.SetSearchDomainsString"},
    {FaultPoint::RoutingInfoGetZenKernelDefaultGateway, "RoutingInfo.GetZenKernelDefaultGateway"},
    {FaultPoint::RoutingInfoSetIpv6ZenKernelDefaultGateway, "RoutingInfo.SetIpv6ZenKernelDefaultGateway"},
    {FaultPoint::RoutingInfoSetZenKernelDefaultGateway, "RoutingInfo.SetZenKernelDefaultGateway"},
    {FaultPoint::VirtualSwitchInfoAddDvsHostLocalPort, "VirtualSwitchInfo.AddDvsHostLocalPort"},
    {FaultPoint::VirtualSwitchInfoAddPortGroup, "VirtualSwitchInfo.AddPortGroup"},
    {FaultPoint::VirtualSwitchInfoAddUplink, "VirtualSwitchInfo.AddUplink"},
    {FaultPoint::VirtualSwitchInfoAddVirtualSwitch, "VirtualSwitchInfo.AddVirtualSwitch"},
    {FaultPoint::VirtualSwitchInfoGetDvSwitches, "VirtualSwitchInfo.GetDvSwitches"},
    {FaultPoint::VirtualSwitchInfoGetPortGroupSwitch, "VirtualSwitchInfo.GetPortGroupSwitch"},
    {FaultPoint::VirtualSwitchInfoGetPortGroupVlan, "VirtualSwitchInfo.GetPortGroupVlan"},
    {FaultPoint::VirtualSwitchInfoGetTeamingPolicy, "VirtualSwitchInfo.GetTeamingPolicy"},
    {FaultPoint::VirtualSwitchInfoGetVirtualSwitches, "VirtualSwitchInfo.GetVirtualSwitches"},
    {FaultPoint::VirtualSwitchInfoRemoveDvsUplink, "VirtualSwitchInfo.RemoveDvsUplink"},
    {FaultPoint::VirtualSwitchInfoRemoveUplink, "VirtualSwitchInfo.RemoveUplink"},
    {FaultPoint::VirtualSwitchInfoRemoveVirtualSwitch, "VirtualSwitchInfo.RemoveVirtualSwitch"},
    {FaultPoint::VirtualSwitchInfoSetPortGroupVlan, "VirtualSwitchInfo.SetPortGroupVlan"},
    {FaultPoint::VirtualSwitchInfoSetTeamingPolicy, "VirtualSwitchInfo.SetTeamingPolicy"},
    {FaultPoint::DVPortGetProperties, "DVPort.GetProperties"},
    {FaultPoint::DVPortGetVlanId, "DVPort.GetVlanId"},
    {FaultPoint::DVPortSetVlanId, "DVPort.SetVlanId"},
    {FaultPoint::SystemInfoLoadKeyboardMappings, "SystemInfo.LoadKeyboardMappings"},
    {FaultPoint::SystemInfoSetKeyboardLayout, "SystemInfo.SetKeyboardLayout"},
    {FaultPoint::ResourceInfoHasRunningVirtualMachines, "ResourceInfo.HasRunningVirtualMachines"},
};

inline constexpr std::size_t kFaultPointCount = sizeof kFaultPoints / sizeof kFaultPoints[0];

constexpr const char* NameOf(FaultPoint point) {
    return kFaultPoints[static_cast<std::size_t>(point)].name;
}

// The table is in the enumeration's order, so NameOf is an index.
constexpr bool InEnumOrder() {
    for (std::size_t i = 0; i < kFaultPointCount; ++i)
        if (static_cast<std::size_t>(kFaultPoints[i].point) != i) return false;
    return true;
}
static_assert(InEnumOrder(), "kFaultPoints lists every FaultPoint once, in order");

}  // namespace HostCtl::Faults
