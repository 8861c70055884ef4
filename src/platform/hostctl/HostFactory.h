#pragma once

#include <memory>
#include <string>

#include "platform/hostctl/AdvancedOption.h"
#include "platform/hostctl/DnsConfig.h"
#include "platform/hostctl/HardwareInfo.h"
#include "platform/hostctl/HostPrograms.h"
#include "platform/hostctl/HostsFile.h"
#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/Pnic.h"
#include "platform/hostctl/Portset.h"
#include "platform/hostctl/ResourceInfo.h"
#include "platform/hostctl/RoutingInfo.h"
#include "platform/hostctl/SystemIdentity.h"
#include "platform/hostctl/SystemInfo.h"
#include "platform/hostctl/VirtualSwitchInfo.h"
#include "platform/hostctl/ZenKernelNicInfo.h"

namespace HostCtl {

// One kind of host: it makes the platform objects the console works with, each over that host, and
// says what the host programs are there. Start-up chooses one, once, by what the host is. Every object's
// failures arrive as HostCtl::Lib::HostCtlException; so do those of a getter whose host cannot serve it.
class HostFactory {
  public:
    virtual ~HostFactory() = default;

    // Once per process, before any other call: the platform's preferences, and its own log lines under
    // the identity `ident`.
    virtual void Initialize(const std::string& ident) = 0;

    // DNS and routing are those of the host's default network stack.
    virtual std::unique_ptr<Network::NetworkInfo> GetNetworkInfo() const = 0;
    virtual std::unique_ptr<Network::DnsConfig> GetDnsConfig() const = 0;
    virtual std::unique_ptr<Network::RoutingInfo> GetRoutingInfo() const = 0;
    virtual std::unique_ptr<Network::VirtualSwitchInfo> GetVirtualSwitchInfo() const = 0;
    // HostCtlException when the host has no NIC of that name.
    virtual std::unique_ptr<Network::Pnic> GetPnic(const std::string& name) const = 0;
    virtual std::unique_ptr<Network::DVPort> GetDvPort(const std::string& dvsName,
                                                       const std::string& portKey) const = 0;
    virtual std::unique_ptr<Network::Portset> GetPortset() const = 0;
    virtual std::unique_ptr<Network::PortGroup> GetPortGroup() const = 0;
    virtual std::unique_ptr<Network::ZenKernelNicInfo> GetZenKernelNicInfo() const = 0;
    virtual std::unique_ptr<Network::HostsFile> GetHostsFile() const = 0;

    virtual std::unique_ptr<System::SystemInfo> GetSystemInfo() const = 0;
    virtual std::unique_ptr<Util::SystemIdentity> GetSystemIdentity() const = 0;
    virtual std::unique_ptr<Hardware::HardwareInfo> GetHardwareInfo() const = 0;
    virtual std::unique_ptr<Hardware::StorageInfo> GetStorageInfo() const = 0;
    virtual std::unique_ptr<Hardware::CpuInfo> GetCpuInfo() const = 0;
    virtual std::unique_ptr<Hardware::MemoryInfo> GetMemoryInfo() const = 0;
    virtual std::unique_ptr<Hardware::SmartCardInfo> GetSmartCardInfo() const = 0;
    // Options by full path, and user options by bare name ("PXEBootEnabled").
    virtual std::unique_ptr<Adv::AdvancedOption> GetAdvancedOptions() const = 0;
    virtual std::unique_ptr<Adv::AdvancedOption> GetUserAdvancedOptions() const = 0;
    virtual std::unique_ptr<Resource::ResourceInfo> GetResourceInfo() const = 0;

    virtual const HostPrograms& Programs() const = 0;
    // A command line through the platform's own runner, waited for, output discarded; its exit status.
    virtual int Exec(const std::string& commandLine) const = 0;
    // The same, returning what went wrong in words an operator can read: empty when the command did its
    // job, and always empty on a platform whose command lines report nothing a screen could show (the
    // default: the other kind of host's agent scripts answer with statuses that mean nothing).
    virtual std::string ExecReportingFailure(const std::string& commandLine) const {
        Exec(commandLine);
        return {};
    }
};

}  // namespace HostCtl
