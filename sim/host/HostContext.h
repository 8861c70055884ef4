#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/store/HostStore.h"

namespace KovoSim::Host {

// What every host program gets: its arguments (argv[0] is the name it was called by), its output
// streams and the host's configuration store. Programs answer with an exit status.
struct HostContext {
    std::vector<std::string> argv;
    std::ostream& out;
    std::ostream& err;
    std::shared_ptr<ZenkCtl::Store::HostStore> store;
    // The absolute path the program was run as ("/sbin/powerOffVms" and "/bin/powerOffVms" differ even
    // though both are one file); for the command log.
    std::string path;
    std::string commandLog = "/var/log/kovo-sim/commands.log";
    std::string runDir = "/run/kovo-sim";  // where power requests go
    int initPid = 1;                       // who acts them out
};

}  // namespace KovoSim::Host
