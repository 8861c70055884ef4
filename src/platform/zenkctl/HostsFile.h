#pragma once

#include "platform/hostctl/HostsFile.h"

#include <string>

namespace ZenkCtl::Network {

// The host's hosts file. Removing a name takes it off every line; a line left without names goes.
// Comments and unrelated lines stay as they are. The file is replaced atomically.
class HostsFile : public HostCtl::Network::HostsFile {
  public:
    explicit HostsFile(std::string path = "/etc/hosts");
    // True when the name was found. std::system_error when the file cannot be read or written.
    bool RemoveEntryByHostName(const std::string& name) override;
    // The rewritten text; exposed for tests and fuzzing.
    static std::string RemoveName(const std::string& text, const std::string& name, bool& found);

  private:
    std::string _path;
};

}  // namespace ZenkCtl::Network
