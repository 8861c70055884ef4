#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/hostctl/VirtualSwitchInfo.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

using HostCtl::Network::DvPortProperties;

// Throws HostCtl::Lib::HostCtlException unless every one of `uplinks` is one of `switchUplinks`, once.
void CheckPortUplinks(const std::string& dvsName, const std::vector<std::string>& switchUplinks,
                      const std::vector<std::string>& uplinks);

// One port of a distributed switch ("/network/dvs/<i>/ports/<j>", by switch name and port key).
//
class DVPortImpl : public HostCtl::Network::DVPort {
  public:
    DVPortImpl(std::string dvsName, std::string portKey, std::shared_ptr<Store::HostStore> store);
    ~DVPortImpl() override = default;

    std::string GetDvsName() const override { return _dvsName; }
    std::string GetPortKey() const override { return _portKey; }
    std::string GetPortGroup() override;
    int GetVlanId() override;
    void SetVlanId(int vlanId) override;  // 0 to 4094
    // The port's active uplinks: those it records that its switch still has, or all of the switch's
    // when it records none.
    std::vector<std::string> GetUplinks() override;
    // Every property at once, the uplinks as GetUplinks reads them.
    DvPortProperties GetProperties() override;

  private:
    std::string _dvsName, _portKey;
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network
