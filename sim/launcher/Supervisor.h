#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

#include "RestartPolicy.h"
#include "SyslogReceiver.h"

namespace KovoSim {

// PID 1 of a simulated host: starts the console with the terminal it was given, starts it again each
// time it exits (as the host does), serves the host's syslog socket meanwhile, reaps every orphan, and
// stops the host on Ctrl-C or termination. In command mode it runs one command (exec) and leaves the
// terminal's signals to it.
class Supervisor {
public:
    struct Config {
        std::vector<std::string> argv;  // argv[0] is the program path
        bool once = false;
        bool commandMode = false;  // a command of "exec": search PATH, do not act on Ctrl-C
        std::string outerPidFile;  // where to publish the console's machine-side pid; empty: nowhere
        int machineProc = -1;      // the machine's /proc, for OuterPid
    };

    static constexpr std::chrono::milliseconds kKillGrace{5000};

    Supervisor(Config config, SyslogReceiver& syslog);
    ~Supervisor();
    Supervisor(const Supervisor&) = delete;
    Supervisor& operator=(const Supervisor&) = delete;

    // Returns the launcher's exit status.
    int Run();

private:
    void Start();
    void Terminate();
    void Log(int severity, const std::string& message);
    void Publish(pid_t inner);

    Config _config;
    SyslogReceiver& _syslog;
    RestartPolicy _policy;
    int _signals = -1;
    pid_t _console = -1;
    std::chrono::steady_clock::time_point _startedAt;
    std::chrono::steady_clock::time_point _killAt = std::chrono::steady_clock::time_point::max();
    std::chrono::steady_clock::time_point _restartAt = std::chrono::steady_clock::time_point::max();
};

}  // namespace KovoSim
