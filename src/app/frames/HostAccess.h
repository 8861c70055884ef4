#pragma once

#include <memory>
#include <string>
#include <vector>

namespace ZenkCtl {
namespace Store {
class HostStore;
}
namespace Network {
class NetworkInfoImpl;
class DnsConfigImpl;
class RoutingInfoImpl;
class VirtualSwitchInfoImpl;
class DVPortImpl;
class PortsetImpl;
class PortGroupImpl;
class ZenKernelNicInfoImpl;
}  // namespace Network
namespace System {
class SystemInfoImpl;
}
namespace Hardware {
class HardwareInfoImpl;
class CpuInfoImpl;
class MemoryInfoImpl;
class SmartCardInfoImpl;
}  // namespace Hardware
namespace Adv {
class AdvancedOptionImpl;
class UserAdvancedOptionImpl;
}  // namespace Adv
namespace Resource {
class ResourceInfoImpl;
}
}  // namespace ZenkCtl

namespace HostCtl::Network {
class Pnic;
}

namespace Kovo {

class Window;

// The one way a screen reaches the host: programs, shell command lines, questions to the host tool,
// events, threads, the wait for the host to go down, and the platform objects it reads and changes.
// Screens take one by reference (the console always passes System()), so a port of the platform
// changes this class and never a screen, and unit tests can record the calls in order.
class HostAccess {
  public:
    explicit HostAccess(std::shared_ptr<ZenkCtl::Store::HostStore> store);
    virtual ~HostAccess();
    HostAccess(const HostAccess&) = delete;
    HostAccess& operator=(const HostAccess&) = delete;

    // The host the console runs on.
    static HostAccess& System();

    // A program with its argument vector (argv[0] included); the exit status, or -1 when it could not run.
    virtual int Run(const std::string& program, const std::vector<std::string>& argv);
    // The same, keeping at most `capacity` bytes of each output stream.
    virtual int RunCaptured(const std::string& program, const std::vector<std::string>& argv,
                            std::string& output, std::string& error, int capacity);
    // A command line through "/bin/sh -c".
    virtual int Shell(const std::string& commandLine);
    // The host's auto-stop sequence, then the virtual machines off (forced unless graceful).
    virtual void PowerOffVms(bool graceful);
    // A yes/no question to the host tool, asked as the console's own user.
    virtual bool Query(const char* commandPath);
    // A command line through the platform's runner, waited for, output discarded.
    virtual int Exec(const std::string& commandLine);
    // Makes the host agent re-read the host's state after a change.
    virtual void RefreshAgent();
    virtual void PostEvent(const std::string& text);
    // Starts `body` on a thread that is never joined; 0, or the error number of the failure.
    virtual int StartThread(void* (*body)(void*));

    // For screens whose work is done once the host goes down, which ends this process: reads and
    // discards keys meanwhile. Callers loop on it.
    virtual void WaitForHostDown(Window* frame);
    // The same without reading anything, so nothing typed can reach the console any more.
    virtual void SpinForHostDown();

    // The platform objects, each over this host's configuration. Their failures arrive as
    // HostCtl::Lib::HostCtlException.
    virtual std::unique_ptr<ZenkCtl::Network::NetworkInfoImpl> Network() const;
    virtual std::unique_ptr<ZenkCtl::Network::DnsConfigImpl> Dns() const;
    virtual std::unique_ptr<ZenkCtl::Network::RoutingInfoImpl> Routing() const;
    virtual std::unique_ptr<ZenkCtl::Network::VirtualSwitchInfoImpl> Switches() const;
    // A physical NIC by name; HostCtlException when the host has none of that name.
    virtual std::unique_ptr<HostCtl::Network::Pnic> Pnic(const std::string& name) const;
    virtual std::unique_ptr<ZenkCtl::Network::DVPortImpl> DvPort(const std::string& dvsName,
                                                                 const std::string& portKey) const;
    virtual std::unique_ptr<ZenkCtl::Network::PortsetImpl> Portsets() const;
    virtual std::unique_ptr<ZenkCtl::Network::PortGroupImpl> PortGroups() const;
    virtual std::unique_ptr<ZenkCtl::Network::ZenKernelNicInfoImpl> ZenKernelNics() const;
    std::unique_ptr<ZenkCtl::System::SystemInfoImpl> SystemInfo() const;
    std::unique_ptr<ZenkCtl::Hardware::HardwareInfoImpl> Hardware() const;
    std::unique_ptr<ZenkCtl::Hardware::CpuInfoImpl> Cpu() const;
    std::unique_ptr<ZenkCtl::Hardware::MemoryInfoImpl> Memory() const;
    std::unique_ptr<ZenkCtl::Hardware::SmartCardInfoImpl> SmartCards() const;
    std::unique_ptr<ZenkCtl::Adv::AdvancedOptionImpl> Options() const;
    std::unique_ptr<ZenkCtl::Adv::UserAdvancedOptionImpl> UserOptions() const;
    std::unique_ptr<ZenkCtl::Resource::ResourceInfoImpl> Resources() const;

  private:
    std::shared_ptr<ZenkCtl::Store::HostStore> _store;
};

}  // namespace Kovo
