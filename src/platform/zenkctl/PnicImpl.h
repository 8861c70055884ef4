#pragma once

#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "platform/hostctl/Pnic.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// A physical NIC of the host ("/network/pnics", found by name). Built from a name, it reads the store
// once; HostCtlException when the host has no such NIC.
class PnicImpl : public HostCtl::Network::Pnic {
  public:
    explicit PnicImpl(const std::string& name, std::shared_ptr<Store::HostStore> store);
    // From a node already read (used while listing).
    explicit PnicImpl(const nlohmann::json& node);

    std::string GetName() const override { return _name; }
    std::string GetLabel() const override { return _label; }
    std::string GetMacAddress() const override { return _mac; }
    bool IsLinkUp() const override { return _linkUp; }
    int GetSpeedMbps() const override { return _speed; }
    std::string GetDriver() const override { return _driver; }

  private:
    void Load(const nlohmann::json& node);

    std::string _name, _label, _mac, _driver;
    bool _linkUp = false;
    int _speed = 0;
};

}  // namespace ZenkCtl::Network
