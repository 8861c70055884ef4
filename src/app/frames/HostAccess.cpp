#include "app/frames/HostAccess.h"

#include <pthread.h>

#include <thread>

#include "app/terminal/CommandRunner.h"
#include "app/terminal/HostEvent.h"
#include "app/terminal/KeyReader.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/AdvancedOptionImpl.h"
#include "platform/zenkctl/CpuInfoImpl.h"
#include "platform/zenkctl/DVPortImpl.h"
#include "platform/zenkctl/DnsConfigImpl.h"
#include "platform/zenkctl/HardwareInfoImpl.h"
#include "platform/zenkctl/MemoryInfoImpl.h"
#include "platform/zenkctl/NetworkInfoImpl.h"
#include "platform/zenkctl/PnicImpl.h"
#include "platform/zenkctl/PortGroupImpl.h"
#include "platform/zenkctl/PortsetImpl.h"
#include "platform/zenkctl/ResourceInfoImpl.h"
#include "platform/zenkctl/RoutingInfoImpl.h"
#include "platform/zenkctl/SmartCardInfoImpl.h"
#include "platform/zenkctl/SystemInfoImpl.h"
#include "platform/zenkctl/UserAdvancedOptionImpl.h"
#include "platform/zenkctl/VirtualSwitchInfoImpl.h"
#include "platform/zenkctl/ZenKernelNicInfoImpl.h"
#include "platform/zenkctl/ZenkCtlExec.h"

namespace Kovo {

namespace {
// Every DNS and routing object of the console works on the host's default network stack.
constexpr const char* kNetStack = "defaultNetStack";
}  // namespace

HostAccess::HostAccess(std::shared_ptr<ZenkCtl::Store::HostStore> store) : _store(std::move(store)) {}

HostAccess::~HostAccess() = default;

// Never destroyed: threads nobody joins may still reach the host while the process ends.
HostAccess& HostAccess::System() {
    static auto* host = new HostAccess(ZenkCtl::Store::HostStore::System());
    return *host;
}

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
    return ZenkCtl::Util::ZenkCtl_Exec(commandLine, false, true, false);
}

void HostAccess::RefreshAgent() {
    RefreshHostAgent();
}

void HostAccess::PostEvent(const std::string& text) {
    HostEvent::Post(text);
}

int HostAccess::StartThread(void* (*body)(void*)) {
    pthread_attr_t attributes;
    int rc = pthread_attr_init(&attributes);
    if (rc != 0) return rc;
    // Nobody ever waits for it, so it releases itself when done.
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    rc = pthread_create(&thread, &attributes, body, nullptr);
    pthread_attr_destroy(&attributes);
    return rc;
}

void HostAccess::WaitForHostDown(Window* frame) {
    GetKey(frame, true);
}

// Not even the signal pipe is read: the host ends the process from outside.
void HostAccess::SpinForHostDown() {
    std::this_thread::yield();
}

std::unique_ptr<ZenkCtl::Network::NetworkInfoImpl> HostAccess::Network() const {
    return std::make_unique<ZenkCtl::Network::NetworkInfoImpl>(_store);
}
std::unique_ptr<ZenkCtl::Network::DnsConfigImpl> HostAccess::Dns() const {
    return std::make_unique<ZenkCtl::Network::DnsConfigImpl>(kNetStack, _store);
}
std::unique_ptr<ZenkCtl::Network::RoutingInfoImpl> HostAccess::Routing() const {
    return std::make_unique<ZenkCtl::Network::RoutingInfoImpl>(kNetStack, _store);
}
std::unique_ptr<ZenkCtl::Network::VirtualSwitchInfoImpl> HostAccess::Switches() const {
    return std::make_unique<ZenkCtl::Network::VirtualSwitchInfoImpl>(_store);
}
std::unique_ptr<HostCtl::Network::Pnic> HostAccess::Pnic(const std::string& name) const {
    return std::make_unique<ZenkCtl::Network::PnicImpl>(name, _store);
}
std::unique_ptr<ZenkCtl::Network::DVPortImpl> HostAccess::DvPort(const std::string& dvsName,
                                                                 const std::string& portKey) const {
    return std::make_unique<ZenkCtl::Network::DVPortImpl>(dvsName, portKey, _store);
}
std::unique_ptr<ZenkCtl::Network::PortsetImpl> HostAccess::Portsets() const {
    return std::make_unique<ZenkCtl::Network::PortsetImpl>(_store);
}
std::unique_ptr<ZenkCtl::Network::PortGroupImpl> HostAccess::PortGroups() const {
    return std::make_unique<ZenkCtl::Network::PortGroupImpl>(_store);
}
std::unique_ptr<ZenkCtl::Network::ZenKernelNicInfoImpl> HostAccess::ZenKernelNics() const {
    return std::make_unique<ZenkCtl::Network::ZenKernelNicInfoImpl>(_store);
}
std::unique_ptr<ZenkCtl::System::SystemInfoImpl> HostAccess::SystemInfo() const {
    return std::make_unique<ZenkCtl::System::SystemInfoImpl>(_store);
}
std::unique_ptr<ZenkCtl::Hardware::HardwareInfoImpl> HostAccess::Hardware() const {
    return std::make_unique<ZenkCtl::Hardware::HardwareInfoImpl>(_store);
}
std::unique_ptr<ZenkCtl::Hardware::CpuInfoImpl> HostAccess::Cpu() const {
    return std::make_unique<ZenkCtl::Hardware::CpuInfoImpl>(_store);
}
std::unique_ptr<ZenkCtl::Hardware::MemoryInfoImpl> HostAccess::Memory() const {
    return std::make_unique<ZenkCtl::Hardware::MemoryInfoImpl>(_store);
}
std::unique_ptr<ZenkCtl::Hardware::SmartCardInfoImpl> HostAccess::SmartCards() const {
    return std::make_unique<ZenkCtl::Hardware::SmartCardInfoImpl>(_store);
}
std::unique_ptr<ZenkCtl::Adv::AdvancedOptionImpl> HostAccess::Options() const {
    return std::make_unique<ZenkCtl::Adv::AdvancedOptionImpl>(_store);
}
std::unique_ptr<ZenkCtl::Adv::UserAdvancedOptionImpl> HostAccess::UserOptions() const {
    return std::make_unique<ZenkCtl::Adv::UserAdvancedOptionImpl>(_store);
}
std::unique_ptr<ZenkCtl::Resource::ResourceInfoImpl> HostAccess::Resources() const {
    return std::make_unique<ZenkCtl::Resource::ResourceInfoImpl>(_store);
}

}  // namespace Kovo
