#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// The properties of a distributed port that a host-local copy of it carries.
struct DvPortProperties {
    std::string name;  // "" for a port without a name
    std::string portGroup;
    int vlanId = 0;  // 0 (none) to 4094
    bool blocked = false;
    bool hostLocal = false;
    // The port's active uplinks, each one of its switch's.
    std::vector<std::string> uplinks;
};

// Throws HostCtl::Lib::HostCtlException unless every one of `uplinks` is one of `switchUplinks`, once.
void CheckPortUplinks(const std::string& dvsName, const std::vector<std::string>& switchUplinks,
                      const std::vector<std::string>& uplinks);

// One port of a distributed switch ("/network/dvs/<i>/ports/<j>", by switch name and port key).
//
// Its operations are virtual so that a caller's tests can record the calls made on it in order.
class DVPortImpl {
  public:
    DVPortImpl(std::string dvsName, std::string portKey,
               std::shared_ptr<Store::HostStore> store = Store::HostStore::System());
    virtual ~DVPortImpl() = default;

    const std::string& GetDvsName() const { return _dvsName; }
    const std::string& GetPortKey() const { return _portKey; }
    virtual std::string GetPortGroup();
    virtual int GetVlanId();
    virtual void SetVlanId(int vlanId);  // 0 to 4094
    // The port's active uplinks: those it records that its switch still has, or all of the switch's
    // when it records none.
    virtual std::vector<std::string> GetUplinks();
    // Every property at once, the uplinks as GetUplinks reads them.
    virtual DvPortProperties GetProperties();

  private:
    std::string _dvsName, _portKey;
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network
