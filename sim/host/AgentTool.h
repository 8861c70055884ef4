#pragma once

#include "HostContext.h"

namespace KovoSim::Host {

// The management agents: "services.sh stop|start|restart" switches "/services/hostAgent/running";
// "zenkbacktrace -w -n NAME -o PATTERN -d DIR" writes a live core of the running agent hagentd into DIR
// (a '%' in PATTERN becomes the time), and fails while the agent is stopped.
class AgentTool {
  public:
    static int RunServices(HostContext& context);
    static int RunBacktrace(HostContext& context);
};

}  // namespace KovoSim::Host
