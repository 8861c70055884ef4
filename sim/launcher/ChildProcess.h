#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace KovoSim {

// Programs of the machine run by the host's own processes (PID 1 at boot, the network follower), their
// output discarded and their terminal signals left behind.
class ChildProcess {
  public:
    // Starts a program (searched in PATH) with /dev/null as its standard streams and no blocked
    // signals; in the background it becomes a daemon of the host (a session of its own, so no terminal
    // and no Ctrl-C). Returns its pid, or -1 when it could not be forked.
    static pid_t Spawn(const std::vector<std::string>& argv, bool background);
    // Waits for a child to end: its exit status, 128 + signal when killed, -1 for no child.
    static int Wait(pid_t pid);
    // Runs a program to its end and returns its status.
    static int Run(const std::vector<std::string>& argv);
    // Runs programs side by side and waits for all of them.
    static void RunAll(const std::vector<std::vector<std::string>>& commands);
};

}  // namespace KovoSim
