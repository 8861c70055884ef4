#include "Supervisor.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>

#include "OuterPid.h"

namespace KovoSim {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kHandled[] = {SIGCHLD, SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGUSR1};

sigset_t HandledSet() {
    sigset_t set;
    sigemptyset(&set);
    for (int s : kHandled) sigaddset(&set, s);
    return set;
}

void WriteFileAtomically(const std::string& path, const std::string& text) {
    const std::string temp = path + ".new";
    const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) return;
    const bool ok = ::write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    ::close(fd);
    if (ok) ::rename(temp.c_str(), path.c_str());
}

std::string Describe(int status) {
    if (WIFEXITED(status)) return "exited with status " + std::to_string(WEXITSTATUS(status));
    if (WIFSIGNALED(status)) return std::string("was killed by signal ") + strsignal(WTERMSIG(status));
    return "ended";
}

}  // namespace

Supervisor::Supervisor(Config config, SyslogReceiver& syslog)
    : _config(std::move(config)), _syslog(syslog), _policy(_config.once || _config.commandMode) {
    const sigset_t set = HandledSet();
    if (::sigprocmask(SIG_BLOCK, &set, nullptr) != 0)
        throw std::system_error(errno, std::generic_category(), "sigprocmask");
    _signals = ::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    if (_signals < 0) throw std::system_error(errno, std::generic_category(), "signalfd");
}

Supervisor::~Supervisor() {
    if (_signals >= 0) ::close(_signals);
}

void Supervisor::Log(int severity, const std::string& message) {
    _syslog.WriteLocal(LOG_DAEMON | severity, "init: " + message);
}

void Supervisor::Publish(pid_t inner) {
    WriteFileAtomically("/run/kovo-sim/console.pid", std::to_string(inner));
    if (_config.outerPidFile.empty()) return;
    const pid_t outer = _config.machineProc >= 0 ? OuterPid::OfChild(_config.machineProc, inner) : -1;
    if (outer > 0) WriteFileAtomically(_config.outerPidFile, std::to_string(outer));
}

void Supervisor::DrainAll() {
    _syslog.Drain();
    for (auto& daemon : _daemons) daemon->Drain();
}

void Supervisor::Start() {
    std::vector<char*> argv;
    for (auto& arg : _config.argv) argv.push_back(arg.data());
    argv.push_back(nullptr);

    const pid_t pid = ::fork();
    if (pid < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (pid == 0) {
        sigset_t none;
        sigemptyset(&none);
        ::sigprocmask(SIG_SETMASK, &none, nullptr);
        for (int s : kHandled) ::signal(s, SIG_DFL);
        if (::chdir("/") != 0) _exit(127);
        if (_config.commandMode)
            ::execvp(argv[0], argv.data());
        else
            ::execv(argv[0], argv.data());
        const std::string message =
            "kovo-sim: cannot run " + _config.argv[0] + ": " + std::strerror(errno) + "\n";
        if (::write(2, message.data(), message.size()) < 0) _exit(127);
        _exit(127);
    }
    _console = pid;
    _startedAt = Clock::now();
    if (!_config.commandMode) {
        Publish(pid);
        Log(LOG_INFO, "started " + _config.argv[0] + " as pid " + std::to_string(pid));
    }
}

void Supervisor::Terminate(std::chrono::milliseconds grace) {
    if (_console > 0) {
        ::kill(_console, SIGTERM);
        const auto deadline = Clock::now() + grace;
        if (deadline < _killAt) _killAt = deadline;
    } else {
        _restartAt = Clock::now();  // waiting out a pause: act now
    }
}

void Supervisor::PowerRequest() {
    std::ifstream file(kPowerRequest);
    std::string request;
    file >> request;
    ::unlink(kPowerRequest);
    if (_config.commandMode) {
        Log(LOG_INFO, "ignoring " + request + ": the host runs only a command");
        return;
    }
    if (request == "reboot") {
        Log(LOG_INFO, "rebooting");
        _rebooting = true;
        Terminate(kPowerGrace);
    } else if (request == "poweroff") {
        Log(LOG_INFO, "powering off");
        _policy.Stop();
        Terminate(kPowerGrace);
    } else {
        Log(LOG_WARNING, "unknown power request \"" + request + "\"");
    }
}

void Supervisor::Reboot() {
    // Every process of the host ends, as on a real reboot; PID 1 survives to boot it again.
    ::kill(-1, SIGKILL);
    int status;
    while (::waitpid(-1, &status, 0) > 0 || errno == EINTR) {
    }
    DrainAll();
    _daemons.clear();
    if (_config.clearRun) _config.clearRun();
    if (_config.boot) _daemons = _config.boot();
    _rebooting = false;
    Log(LOG_INFO, "host booted again");
}

int Supervisor::Run() {
    if (_config.boot) _daemons = _config.boot();
    Start();
    for (;;) {
        const auto now = Clock::now();
        const auto next = std::min(_killAt, _restartAt);
        int timeout = -1;
        if (next != Clock::time_point::max())
            timeout = static_cast<int>(std::max<long>(
                0, std::chrono::duration_cast<std::chrono::milliseconds>(next - now).count() + 1));
        std::vector<struct pollfd> fds = {{_signals, POLLIN, 0}, {_syslog.Fd(), POLLIN, 0}};
        for (auto& daemon : _daemons) fds.push_back({daemon->Fd(), POLLIN, 0});
        if (::poll(fds.data(), fds.size(), timeout) < 0 && errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "poll");
        DrainAll();

        bool childEnded = false;
        struct signalfd_siginfo info;
        while (::read(_signals, &info, sizeof info) == sizeof info) {
            switch (info.ssi_signo) {
                case SIGCHLD:
                    childEnded = true;
                    break;
                case SIGUSR1:
                    PowerRequest();
                    break;
                case SIGINT:
                case SIGQUIT:
                    // The terminal's Ctrl-C reaches the whole foreground group: the operator ends the demo.
                    // A command run by exec owns the terminal and gets it itself.
                    if (!_config.commandMode) {
                        Log(LOG_INFO, "interrupted at the terminal; stopping the host");
                        _policy.Stop();
                        Terminate(kKillGrace);
                    }
                    break;
                default:  // SIGTERM, SIGHUP
                    Log(LOG_INFO, std::string("received ") + strsignal(static_cast<int>(info.ssi_signo)) +
                                      "; stopping the host");
                    _policy.Stop();
                    Terminate(kKillGrace);
                    break;
            }
        }
        if (childEnded) {
            int status = 0;
            pid_t pid;
            while ((pid = ::waitpid(-1, &status, WNOHANG)) > 0) {
                if (pid != _console) continue;  // a daemon, or an orphan adopted by PID 1
                _console = -1;
                _killAt = Clock::time_point::max();
                const auto lifetime =
                    std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - _startedAt);
                // Whatever the console logged before it ended is already queued on the sockets.
                DrainAll();
                if (!_config.commandMode) Log(LOG_INFO, _config.argv[0] + " " + Describe(status));
                if (_rebooting && !_policy.Stopping()) {
                    Reboot();
                    _restartAt = Clock::now();
                    continue;
                }
                const auto decision = _policy.ConsoleEnded(status, lifetime);
                if (decision.action == RestartPolicy::Action::Stop) {
                    if (!_config.commandMode) Log(LOG_INFO, "host stopped");
                    return decision.exitCode;
                }
                _restartAt = decision.action == RestartPolicy::Action::Restart
                                 ? Clock::now()
                                 : Clock::now() + RestartPolicy::kPause;
            }
        }
        const auto after = Clock::now();
        if (_console > 0 && after >= _killAt) {
            Log(LOG_WARNING, _config.argv[0] + " did not stop; killing it");
            ::kill(_console, SIGKILL);
            _killAt = Clock::time_point::max();
        }
        if (_console < 0 && after >= _restartAt) {
            _restartAt = Clock::time_point::max();
            if (_policy.Stopping()) return 0;
            if (_rebooting) Reboot();
            Start();
        }
    }
}

}  // namespace KovoSim
