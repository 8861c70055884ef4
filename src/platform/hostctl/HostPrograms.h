#pragma once

#include <string>
#include <vector>

namespace HostCtl {

// A program as it is run: its path and argument vector (argv[0] included).
struct Program {
    std::string path;
    std::vector<std::string> argv;
};

// The console names the host programs it runs by their documented paths and argument vectors
// ("/bin/hcl-cmd", "/sbin/powerOffVms", the service scripts, "/bin/less", "/bin/openssl", ...). Each kind
// of host says what they are on it: the same program, or one of its own that does the same job. Command
// lines (HostFactory::Exec) are the platform's own to read.
class HostPrograms {
  public:
    virtual ~HostPrograms() = default;
    virtual Program Resolve(const Program& documented) const = 0;
};

}  // namespace HostCtl
