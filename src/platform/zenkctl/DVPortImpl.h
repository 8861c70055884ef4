#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// One port of a distributed switch ("/network/dvs/<i>/ports/<j>", by switch name and port key).
class DVPortImpl {
  public:
    DVPortImpl(std::string dvsName, std::string portKey,
               std::shared_ptr<Store::HostStore> store = Store::HostStore::System());

    const std::string& GetDvsName() const { return _dvsName; }
    const std::string& GetPortKey() const { return _portKey; }
    std::string GetPortGroup();
    int GetVlanId();
    void SetVlanId(int vlanId);  // 0 to 4094
    // The uplinks of the port's switch.
    std::vector<std::string> GetUplinks();

  private:
    std::string _dvsName, _portKey;
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network
