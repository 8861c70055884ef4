#pragma once

#include <string>

namespace HostCtl::Network {

// A physical network adapter of the host.
class Pnic {
  public:
    virtual ~Pnic() = default;
    virtual std::string GetName() const = 0;
    virtual std::string GetLabel() const = 0;  // hardware label, e.g. the adapter's model
    virtual std::string GetMacAddress() const = 0;
    virtual bool IsLinkUp() const = 0;
    virtual int GetSpeedMbps() const = 0;
    virtual std::string GetDriver() const = 0;
};

}  // namespace HostCtl::Network
