#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/hostctl/SystemInfo.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/FirewallRulesetImpl.h"

namespace ZenkCtl::System {

// System settings: keyboard layouts ("/system/keyboard"), host alerts ("/system/alerts") and firewall
// rulesets.
class SystemInfoImpl : public HostCtl::System::SystemInfo {
  public:
    explicit SystemInfoImpl(std::shared_ptr<Store::HostStore> store);

    std::string GetKeyboardLayout() override;
    std::vector<std::string> GetKeyboardLayouts() override;  // in the host's order
    // Both refuse a layout the host does not have.
    void LoadKeyboardMappings(const std::string& layout) override;
    void SetKeyboardLayout(const std::string& layout) override;

    void SetSystemAlert(const std::string& message) override;
    std::vector<std::string> GetSystemAlerts() override;
    // While the host's agent leaves "/var/run/halvor/show-kovo-login" in place.
    bool IsConsoleLoginAllowed() override;
    // A readable regular file at that path.
    bool IsLogKept(const std::string& path) override;

    // HostCtlException when the host has no such ruleset.
    std::unique_ptr<HostCtl::System::FirewallRuleset> GetFirewallRulesetById(const std::string& id) override;

  private:
    void RequireLayout(const std::string& layout);
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::System
