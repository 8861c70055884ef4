#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/store/HostStore.h"
#include "platform/zenkctl/FirewallRulesetImpl.h"

namespace ZenkCtl::System {

// System settings: keyboard layouts ("/system/keyboard"), host alerts ("/system/alerts") and firewall
// rulesets.
class SystemInfoImpl {
  public:
    explicit SystemInfoImpl(std::shared_ptr<Store::HostStore> store = Store::HostStore::System());

    std::string GetKeyboardLayout();
    std::vector<std::string> GetKeyboardLayouts();  // in the host's order
    // Both refuse a layout the host does not have.
    void LoadKeyboardMappings(const std::string& layout);
    void SetKeyboardLayout(const std::string& layout);

    void SetSystemAlert(const std::string& message);
    std::vector<std::string> GetSystemAlerts();

    // HostCtlException when the host has no such ruleset.
    std::unique_ptr<FirewallRulesetImpl> GetFirewallRulesetById(const std::string& id);

  private:
    void RequireLayout(const std::string& layout);
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::System
