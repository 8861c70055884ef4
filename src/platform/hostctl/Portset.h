#pragma once

#include <string>

namespace HostCtl::Network {

// A virtual switch's set of ports.
class Portset {
  public:
    // Ports of a standard switch created without an explicit size.
    static constexpr int DEF_NUM_PORTS = 128;
    static constexpr int MAX_NUM_PORTS = 4096;

    virtual ~Portset() = default;
    virtual bool IsValidVirtualSwitch(const std::string& name) = 0;
};

}  // namespace HostCtl::Network
