#include "platform/linux/LinuxNetworkInfo.h"

#include <sys/socket.h>

#include "platform/linux/LinuxNic.h"
#include "platform/linux/NotAvailable.h"
#include "platform/linux/RunningAddresses.h"

namespace LinuxHost {

namespace {

std::string Gateway(const KernelNetwork& kernel, int family) {
    const std::vector<KernelRoute> routes = kernel.DefaultRoutes();
    const KernelRoute* best = nullptr;
    for (const KernelRoute& r : routes)
        if (r.family == family && !r.gateway.empty() && (!best || r.metric < best->metric)) best = &r;
    return best ? best->gateway : std::string();
}

}  // namespace

LinuxInterfaces::LinuxInterfaces(HostFiles files) : _files(std::move(files)) {}

std::vector<std::string> LinuxInterfaces::All() const {
    std::vector<std::string> names;
    for (std::string& name : _files.List("/sys/class/net"))
        if (name != "lo" && _files.Exists("/sys/class/net/" + name + "/ifindex"))
            names.push_back(std::move(name));
    return names;
}

std::vector<std::string> LinuxInterfaces::Physical() const {
    std::vector<std::string> names;
    for (std::string& name : All())
        if (_files.Exists("/sys/class/net/" + name + "/device")) names.push_back(std::move(name));
    return names;
}

LinuxNetworkInfo::LinuxNetworkInfo(HostFiles files, std::shared_ptr<const KernelNetwork> kernel)
    : _files(std::move(files)), _kernel(std::move(kernel)) {}

std::vector<std::unique_ptr<HostCtl::Network::Pnic>> LinuxNetworkInfo::GetPnics() {
    std::vector<std::unique_ptr<HostCtl::Network::Pnic>> pnics;
    for (std::string& name : LinuxInterfaces(_files).Physical())
        pnics.push_back(std::make_unique<LinuxPnic>(std::move(name), _files));
    return pnics;
}

void LinuxNetworkInfo::UpdateManagementInterface() {
    // Nothing is kept: every question reads the kernel afresh.
}

std::string LinuxNetworkInfo::GetManagementInterfaceName() {
    const std::vector<std::string> interfaces = LinuxInterfaces(_files).All();
    return ChooseManagementInterface(interfaces, interfaces, _kernel->Addresses(), _kernel->DefaultRoutes());
}

std::unique_ptr<HostCtl::Network::ZenkNic> LinuxNetworkInfo::GetManagementInterface() {
    std::string name = GetManagementInterfaceName();
    if (name.empty()) return nullptr;
    return std::make_unique<LinuxNic>(std::move(name), _files, _kernel);
}

bool LinuxNetworkInfo::IsZenkIpv6Enabled() {
    return _files.Exists("/proc/net/if_inet6") &&
           _files.FirstLine("/proc/sys/net/ipv6/conf/default/disable_ipv6") != "1";
}
void LinuxNetworkInfo::SetZenkIpv6Enabled(bool) {
    NetworkChangeNotAvailable();
}
bool LinuxNetworkInfo::GetPendingZenkIpv6Enabled() {
    return IsZenkIpv6Enabled();
}
void LinuxNetworkInfo::DisableNetDumper() {
    // A Linux host has no network dump service, so it is already off.
}
bool LinuxNetworkInfo::IsNetDumperEnabled() {
    return false;
}
void LinuxNetworkInfo::ClearNetworkConfig() {
    NetworkChangeNotAvailable();
}
void LinuxNetworkInfo::AutoConfigNetwork() {
    NetworkChangeNotAvailable();
}

LinuxRoutingInfo::LinuxRoutingInfo(std::shared_ptr<const KernelNetwork> kernel)
    : _kernel(std::move(kernel)) {}

HostCtl::Network::Ipv4Address LinuxRoutingInfo::GetZenKernelDefaultGateway() {
    const std::string gateway = Gateway(*_kernel, AF_INET);
    return gateway.empty() ? HostCtl::Network::Ipv4Address() : HostCtl::Network::Ipv4Address(gateway);
}
void LinuxRoutingInfo::SetZenKernelDefaultGateway(const HostCtl::Network::Ipv4Address&, bool) {
    NetworkChangeNotAvailable();
}
HostCtl::Network::Ipv6Address LinuxRoutingInfo::GetIpv6ZenKernelDefaultGateway() {
    const std::string gateway = Gateway(*_kernel, AF_INET6);
    return gateway.empty() ? HostCtl::Network::Ipv6Address() : HostCtl::Network::Ipv6Address(gateway);
}
void LinuxRoutingInfo::SetIpv6ZenKernelDefaultGateway(const HostCtl::Network::Ipv6Address&) {
    NetworkChangeNotAvailable();
}

LinuxKernelNicInfo::LinuxKernelNicInfo(HostFiles files, std::shared_ptr<const KernelNetwork> kernel)
    : _files(std::move(files)), _kernel(std::move(kernel)) {}

std::vector<std::unique_ptr<HostCtl::Network::ZenkNic>> LinuxKernelNicInfo::GetZenKernelNics() {
    std::vector<std::unique_ptr<HostCtl::Network::ZenkNic>> nics;
    for (std::string& name : LinuxInterfaces(_files).All())
        nics.push_back(std::make_unique<LinuxNic>(std::move(name), _files, _kernel));
    return nics;
}

}  // namespace LinuxHost
