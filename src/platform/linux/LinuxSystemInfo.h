#pragma once

#include <functional>
#include <memory>

#include "platform/hostctl/ResourceInfo.h"
#include "platform/hostctl/SystemInfo.h"
#include "platform/linux/HostFiles.h"
#include "platform/linux/LinuxPrograms.h"
#include "platform/linux/SystemServices.h"

namespace LinuxHost {

// Keyboard layouts as the host's keyboard configuration, kept by the locale service and put on the
// consoles by console-setup, and the host's alerts. A Linux host
// has no firewall rulesets of the console's kind.
class LinuxSystemInfo : public HostCtl::System::SystemInfo {
  public:
    using Services = std::function<std::unique_ptr<SystemServices>()>;
    static constexpr const char* kAlerts = "/run/kovo/alerts";

    // `services` opens the system bus when a call needs it.
    LinuxSystemInfo(HostFiles files, Services services);

    std::string GetKeyboardLayout() override;
    // The layouts this host has and can put on its consoles, in the console's order.
    std::vector<std::string> GetKeyboardLayouts() override;
    void LoadKeyboardMappings(const std::string& layout) override;
    void SetKeyboardLayout(const std::string& layout) override;
    // Each alert is kept once, however often it is raised, until the host restarts.
    void SetSystemAlert(const std::string& message) override;
    std::vector<std::string> GetSystemAlerts() override;
    // Always: who may log in is the host's PAM stack's to decide.
    bool IsConsoleLoginAllowed() override;
    // The logs the journal holds the same lines as.
    bool IsLogKept(const std::string& path) override;
    std::unique_ptr<HostCtl::System::FirewallRuleset> GetFirewallRulesetById(const std::string& id) override;

    // The console's name for the host's XKB layout and variant.
    static std::string LayoutName(const std::string& xkb, const std::string& variant);

  private:
    HostFiles _files;
    Services _services;
};

// Whether the host's hypervisor service runs any virtual machine. The host tool asks it, so the console
// itself never loads the hypervisor's client library.
class LinuxResourceInfo : public HostCtl::Resource::ResourceInfo {
  public:
    explicit LinuxResourceInfo(std::string hostTool = LinuxPrograms::kHostTool);
    bool HasRunningVirtualMachines() override;

  private:
    std::string _hostTool;
};

}  // namespace LinuxHost
