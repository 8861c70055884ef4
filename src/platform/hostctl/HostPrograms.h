#pragma once

#include <string>
#include <vector>

namespace HostCtl {

// A program as it is run: its path and argument vector (argv[0] included).
struct Program {
    std::string path;
    std::vector<std::string> argv;
};

// The console names host programs by their documented paths and argument vectors ("/bin/hcl-cmd",
// "/sbin/powerOffVms", the service scripts, "/bin/zenkping", ...). Each kind of host says what they
// are on it: the same program, or one of its own that does the same job.
class HostPrograms {
  public:
    virtual ~HostPrograms() = default;
    virtual Program Resolve(const Program& documented) const = 0;
};

}  // namespace HostCtl
