#pragma once

#include <memory>
#include <string>
#include <vector>

namespace HostCtl::System {

// A named set of firewall rules (the shell and SSH services have one each).
class FirewallRuleset {
  public:
    virtual ~FirewallRuleset() = default;
    virtual std::string GetId() const = 0;
    virtual bool IsEnabled() = 0;
    virtual void Enable() = 0;
    virtual void Disable() = 0;
};

// Keyboard layouts, the system alerts and the firewall rulesets.
class SystemInfo {
  public:
    virtual ~SystemInfo() = default;

    virtual std::string GetKeyboardLayout() = 0;
    // In the host's order.
    virtual std::vector<std::string> GetKeyboardLayouts() = 0;
    virtual void LoadKeyboardMappings(const std::string& layout) = 0;
    virtual void SetKeyboardLayout(const std::string& layout) = 0;
    virtual void SetSystemAlert(const std::string& message) = 0;
    virtual std::vector<std::string> GetSystemAlerts() = 0;
    // Whether the host keeps the log the console names by `path` ("/var/log/syslog.log"), so that the
    // pager can show it.
    virtual bool IsLogKept(const std::string& path) = 0;
    // Whether the host lets operators log in at its console at all (the login itself is PAM's to allow).
    virtual bool IsConsoleLoginAllowed() = 0;
    // HostCtl::Lib::HostCtlException when the host has no ruleset of that id.
    virtual std::unique_ptr<FirewallRuleset> GetFirewallRulesetById(const std::string& id) = 0;
};

}  // namespace HostCtl::System
