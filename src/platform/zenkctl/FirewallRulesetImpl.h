#pragma once

#include <memory>
#include <string>

#include "platform/store/HostStore.h"

namespace ZenkCtl::System {

// One firewall ruleset of the host ("/firewall/rulesets": [{id, enabled}]).
class FirewallRulesetImpl {
  public:
    FirewallRulesetImpl(std::string id, std::shared_ptr<Store::HostStore> store);
    const std::string& GetId() const { return _id; }
    bool IsEnabled();
    void Enable();
    void Disable();

  private:
    void Set(bool enabled);
    std::string _id;
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::System
