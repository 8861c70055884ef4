#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

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
    // The uplinks of the port's switch.
    virtual std::vector<std::string> GetUplinks();

  private:
    std::string _dvsName, _portKey;
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network
