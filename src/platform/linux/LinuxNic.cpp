#include "platform/linux/LinuxNic.h"

#include <cstdlib>

#include "platform/linux/NotAvailable.h"
#include "platform/linux/RunningAddresses.h"
#include "platform/linux/Systemd.h"

namespace LinuxHost {

namespace {

std::string NetPath(const std::string& name, const char* attribute) {
    return "/sys/class/net/" + name + "/" + attribute;
}

// The adapter's model as the hardware database names it from the device's modalias.
std::string ModelOf(const std::string& modalias) {
    if (modalias.empty()) return {};
    sd_hwdb* hwdb = nullptr;
    try {
        if (Systemd::HwdbNew(&hwdb) < 0) return {};
    } catch (const std::exception&) {
        return {};  // no hardware database to ask: the model stays unknown
    }
    const char* model = nullptr;
    std::string result;
    if (Systemd::HwdbGet(hwdb, modalias.c_str(), "ID_MODEL_FROM_DATABASE", &model) >= 0 && model)
        result = model;
    Systemd::HwdbUnref(hwdb);
    return result;
}

}  // namespace

LinuxPnic::LinuxPnic(std::string name, HostFiles files) : _name(std::move(name)), _files(std::move(files)) {}

std::string LinuxPnic::Attribute(const char* name) const {
    return _files.FirstLine(NetPath(_name, name));
}

std::string LinuxPnic::GetName() const {
    return _name;
}
std::string LinuxPnic::GetLabel() const {
    // A virtio adapter's device is on the virtio bus; the PCI function above it is what the database knows.
    for (const char* alias : {"device/modalias", "device/../modalias"}) {
        std::string model = ModelOf(Attribute(alias));
        if (!model.empty()) return model;
    }
    return GetDriver();
}
std::string LinuxPnic::GetMacAddress() const {
    return Attribute("address");
}
bool LinuxPnic::IsLinkUp() const {
    // carrier reads only while the interface is up; a down interface has no link to speak of.
    return Attribute("carrier") == "1";
}
int LinuxPnic::GetSpeedMbps() const {
    // -1 (or no answer) while there is no link.
    const int speed = atoi(Attribute("speed").c_str());
    return speed > 0 ? speed : 0;
}
std::string LinuxPnic::GetDriver() const {
    return _files.LinkName(NetPath(_name, "device/driver"));
}

LinuxNic::LinuxNic(std::string name, HostFiles files, std::shared_ptr<const KernelNetwork> kernel)
    : _name(std::move(name)), _files(std::move(files)), _kernel(std::move(kernel)) {}

std::string LinuxNic::GetName() const {
    return _name;
}
bool LinuxNic::IsValid() {
    return _files.Exists(NetPath(_name, "ifindex"));
}
HostCtl::Network::IpConfig LinuxNic::GetIpConfig() {
    return RunningIpConfig(_name, _kernel->Addresses(), _kernel->DefaultRoutes());
}
HostCtl::Network::IpConfig LinuxNic::GetConfiguredIpConfig() {
    // What runs is what the host's network service was told; the console keeps no copy of its own.
    return GetIpConfig();
}
std::string LinuxNic::GetMacAddress() {
    return _files.FirstLine(NetPath(_name, "address"));
}
bool LinuxNic::GetDhcpBound() {
    const HostCtl::Network::IpConfig config = GetIpConfig();
    return config.GetUseDhcp() && config.GetIpv4Address().GetStringAddress() != "0.0.0.0";
}
bool LinuxNic::IsEnabled() {
    // IFF_UP is the lowest bit of the interface flags.
    return strtoul(_files.FirstLine(NetPath(_name, "flags")).c_str(), nullptr, 16) & 1;
}
HostCtl::Network::ConnectionPoint LinuxNic::GetConnectionPoint() {
    return {};
}

void LinuxNic::SetIpConfig(const HostCtl::Network::IpConfig&) {
    NetworkChangeNotAvailable();
}
void LinuxNic::SetMacAddress(const std::string&) {
    NetworkChangeNotAvailable();
}
void LinuxNic::SetMacAddressFromPnic(const HostCtl::Network::Pnic&) {
    NetworkChangeNotAvailable();
}
void LinuxNic::SetDhcpBound(bool) {
    NetworkChangeNotAvailable();
}
void LinuxNic::RenewIpv4Lease() {
    NetworkChangeNotAvailable();
}
void LinuxNic::RenewIpv6Lease() {
    NetworkChangeNotAvailable();
}
void LinuxNic::Disable() {
    NetworkChangeNotAvailable();
}
void LinuxNic::Commit() {
    NetworkChangeNotAvailable();
}
void LinuxNic::Enable() {
    NetworkChangeNotAvailable();
}
void LinuxNic::ConnectToPortGroup(const std::string&) {
    NetworkChangeNotAvailable();
}
void LinuxNic::ConnectToDvPort(const std::string&, const std::string&) {
    NotAvailable("A distributed switch");
}

}  // namespace LinuxHost
