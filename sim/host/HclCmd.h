#pragma once

#include "HostContext.h"

namespace KovoSim::Host {

// "hcl-cmd -U USER COMMAND-PATH [ARGS]": the host management tool. It acts as a user of the host (or
// the console's own account "kovo"); a user it cannot act as exits 255. The host agent must be running
// ("/services/hostAgent/running", default true) for any command to work.
class HclCmd {
  public:
    static constexpr const char* kConsoleUser = "kovo";
    static constexpr int kCannotActAsUser = 255;
    static int Run(HostContext& context);
};

}  // namespace KovoSim::Host
