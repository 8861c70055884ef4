#include "frames/HostAccess.h"

#include <system_error>
#include <thread>

#include "platform/hostctl/HostCtlException.h"
#include "terminal/CommandRunner.h"
#include "terminal/HostEvent.h"
#include "terminal/KeyReader.h"

namespace Kovo {

HostAccess::HostAccess(std::unique_ptr<HostCtl::HostFactory> platform) : _platform(std::move(platform)) {}

HostAccess::~HostAccess() = default;

int HostAccess::Run(const std::string& program, const std::vector<std::string>& argv) {
    std::string output, error;
    return RunCaptured(program, argv, output, error, 0);
}

int HostAccess::RunCaptured(const std::string& program, const std::vector<std::string>& argv,
                            std::string& output, std::string& error, int capacity) {
    return Kovo::RunCaptured(program, argv, output, error, capacity);
}

int HostAccess::Shell(const std::string& commandLine) {
    return RunShell(commandLine);
}

void HostAccess::PowerOffVms(bool graceful) {
    Kovo::PowerOffVms(graceful);
}

bool HostAccess::Query(const char* commandPath) {
    return HclCmdQuery(commandPath);
}

int HostAccess::Exec(const std::string& commandLine) {
    // Like a program that could not be started: callers treat it as a failed command.
    if (!_platform) return -1;
    return _platform->Exec(commandLine);
}

std::string HostAccess::ExecReportingFailure(const std::string& commandLine) {
    if (!_platform) return "No host to run it on";
    return _platform->ExecReportingFailure(commandLine);
}

void HostAccess::RefreshAgent() {
    RefreshHostAgent();
}

void HostAccess::PostEvent(const std::string& text) {
    HostEvent::Post(text);
}

int HostAccess::StartThread(std::function<void()> body) {
    try {
        // Nobody ever waits for it, so it releases itself when done.
        std::thread(std::move(body)).detach();
        return 0;
    } catch (const std::system_error& e) {
        return e.code().value();
    }
}

void HostAccess::WaitForHostDown(Window* frame) {
    GetKey(frame, true);
}

// Not even the signal pipe is read: the host ends the process from outside.
void HostAccess::SpinForHostDown() {
    std::this_thread::yield();
}

const HostCtl::HostFactory& HostAccess::Platform() const {
    if (!_platform) throw HostCtl::Lib::HostCtlException("No host platform");
    return *_platform;
}

std::unique_ptr<HostCtl::Network::NetworkInfo> HostAccess::Network() const {
    return Platform().GetNetworkInfo();
}
std::unique_ptr<HostCtl::Network::DnsConfig> HostAccess::Dns() const {
    return Platform().GetDnsConfig();
}
std::unique_ptr<HostCtl::Network::RoutingInfo> HostAccess::Routing() const {
    return Platform().GetRoutingInfo();
}
std::unique_ptr<HostCtl::Network::VirtualSwitchInfo> HostAccess::Switches() const {
    return Platform().GetVirtualSwitchInfo();
}
std::unique_ptr<HostCtl::Network::Portset> HostAccess::Portsets() const {
    return Platform().GetPortset();
}
std::unique_ptr<HostCtl::Network::PortGroup> HostAccess::PortGroups() const {
    return Platform().GetPortGroup();
}
std::unique_ptr<HostCtl::Network::ZenKernelNicInfo> HostAccess::ZenKernelNics() const {
    return Platform().GetZenKernelNicInfo();
}
std::unique_ptr<HostCtl::Network::HostsFile> HostAccess::HostsFile() const {
    return Platform().GetHostsFile();
}
std::unique_ptr<HostCtl::System::SystemInfo> HostAccess::SystemInfo() const {
    return Platform().GetSystemInfo();
}
std::unique_ptr<HostCtl::Util::SystemIdentity> HostAccess::Identity() const {
    return Platform().GetSystemIdentity();
}
std::unique_ptr<HostCtl::Hardware::HardwareInfo> HostAccess::Hardware() const {
    return Platform().GetHardwareInfo();
}
std::unique_ptr<HostCtl::Hardware::CpuInfo> HostAccess::Cpu() const {
    return Platform().GetCpuInfo();
}
std::unique_ptr<HostCtl::Hardware::MemoryInfo> HostAccess::Memory() const {
    return Platform().GetMemoryInfo();
}
std::unique_ptr<HostCtl::Hardware::SmartCardInfo> HostAccess::SmartCards() const {
    return Platform().GetSmartCardInfo();
}
std::unique_ptr<HostCtl::Adv::AdvancedOption> HostAccess::Options() const {
    return Platform().GetAdvancedOptions();
}
std::unique_ptr<HostCtl::Adv::AdvancedOption> HostAccess::UserOptions() const {
    return Platform().GetUserAdvancedOptions();
}
std::unique_ptr<HostCtl::Resource::ResourceInfo> HostAccess::Resources() const {
    return Platform().GetResourceInfo();
}
std::unique_ptr<HostCtl::Network::Pnic> HostAccess::Pnic(const std::string& name) const {
    return Platform().GetPnic(name);
}
std::unique_ptr<HostCtl::Network::DVPort> HostAccess::DvPort(const std::string& dvsName,
                                                             const std::string& portKey) const {
    return Platform().GetDvPort(dvsName, portKey);
}

}  // namespace Kovo
