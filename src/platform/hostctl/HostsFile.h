#pragma once

#include <string>

namespace HostCtl::Network {

// The host's static name table.
class HostsFile {
  public:
    virtual ~HostsFile() = default;
    // Takes every mapping of name out (a line left without names goes); false when there was none.
    virtual bool RemoveEntryByHostName(const std::string& name) = 0;
};

}  // namespace HostCtl::Network
