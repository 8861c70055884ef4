#pragma once

#include <string>
#include <vector>

#include "HostContext.h"

namespace KovoSim::Host {

// The host programs of the simulated host, one multi-call binary: the name it is called by picks the
// program ("hcl-cmd", "zenkping", "QorShell", ...), or the first argument when called as
// "kovo-sim-host". Every run is recorded in the command log before it acts.
class HostPrograms {
  public:
    struct Install {
        const char* hostPath;  // where the program sits in the host
        const char* name;      // the program it is
        bool script;           // run through /bin/sh by the console, so a shell script that calls us
    };
    static const std::vector<Install>& Installs();

    static bool Known(const std::string& name);
    // The absolute form of the path a program was run as, from the directory it was run in.
    static std::string AbsolutePath(const std::string& path, const std::string& cwd);
    // Runs the named program; store failures become a message and status 1.
    static int Run(const std::string& name, HostContext& context);
    static int Main(int argc, char** argv);
};

}  // namespace KovoSim::Host
