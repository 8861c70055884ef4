#pragma once

#include <string>
#include <vector>

namespace HostCtl::Hardware {

// The card present in a slot.
struct SmartCardToken {
    std::string label;
    std::string serialNumber;
    std::vector<std::string> userIds;
};

}  // namespace HostCtl::Hardware
