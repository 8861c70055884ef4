#pragma once

#include <string>

#include "HostContext.h"

namespace KovoSim::Host {

// "poweroff", "halt", "shutdown", "reboot" and "reboot -f" of the simulated host: they ask the host's
// PID 1 (the supervisor) to act it out, by writing the request to "/run/kovo-sim/power" and sending it
// SIGUSR1. The machine's own power commands are never reached.
class PowerCommand {
  public:
    static constexpr const char* kRequestFile = "power";
    static int Run(HostContext& context, const std::string& name);
};

}  // namespace KovoSim::Host
