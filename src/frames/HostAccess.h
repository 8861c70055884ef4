#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/hostctl/HostFactory.h"

namespace Kovo {

class Window;

// The one way a screen reaches the host: programs, shell command lines, questions to the host tool,
// events, threads, the wait for the host to go down, and the platform objects it reads and changes.
// Start-up makes one over the platform it chose for the host and hands it down to every screen, so a
// port of the platform changes no screen, and unit tests can record the calls in order.
class HostAccess {
  public:
    // A null platform serves no platform object: each getter then throws HostCtlException, and Exec
    // fails as a command that could not be started.
    explicit HostAccess(std::unique_ptr<HostCtl::HostFactory> platform);
    virtual ~HostAccess();
    HostAccess(const HostAccess&) = delete;
    HostAccess& operator=(const HostAccess&) = delete;

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
    // The same, with the platform's account of a failure (HostCtl::HostFactory::ExecReportingFailure).
    virtual std::string ExecReportingFailure(const std::string& commandLine);
    // Makes the host agent re-read the host's state after a change.
    virtual void RefreshAgent();
    virtual void PostEvent(const std::string& text);
    // Starts `body` on a thread that is never joined; 0, or the error number of the failure.
    virtual int StartThread(std::function<void()> body);

    // For screens whose work is done once the host goes down, which ends this process: reads and
    // discards keys meanwhile. Callers loop on it.
    virtual void WaitForHostDown(Window* frame);
    // The same without reading anything, so nothing typed can reach the console any more.
    virtual void SpinForHostDown();

    // The platform objects, each over this host. Their failures arrive as HostCtl::Lib::HostCtlException.
    virtual std::unique_ptr<HostCtl::Network::NetworkInfo> Network() const;
    virtual std::unique_ptr<HostCtl::Network::DnsConfig> Dns() const;
    virtual std::unique_ptr<HostCtl::Network::RoutingInfo> Routing() const;
    virtual std::unique_ptr<HostCtl::Network::VirtualSwitchInfo> Switches() const;
    // A physical NIC by name; HostCtlException when the host has none of that name.
    virtual std::unique_ptr<HostCtl::Network::Pnic> Pnic(const std::string& name) const;
    virtual std::unique_ptr<HostCtl::Network::DVPort> DvPort(const std::string& dvsName,
                                                             const std::string& portKey) const;
    virtual std::unique_ptr<HostCtl::Network::Portset> Portsets() const;
    virtual std::unique_ptr<HostCtl::Network::PortGroup> PortGroups() const;
    virtual std::unique_ptr<HostCtl::Network::ZenKernelNicInfo> ZenKernelNics() const;
    virtual std::unique_ptr<HostCtl::Network::HostsFile> HostsFile() const;
    std::unique_ptr<HostCtl::System::SystemInfo> SystemInfo() const;
    std::unique_ptr<HostCtl::Util::SystemIdentity> Identity() const;
    std::unique_ptr<HostCtl::Hardware::HardwareInfo> Hardware() const;
    std::unique_ptr<HostCtl::Hardware::CpuInfo> Cpu() const;
    std::unique_ptr<HostCtl::Hardware::MemoryInfo> Memory() const;
    std::unique_ptr<HostCtl::Hardware::SmartCardInfo> SmartCards() const;
    std::unique_ptr<HostCtl::Adv::AdvancedOption> Options() const;
    std::unique_ptr<HostCtl::Adv::AdvancedOption> UserOptions() const;
    std::unique_ptr<HostCtl::Resource::ResourceInfo> Resources() const;

    // The platform itself, for the layers below the screens that start-up wires to it.
    const HostCtl::HostFactory& Platform() const;

  private:
    std::unique_ptr<HostCtl::HostFactory> _platform;
};

}  // namespace Kovo
