#include "platform/linux/LinuxHostFactory.h"

#include <syslog.h>

#include <mutex>

#include "platform/hostctl/HostsTable.h"
#include "platform/hostctl/TextFields.h"
#include "platform/linux/LinuxDnsConfig.h"
#include "platform/linux/LinuxHardwareInfo.h"
#include "platform/linux/LinuxNetworkInfo.h"
#include "platform/linux/LinuxNic.h"
#include "platform/linux/LinuxOptions.h"
#include "platform/linux/LinuxSystemIdentity.h"
#include "platform/linux/LinuxSystemInfo.h"
#include "platform/linux/NetworkWatcher.h"
#include "platform/linux/NmNetworkInfo.h"
#include "platform/linux/NmNic.h"
#include "platform/linux/NmSwitches.h"
#include "platform/linux/NotAvailable.h"

namespace LinuxHost {

namespace {

// Storage adapters are the host's disks' business, not the console's: none is named to it.
class NoStorageAdapters : public HostCtl::Hardware::StorageInfo {
  public:
    std::string GetAdapterVersion(const std::string& adapter) override {
        NotAvailable("Storage adapter " + adapter);
    }
    std::string GetAdapterDriver(const std::string& adapter) override {
        NotAvailable("Storage adapter " + adapter);
    }
};

// Smart-card login is a feature of the other kind of host: a Linux host shows no reader.
class NoSmartCards : public HostCtl::Hardware::SmartCardInfo {
  public:
    std::vector<HostCtl::Hardware::SmartCardSlot> GetAllSlots() override { return {}; }
    bool GetToken(const HostCtl::Hardware::SmartCardSlot&, HostCtl::Hardware::SmartCardToken&) override {
        return false;
    }
};

constexpr int kNotRun = 127;  // as a shell says of a program it cannot find

// The program a command line runs here, or nothing (logged) for a tool of the other kind of host.
std::optional<HostCtl::Program> ProgramOf(const std::string& commandLine) {
    std::optional<HostCtl::Program> program = LinuxPrograms::ResolveCommandLine(commandLine);
    if (!program) syslog(LOG_WARNING, "Not run on this host: %s", commandLine.c_str());
    return program;
}

}  // namespace

LinuxHostFactory::LinuxHostFactory(HostFiles files, std::shared_ptr<const KernelNetwork> kernel,
                                   bool followChanges, NetworkService service)
    : _files(std::move(files)),
      _kernel(std::move(kernel)),
      _followChanges(followChanges),
      _findService(std::move(service)) {}

std::shared_ptr<NmNetwork> LinuxHostFactory::Service() const {
    if (!_service && _findService) _service = _findService();
    return _service;
}

void LinuxHostFactory::Initialize(const std::string& ident) {
    const HostCtl::Util::ProductNames names = LinuxSystemIdentity(_files).GetProductNames();
    syslog(LOG_INFO, "%s on %s %s (kernel build %s)", ident.c_str(), names.name.c_str(),
           names.version.c_str(), names.build.c_str());
}

std::unique_ptr<HostCtl::Network::NetworkInfo> LinuxHostFactory::GetNetworkInfo() const {
    // Started by the first screen that shows the network, not at start-up: by then the console waits for
    // its signals on a thread of its own, and a change reported sooner would meet no one waiting for it.
    static std::once_flag watching;
    if (_followChanges) std::call_once(watching, StartNetworkWatcher);
    if (const auto service = Service()) return std::make_unique<NmNetworkInfo>(_files, _kernel, service);
    return std::make_unique<LinuxNetworkInfo>(_files, _kernel);
}
std::unique_ptr<HostCtl::Network::DnsConfig> LinuxHostFactory::GetDnsConfig() const {
    if (const auto service = Service()) return std::make_unique<NmDnsConfig>(_files, service);
    return std::make_unique<LinuxDnsConfig>(_files);
}
std::unique_ptr<HostCtl::Network::RoutingInfo> LinuxHostFactory::GetRoutingInfo() const {
    if (const auto service = Service()) return std::make_unique<NmRoutingInfo>(_kernel, service);
    return std::make_unique<LinuxRoutingInfo>(_kernel);
}
std::unique_ptr<HostCtl::Network::VirtualSwitchInfo> LinuxHostFactory::GetVirtualSwitchInfo() const {
    if (const auto service = Service()) return std::make_unique<NmSwitches>(service, _files);
    NotAvailable("Switch configuration without a network service");
}
std::unique_ptr<HostCtl::Network::Pnic> LinuxHostFactory::GetPnic(const std::string& name) const {
    if (const auto service = Service()) {
        for (const NmDevice& nic : service->Nics())
            if (nic.interface == name) return std::make_unique<NmPnic>(nic, _files);
    } else {
        for (const std::string& physical : LinuxInterfaces(_files).Physical())
            if (physical == name) return std::make_unique<LinuxPnic>(name, _files);
    }
    throw HostCtl::Lib::HostCtlException("The host has no network adapter " + name);
}
std::unique_ptr<HostCtl::Network::DVPort> LinuxHostFactory::GetDvPort(const std::string&,
                                                                      const std::string&) const {
    NotAvailable("A distributed switch");
}
std::unique_ptr<HostCtl::Network::Portset> LinuxHostFactory::GetPortset() const {
    if (const auto service = Service()) return std::make_unique<NmPortNames>(service, _files);
    NotAvailable("Switch configuration without a network service");
}
std::unique_ptr<HostCtl::Network::PortGroup> LinuxHostFactory::GetPortGroup() const {
    if (const auto service = Service()) return std::make_unique<NmPortNames>(service, _files);
    NotAvailable("Switch configuration without a network service");
}
std::unique_ptr<HostCtl::Network::ZenKernelNicInfo> LinuxHostFactory::GetZenKernelNicInfo() const {
    return std::make_unique<LinuxKernelNicInfo>(_files, _kernel);
}
std::unique_ptr<HostCtl::Network::HostsFile> LinuxHostFactory::GetHostsFile() const {
    return std::make_unique<HostCtl::Network::HostsTable>(_files.Under("/etc/hosts").string());
}

std::unique_ptr<HostCtl::System::SystemInfo> LinuxHostFactory::GetSystemInfo() const {
    return std::make_unique<LinuxSystemInfo>(_files, [] { return std::make_unique<SystemServices>(); });
}
std::unique_ptr<HostCtl::Util::SystemIdentity> LinuxHostFactory::GetSystemIdentity() const {
    return std::make_unique<LinuxSystemIdentity>(_files);
}
std::unique_ptr<HostCtl::Hardware::HardwareInfo> LinuxHostFactory::GetHardwareInfo() const {
    return std::make_unique<LinuxHardwareInfo>(_files);
}
std::unique_ptr<HostCtl::Hardware::StorageInfo> LinuxHostFactory::GetStorageInfo() const {
    return std::make_unique<NoStorageAdapters>();
}
std::unique_ptr<HostCtl::Hardware::CpuInfo> LinuxHostFactory::GetCpuInfo() const {
    return std::make_unique<LinuxCpuInfo>(_files);
}
std::unique_ptr<HostCtl::Hardware::MemoryInfo> LinuxHostFactory::GetMemoryInfo() const {
    return std::make_unique<LinuxMemoryInfo>(_files);
}
std::unique_ptr<HostCtl::Hardware::SmartCardInfo> LinuxHostFactory::GetSmartCardInfo() const {
    return std::make_unique<NoSmartCards>();
}
std::unique_ptr<HostCtl::Adv::AdvancedOption> LinuxHostFactory::GetAdvancedOptions() const {
    return std::make_unique<LinuxOptions>(_files.Under(LinuxOptions::kPath), false);
}
std::unique_ptr<HostCtl::Adv::AdvancedOption> LinuxHostFactory::GetUserAdvancedOptions() const {
    return std::make_unique<LinuxOptions>(_files.Under(LinuxOptions::kPath), true);
}
std::unique_ptr<HostCtl::Resource::ResourceInfo> LinuxHostFactory::GetResourceInfo() const {
    return std::make_unique<LinuxResourceInfo>();
}

const HostCtl::HostPrograms& LinuxHostFactory::Programs() const {
    return _programs;
}

int LinuxHostFactory::Exec(const std::string& commandLine) const {
    const std::optional<HostCtl::Program> program = ProgramOf(commandLine);
    return program ? LinuxPrograms::RunDetached(*program) : kNotRun;
}

std::string LinuxHostFactory::ExecReportingFailure(const std::string& commandLine) const {
    const std::optional<HostCtl::Program> program = ProgramOf(commandLine);
    if (!program) return "Not available on this host";
    std::string errors;
    const int status = LinuxPrograms::RunDetached(*program, &errors);
    if (status == 0) return {};
    const std::vector<std::string> lines = HostCtl::Lines(errors);
    for (auto line = lines.rbegin(); line != lines.rend(); ++line)
        if (line->find_first_not_of(" \t") != std::string::npos) return *line;
    return program->argv.front() + " ended with status " + std::to_string(status);
}

std::unique_ptr<HostCtl::HostFactory> MakeLinuxPlatform() {
    auto kernel = std::make_shared<NetlinkNetwork>();
    return std::make_unique<LinuxHostFactory>(
        HostFiles("/"), kernel, true, [kernel] { return NmNetwork::IfRunning(kernel, HostFiles("/")); });
}

}  // namespace LinuxHost
