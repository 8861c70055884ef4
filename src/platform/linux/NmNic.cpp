#include "platform/linux/NmNic.h"

#include <cctype>

#include "platform/linux/NotAvailable.h"

namespace LinuxHost {

namespace {

std::string Lowercase(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

}  // namespace

NmPnic::NmPnic(const NmDevice& device, HostFiles files)
    : LinuxPnic(device.interface, std::move(files)), _device(device) {}

std::string NmPnic::GetMacAddress() const {
    // The NIC's own address, not one a bond gave it; a NIC without one (a virtual NIC) has its current one.
    return Lowercase(_device.permHwAddress.empty() ? _device.hwAddress : _device.permHwAddress);
}
bool NmPnic::IsLinkUp() const {
    return _device.carrier;
}
int NmPnic::GetSpeedMbps() const {
    return _device.carrier ? static_cast<int>(_device.speedMbps) : 0;
}

NmZenkNic::NmZenkNic(std::string name, HostFiles files, std::shared_ptr<const KernelNetwork> kernel,
                     std::shared_ptr<NmNetwork> network)
    : LinuxNic(std::move(name), std::move(files), std::move(kernel)), _network(std::move(network)) {}

HostCtl::Network::IpConfig NmZenkNic::GetConfiguredIpConfig() {
    return _network->Management().ip;
}

void NmZenkNic::SetIpConfig(const HostCtl::Network::IpConfig& config) {
    ManagementNetwork network = _network->Management();
    network.ip = config;
    _network->Store(network);
}

void NmZenkNic::SetMacAddress(const std::string& mac) {
    ManagementNetwork network = _network->Management();
    network.mac = Lowercase(mac);
    _network->Store(network);
}

void NmZenkNic::SetMacAddressFromPnic(const HostCtl::Network::Pnic& pnic) {
    SetMacAddress(pnic.GetMacAddress());
}

void NmZenkNic::SetDhcpBound(bool) {
    // The service keeps its lease with the interface by itself.
}

void NmZenkNic::RenewIpv4Lease() {
    // Inside a change the lease is taken again when the change is put in place.
    if (!_network->ChangeOpen()) _network->Activate();
}

void NmZenkNic::RenewIpv6Lease() {
    if (!_network->ChangeOpen()) _network->Activate();
}

void NmZenkNic::Disable() {
    if (!_network->ChangeOpen()) _network->Deactivate();
}

void NmZenkNic::Commit() {
    // The profiles are the configured state; there is nothing to copy.
}

void NmZenkNic::Enable() {
    if (!_network->ChangeOpen()) _network->Activate();
}

HostCtl::Network::ConnectionPoint NmZenkNic::GetConnectionPoint() {
    HostCtl::Network::ConnectionPoint point;
    point.connecteeType = HostCtl::Network::CONNECTEE_PORTGROUP;
    point.portGroup = ManagementProfiles::kName;
    return point;
}

void NmZenkNic::ConnectToPortGroup(const std::string& portGroup) {
    // The management network is the one port group of its bridge.
    if (portGroup != ManagementProfiles::kName) NotAvailable("Another port group");
}

}  // namespace LinuxHost
