#pragma once

#include <chrono>

namespace KovoSim {

// What the host does when its console ends: start it again (at once, or after a pause when it did not
// even last a second, so a console that cannot start does not spin), or stop the host. The operator's
// Ctrl-C and a termination of the host stop it; "--once" stops after the first run.
class RestartPolicy {
  public:
    enum class Action { Restart, RestartLater, Stop };
    struct Decision {
        Action action;
        int exitCode;  // the launcher's status when stopping
    };

    static constexpr std::chrono::milliseconds kQuickExit{1000};
    static constexpr std::chrono::milliseconds kPause{1000};

    explicit RestartPolicy(bool once) : _once(once) {}

    // Ctrl-C at the terminal, or the host was asked to terminate.
    void Stop() { _stopping = true; }
    bool Stopping() const { return _stopping; }

    Decision ConsoleEnded(int waitStatus, std::chrono::milliseconds lifetime) const;

    // A wait status as a shell reports it: the exit status, or 128 + the signal.
    static int ExitCode(int waitStatus);

  private:
    bool _once;
    bool _stopping = false;
};

}  // namespace KovoSim
