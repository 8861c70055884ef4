#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "DatagramSink.h"
#include "RestartPolicy.h"
#include "SyslogReceiver.h"

namespace KovoSim {

// PID 1 of a simulated host: boots it, starts the console with the terminal it was given, starts it
// again each time it exits (as the host does), serves the host's syslog and daemon sockets meanwhile,
// reaps every orphan, and stops the host on Ctrl-C or termination. It acts out the host's power
// commands: "poweroff" stops the host, "reboot" ends every process, boots again and starts the console.
// In command mode it runs one command (exec) and leaves the terminal's signals to it.
class Supervisor {
  public:
    using Boot = std::function<std::vector<std::unique_ptr<DatagramSink>>()>;

    struct Config {
        std::vector<std::string> argv;  // argv[0] is the program path
        bool once = false;
        bool commandMode = false;        // a command of "exec": search PATH, do not act on Ctrl-C or power
        std::string outerPidFile;        // where to publish the console's machine-side pid; empty: nowhere
        int machineProc = -1;            // the machine's /proc, for OuterPid
        Boot boot;                       // runs at every boot; may be empty
        std::function<void()> clearRun;  // a fresh /run before a reboot; may be empty
    };

    static constexpr std::chrono::milliseconds kKillGrace{5000};
    // A console asked to end by a power command gets less: the host is going down.
    static constexpr std::chrono::milliseconds kPowerGrace{1000};
    static constexpr const char* kPowerRequest = "/run/kovo-sim/power";

    Supervisor(Config config, SyslogReceiver& syslog);
    ~Supervisor();
    Supervisor(const Supervisor&) = delete;
    Supervisor& operator=(const Supervisor&) = delete;

    // Returns the launcher's exit status.
    int Run();

  private:
    void Start();
    void Terminate(std::chrono::milliseconds grace);
    void PowerRequest();
    void Reboot();
    void DrainAll();
    void Log(int severity, const std::string& message);
    void Publish(pid_t inner);

    Config _config;
    SyslogReceiver& _syslog;
    RestartPolicy _policy;
    std::vector<std::unique_ptr<DatagramSink>> _daemons;
    int _signals = -1;
    pid_t _console = -1;
    bool _rebooting = false;
    std::chrono::steady_clock::time_point _startedAt;
    std::chrono::steady_clock::time_point _killAt = std::chrono::steady_clock::time_point::max();
    std::chrono::steady_clock::time_point _restartAt = std::chrono::steady_clock::time_point::max();
};

}  // namespace KovoSim
