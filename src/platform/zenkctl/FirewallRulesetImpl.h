#pragma once

#include <memory>
#include <string>

#include "platform/hostctl/SystemInfo.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::System {

// One firewall ruleset of the host ("/firewall/rulesets": [{id, enabled}]).
class FirewallRulesetImpl : public HostCtl::System::FirewallRuleset {
  public:
    FirewallRulesetImpl(std::string id, std::shared_ptr<Store::HostStore> store);
    std::string GetId() const override { return _id; }
    bool IsEnabled() override;
    void Enable() override;
    void Disable() override;

  private:
    void Set(bool enabled);
    std::string _id;
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::System
