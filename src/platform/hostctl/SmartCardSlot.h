#pragma once

#include <string>

namespace HostCtl::Hardware {

// A smart-card reader slot.
struct SmartCardSlot {
    int id = 0;
    std::string description;
};

}  // namespace HostCtl::Hardware
