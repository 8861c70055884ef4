#pragma once

#include <optional>
#include <string>

namespace HostCtl::Faults {

// Where a test host keeps the faults it injects: the text an operation fails with, or nothing.
class FaultSource {
  public:
    virtual ~FaultSource() = default;
    virtual std::optional<std::string> Injected(const char* operation) const = 0;
};

}  // namespace HostCtl::Faults
