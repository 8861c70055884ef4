#pragma once

#include <string>

#include "platform/hostctl/HostsFile.h"

namespace HostCtl::Network {

// The hosts file of either kind of host, as the table of lines it is. Removing a name takes it off every
// line; a line left without names goes. Comments and unrelated lines stay as they are. The file is
// replaced atomically.
class HostsTable : public HostsFile {
  public:
    explicit HostsTable(std::string path = "/etc/hosts");
    // True when the name was found. std::system_error when the file cannot be read or written.
    bool RemoveEntryByHostName(const std::string& name) override;
    // The rewritten text; exposed for tests and fuzzing.
    static std::string RemoveName(const std::string& text, const std::string& name, bool& found);

  private:
    std::string _path;
};

}  // namespace HostCtl::Network
