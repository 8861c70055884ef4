#include "RestartPolicy.h"

#include <sys/wait.h>

namespace KovoSim {

int RestartPolicy::ExitCode(int waitStatus) {
    if (WIFEXITED(waitStatus)) return WEXITSTATUS(waitStatus);
    if (WIFSIGNALED(waitStatus)) return 128 + WTERMSIG(waitStatus);
    return 1;
}

RestartPolicy::Decision RestartPolicy::ConsoleEnded(int waitStatus,
                                                    std::chrono::milliseconds lifetime) const {
    if (_once) return {Action::Stop, ExitCode(waitStatus)};
    if (_stopping) return {Action::Stop, 0};
    return {lifetime < kQuickExit ? Action::RestartLater : Action::Restart, 0};
}

}  // namespace KovoSim
