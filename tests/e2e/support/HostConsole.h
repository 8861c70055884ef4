#pragma once

#include <sys/types.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "TermSession.h"

namespace KovoE2e {

// How to start the console on a simulated host.
struct ConsoleStart {
    std::vector<std::string> arguments;  // the console's own (e.g. the console number)
    std::optional<std::string> term = std::string("xterm-256color");
    std::map<std::string, std::string> environment;  // of the launcher, which the console inherits
    // Put in front of the console alone (the launcher and the rest of the host run without them),
    // e.g. a preloaded clock.
    std::map<std::string, std::string> consoleOnlyEnvironment;
    int columns = 80;
    int rows = 25;
    bool once = true;  // false: the host starts the console again each time it ends
};

// The real console running under the simulated host's launcher in a pseudo-terminal, with its host's
// directory, syslog and files at hand. Each instance owns a fresh host directory.
class HostConsole {
  public:
    // `hostDir` is emptied first: every test starts from a freshly booted host.
    HostConsole(std::string hostDir, const ConsoleStart& start);

    // The console under test: the one built beside the tests, or another build of it named in the
    // environment variable KOVO_E2E_CONSOLE (a release build, or a deliberately broken one to see the
    // tests catch the fault).
    static std::string ConsoleProgram();

    KovoTerm::TermSession& Term() { return *_term; }
    const std::string& HostDir() const { return _hostDir; }

    // The console's process id as this machine sees it, waiting for it to start; a pid other than
    // `notThis` (to find the instance that replaced an ended one). 0 when none appeared in time.
    pid_t WaitForConsole(pid_t notThis = 0);
    // The console's process id inside the host (what it writes to its pid file).
    static std::optional<pid_t> PidInsideHost(pid_t machinePid);

    // The host's "/var/log/syslog.log" as the host wrote it.
    std::string Syslog() const;
    // Waits until a syslog line contains every one of `parts`; returns that line, or nullopt.
    std::optional<std::string> WaitForSyslog(
        const std::vector<std::string>& parts,
        KovoTerm::TermSession::Millis deadline = KovoTerm::TermSession::kDefaultDeadline);
    // Lines containing every one of `parts`.
    std::vector<std::string> SyslogLines(const std::vector<std::string>& parts) const;

    // A file of the host's live file system seen through the running process `machinePid`
    // (e.g. "/var/run/kovo.pid" on the host's own /run).
    static std::optional<std::string> ReadHostFile(pid_t machinePid, const std::string& hostPath);
    static bool WriteHostFile(pid_t machinePid, const std::string& hostPath, const std::string& text);

    // Runs `command` inside the running host, in a terminal of its own.
    std::unique_ptr<KovoTerm::TermSession> ExecInHost(const std::vector<std::string>& command,
                                                      const ConsoleStart& start) const;

    // Waits for the console's first complete screen.
    bool WaitForFirstPaint();

  private:
    std::string _hostDir;
    std::unique_ptr<KovoTerm::TermSession> _term;
};

// A fresh, empty directory for the host of the running test, under the build tree.
std::string FreshHostDir();
// The whole of a file of this machine ("" when there is none).
std::string ReadFile(const std::string& path);

}  // namespace KovoE2e
