#pragma once

#include <string>

#include "HostContext.h"

namespace KovoSim::Host {

// "/etc/init.d/QorShell" and "/etc/init.d/SSH" with init-script exit statuses: status 0 running, 3 not
// running; start/stop/restart 0; 2 for a missing or excess argument, 3 for an action it does not have.
class InitScript {
  public:
    static int Run(HostContext& context, const std::string& service);
};

}  // namespace KovoSim::Host
