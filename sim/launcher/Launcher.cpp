#include "Launcher.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>

#include <nlohmann/json.hpp>

#include "HostBoot.h"
#include "HostNamespace.h"
#include "RestartPolicy.h"
#include "SyslogReceiver.h"
#include "host/SimulationSchema.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/store/HostStore.h"

namespace KovoSim {
namespace fs = std::filesystem;
namespace {

constexpr int kUsageStatus = 2;

// The host's disk is used by one booted host at a time; the lock lives as long as the launcher.
class HostLock {
  public:
    explicit HostLock(const HostLayout& layout) {
        _fd = ::open(layout.State("lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
        if (_fd < 0) throw std::system_error(errno, std::generic_category(), "open " + layout.State("lock"));
        _held = ::flock(_fd, LOCK_EX | LOCK_NB) == 0;
    }
    ~HostLock() { ::close(_fd); }
    HostLock(const HostLock&) = delete;
    HostLock& operator=(const HostLock&) = delete;
    bool Held() const { return _held; }

  private:
    int _fd = -1;
    bool _held = false;
};

int ReadPid(const std::string& path) {
    std::ifstream file(path);
    long pid = 0;
    if (!(file >> pid) || pid <= 0 || pid > 1 << 30) return -1;
    return static_cast<int>(pid);
}

void WriteText(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::trunc);
    file << text;
}

bool InsideAHost() {
    // Every boot of a simulated host makes this directory on its own tmpfs; the machine has none.
    return fs::is_directory("/run/kovo-sim") && fs::exists(ZenkCtl::Store::HostStore::kHostPath);
}

sigset_t LauncherSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (int s : {SIGCHLD, SIGINT, SIGQUIT, SIGTERM, SIGHUP}) sigaddset(&set, s);
    return set;
}

}  // namespace

std::string Launcher::SelfPath() {
    std::error_code error;
    auto path = fs::read_symlink("/proc/self/exe", error);
    return error ? std::string() : path.string();
}

std::string Launcher::DefaultConsole() {
    const std::string self = SelfPath();
    if (self.empty()) return "kovo";
    return (fs::path(self).parent_path().parent_path() / "src" / "kovo").lexically_normal().string();
}

int Launcher::Main(int argc, char** argv) {
    const std::string program = argc > 0 ? fs::path(argv[0]).filename().string() : "kovo-sim";
    LauncherOptions options;
    try {
        options = LauncherOptions::Parse(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const LauncherOptions::Error& e) {
        std::cerr << program << ": " << e.what() << "\n" << LauncherOptions::Usage(program);
        return kUsageStatus;
    }
    try {
        return Dispatch(options, program);
    } catch (const std::invalid_argument& e) {
        std::cerr << program << ": " << e.what() << "\n";
        return kUsageStatus;
    } catch (const std::exception& e) {
        std::cerr << program << ": " << e.what() << "\n";
        return 1;
    }
}

int Launcher::Dispatch(const LauncherOptions& options, const std::string& program) {
    using Command = LauncherOptions::Command;
    switch (options.command) {
        case Command::Help:
            std::cout << LauncherOptions::Usage(program);
            return 0;
        case Command::Run:
            return RunConsole(options);
        case Command::InHostGet:
            return InHostGet(options.pointer);
        case Command::InHostSet:
            return InHostSet(options.pointer, options.value);
        default:
            break;
    }
    const HostLayout layout(options.dir);
    if (!layout.Prepared()) throw std::invalid_argument("there is no simulated host in " + layout.Dir());
    switch (options.command) {
        case Command::Paths:
            return Paths(layout);
        case Command::Exec:
            return Exec(layout, options.args);
        case Command::Get:
            return Exec(layout, {SelfPath(), "in-host-get", options.pointer});
        case Command::Set:
            return Exec(layout, {SelfPath(), "in-host-set", options.pointer, options.value});
        default:
            return kUsageStatus;
    }
}

nlohmann::json Launcher::LoadScenario(const std::string& nameOrFile) {
    const bool isFile = nameOrFile.find('/') != std::string::npos || nameOrFile.ends_with(".json");
    if (!isFile &&
        nameOrFile.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-_") != std::string::npos)
        throw std::invalid_argument("no scenario named \"" + nameOrFile + "\"");
    const std::string path =
        isFile ? nameOrFile : std::string(KOVO_SIM_SCENARIOS) + "/" + nameOrFile + ".json";
    std::ifstream file(path);
    if (!file) {
        throw std::invalid_argument(isFile ? "cannot read the scenario " + path
                                           : "no scenario named \"" + nameOrFile + "\" (no " + path + ")");
    }
    nlohmann::json scenario;
    try {
        scenario = nlohmann::json::parse(file);
    } catch (const nlohmann::json::exception& e) {
        throw std::invalid_argument("the scenario " + path + " is not valid JSON: " + e.what());
    }
    if (!scenario.is_object()) throw std::invalid_argument("the scenario " + path + " is not a JSON object");
    // A misspelt member would otherwise change nothing and say nothing.
    const auto faults = Simulation::Check(scenario);
    if (!faults.empty()) {
        std::string message = "the scenario " + path + " does not fit the host's store:";
        for (const auto& fault : faults) message += "\n  " + fault;
        throw std::invalid_argument(message);
    }
    return scenario;
}

nlohmann::json Launcher::HostScenario(const HostLayout& layout, const LauncherOptions& options) {
    const std::string recorded = layout.State("scenario.json");
    const std::string recordedName = layout.State("scenario-name");
    if (fs::exists(recorded)) {
        std::ifstream name(recordedName);
        std::string made;
        std::getline(name, made);
        if (options.scenarioGiven && options.scenario != made) {
            throw std::invalid_argument("the host in " + layout.Dir() + " was made from the scenario \"" +
                                        made + "\"; use another --dir for \"" + options.scenario + "\"");
        }
        return LoadScenario(recorded);
    }
    nlohmann::json scenario = LoadScenario(options.scenario);
    WriteText(recorded, scenario.dump(2) + "\n");
    WriteText(recordedName, options.scenario + "\n");
    return scenario;
}

int Launcher::RunConsole(const LauncherOptions& options) {
    const HostLayout layout(options.dir);
    const std::string console = options.kovo.empty() ? DefaultConsole() : fs::absolute(options.kovo).string();
    if (::access(console.c_str(), X_OK) != 0)
        throw std::invalid_argument("cannot run the console " + console + ": " + std::strerror(errno));
    layout.Prepare();
    HostLock lock(layout);
    if (!lock.Held()) {
        throw std::runtime_error("the simulated host in " + layout.Dir() + " is already running (pid " +
                                 std::to_string(ReadPid(layout.State("init.pid"))) + ")");
    }
    HostScenario(layout, options);
    Supervisor::Config config;
    config.argv.push_back(console);
    config.argv.insert(config.argv.end(), options.args.begin(), options.args.end());
    config.once = options.once;
    config.outerPidFile = layout.State("console.pid");
    return Boot(layout, std::move(config));
}

int Launcher::Exec(const HostLayout& layout, const std::vector<std::string>& command) {
    HostLock lock(layout);
    if (!lock.Held()) {
        const int init = ReadPid(layout.State("init.pid"));
        if (init <= 0 || ::kill(init, 0) != 0)
            throw std::runtime_error("the simulated host in " + layout.Dir() +
                                     " is starting or stopping; try again");
        return Join(init, command);
    }
    // Nobody runs this host: boot it just for the command, keeping the lock meanwhile.
    HostScenario(layout, LauncherOptions{});
    Supervisor::Config config;
    config.argv = command;
    config.commandMode = true;
    return Boot(layout, std::move(config));
}

int Launcher::Paths(const HostLayout& layout) {
    for (const auto& [name, hostPath] : HostLayout::Logs())
        std::cout << name << "\t" << layout.OnDisk(hostPath) << "\n";
    std::cout << "store\t" << layout.OnDisk(ZenkCtl::Store::HostStore::kHostPath) << "\n";
    std::cout << "console-pid\t" << layout.State("console.pid") << "\n";
    std::cout << "init-pid\t" << layout.State("init.pid") << "\n";
    return 0;
}

int Launcher::Boot(const HostLayout& layout, Supervisor::Config config) {
    const sigset_t signals = LauncherSignals();
    sigset_t previous;
    ::sigprocmask(SIG_BLOCK, &signals, &previous);
    std::cout.flush();
    std::cerr.flush();
    // The launcher stays in the machine's namespaces; a child makes the host's and forks its PID 1.
    // (A process whose PID namespace lost its init cannot fork again, not even a sanitizer's thread.)
    const pid_t maker = ::fork();
    if (maker < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (maker == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        try {
            HostNamespace::Create();
        } catch (const std::exception& e) {
            std::cerr << "kovo-sim: cannot make the simulated host's namespaces: " << e.what() << "\n";
            _exit(1);
        }
        const pid_t init = ::fork();
        if (init < 0) _exit(1);
        if (init == 0) _exit(RunInit(layout, std::move(config)));
        WriteText(layout.State("init.pid"), std::to_string(init));
        _exit(RestartPolicy::ExitCode(ForwardUntilEnd(init, signals)));
    }

    // A console killed while the host went down cannot restore the terminal; the launcher does, after
    // taking back the foreground the host's group had (from the background: SIGTTOU held back).
    struct termios terminal {};
    const bool haveTerminal = ::tcgetattr(STDIN_FILENO, &terminal) == 0;
    const bool foreground = haveTerminal && ::tcgetpgrp(STDIN_FILENO) == ::getpgrp();
    const int status = ForwardUntilEnd(maker, signals);
    if (haveTerminal) {
        sigset_t ttou, held;
        sigemptyset(&ttou);
        sigaddset(&ttou, SIGTTOU);
        ::sigprocmask(SIG_BLOCK, &ttou, &held);
        if (foreground) ::tcsetpgrp(STDIN_FILENO, ::getpgrp());
        ::tcsetattr(STDIN_FILENO, TCSANOW, &terminal);
        ::sigprocmask(SIG_SETMASK, &held, nullptr);
    }
    ::unlink(layout.State("init.pid").c_str());
    ::unlink(layout.State("console.pid").c_str());
    ::sigprocmask(SIG_SETMASK, &previous, nullptr);
    return RestartPolicy::ExitCode(status);
}

namespace {

// The host's processes are a process group of the host's own, in the terminal's foreground, as a real
// host's console is: the console can then name its group to take the terminal back from a program it
// lent it to. Ctrl-C still reaches the supervisor, which is in the group.
void TakeTheTerminal() {
    sigset_t ttou, previous;
    sigemptyset(&ttou);
    sigaddset(&ttou, SIGTTOU);
    ::sigprocmask(SIG_BLOCK, &ttou, &previous);
    // Only a host started in the foreground takes it (one run in the background leaves the terminal be).
    const bool foreground = ::isatty(STDIN_FILENO) && ::tcgetpgrp(STDIN_FILENO) == ::getpgrp();
    if (foreground && ::setpgid(0, 0) == 0) ::tcsetpgrp(STDIN_FILENO, ::getpgrp());
    ::sigprocmask(SIG_SETMASK, &previous, nullptr);
}

}  // namespace

int Launcher::RunInit(const HostLayout& layout, Supervisor::Config config) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    TakeTheTerminal();
    try {
        const nlohmann::json scenario = LoadScenario(layout.State("scenario.json"));
        const std::string beside = fs::path(SelfPath()).parent_path().string();
        const HostBoot::Products products{beside + "/kovo-sim-host", beside + "/pam_kovo_sim.so"};
        config.machineProc = HostNamespace::Mount(layout);
        // The host's programs are links to the launcher's own files: the host may replace a link, never
        // write through it into the build that made it. The console program is protected the same way.
        HostNamespace::MakeReadOnly(beside);
        if (!config.argv.empty() && fs::is_regular_file(config.argv[0]))
            HostNamespace::MakeReadOnly(config.argv[0]);
        const bool made = !fs::exists(ZenkCtl::Store::HostStore::kHostPath);
        if (made) HostBoot::Provision(scenario);
        config.boot = [scenario, products, first = made]() mutable {
            auto daemons = HostBoot::Start(scenario, products, first);
            first = false;
            return daemons;
        };
        config.clearRun = [] { HostNamespace::RemountRun(); };
        SyslogReceiver syslog("/dev/log", "/var/log/syslog.log");
        Supervisor supervisor(std::move(config), syslog);
        const int status = supervisor.Run();
        std::cout.flush();
        return status;
    } catch (const std::exception& e) {
        std::cerr << "kovo-sim: cannot boot the simulated host: " << e.what() << "\n";
        return 1;
    }
}

int Launcher::ForwardUntilEnd(pid_t child, const sigset_t& signals) {
    int status = 0;
    for (;;) {
        siginfo_t info{};
        if (::sigwaitinfo(&signals, &info) < 0) {
            if (errno == EINTR) continue;
            throw std::system_error(errno, std::generic_category(), "sigwaitinfo");
        }
        if (info.si_signo == SIGCHLD) {
            if (::waitpid(child, &status, WNOHANG) == child) return status;
            continue;
        }
        // The terminal's Ctrl-C already reached the host's processes; a signal sent to the launcher
        // itself stops the host.
        if ((info.si_signo == SIGINT || info.si_signo == SIGQUIT) && info.si_code == SI_KERNEL) continue;
        ::kill(child, SIGTERM);
    }
}

int Launcher::Join(int init, const std::vector<std::string>& command) {
    std::vector<std::string> args = command;
    std::vector<char*> argv;
    for (auto& arg : args) argv.push_back(arg.data());
    argv.push_back(nullptr);

    struct sigaction ignore {
    }, oldInt{}, oldQuit{};
    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGINT, &ignore, &oldInt);
    ::sigaction(SIGQUIT, &ignore, &oldQuit);
    // A child enters the host, so the launcher itself stays in the machine's namespaces; the host's PID
    // namespace takes only the grandchild.
    const pid_t child = ::fork();
    if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (child == 0) {
        try {
            HostNamespace::Join(init);
        } catch (const std::exception& e) {
            std::cerr << "kovo-sim: cannot enter the host: " << e.what() << "\n";
            _exit(1);
        }
        const pid_t inside = ::fork();
        if (inside < 0) _exit(1);
        if (inside == 0) {
            ::sigaction(SIGINT, &oldInt, nullptr);
            ::sigaction(SIGQUIT, &oldQuit, nullptr);
            if (::chdir("/") != 0) _exit(127);
            ::execvp(argv[0], argv.data());
            std::cerr << "kovo-sim: cannot run " << args[0] << ": " << std::strerror(errno) << "\n";
            _exit(127);
        }
        int status = 0;
        while (::waitpid(inside, &status, 0) < 0 && errno == EINTR) {
        }
        _exit(RestartPolicy::ExitCode(status));
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    ::sigaction(SIGINT, &oldInt, nullptr);
    ::sigaction(SIGQUIT, &oldQuit, nullptr);
    return RestartPolicy::ExitCode(status);
}

int Launcher::InHostGet(const std::string& pointer) {
    if (!InsideAHost()) {
        std::cerr
            << "kovo-sim: in-host-get runs only inside a simulated host; use: kovo-sim get DIR POINTER\n";
        return kUsageStatus;
    }
    try {
        const auto value = ZenkCtl::Store::HostStore().Get(pointer);
        std::cout << value.dump(2) << "\n";
        return value.is_null() ? 1 : 0;
    } catch (const HostCtl::Lib::HostCtlException& e) {
        std::cerr << "kovo-sim: " << e.what() << "\n";
        return 1;
    }
}

int Launcher::InHostSet(const std::string& pointer, const std::string& value) {
    if (!InsideAHost()) {
        std::cerr << "kovo-sim: in-host-set runs only inside a simulated host; use: kovo-sim set DIR POINTER "
                     "JSON\n";
        return kUsageStatus;
    }
    nlohmann::json parsed;
    try {
        parsed = nlohmann::json::parse(value);
    } catch (const nlohmann::json::exception&) {
        std::cerr << "kovo-sim: not a JSON value: " << value << "\n";
        return kUsageStatus;
    }
    const auto faults = Simulation::Check(parsed, pointer);
    for (const auto& fault : faults) std::cerr << "kovo-sim: " << fault << "\n";
    if (!faults.empty()) return kUsageStatus;
    try {
        const nlohmann::json::json_pointer where(pointer);
        ZenkCtl::Store::HostStore().Update([&](nlohmann::json& document) { document[where] = parsed; });
        return 0;
    } catch (const nlohmann::json::exception& e) {
        std::cerr << "kovo-sim: cannot set " << pointer << ": " << e.what() << "\n";
        return 1;
    } catch (const HostCtl::Lib::HostCtlException& e) {
        std::cerr << "kovo-sim: " << e.what() << "\n";
        return 1;
    }
}

}  // namespace KovoSim
