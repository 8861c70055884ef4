#pragma once

#include <sys/types.h>

namespace KovoSim {

// The process id, as the machine outside the host sees it, of a child of the calling process (PID 1 of
// a host), found through the machine's /proc opened before the host's own was mounted over it. Tests
// use it to signal the console directly.
class OuterPid {
  public:
    // -1 when it cannot be found.
    static pid_t OfChild(int machineProc, pid_t innerPid);
};

}  // namespace KovoSim
