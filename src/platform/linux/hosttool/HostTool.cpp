#include "platform/linux/hosttool/HostTool.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "platform/hostctl/HostCtlException.h"
#include "platform/linux/Argv.h"
#include "platform/linux/LinuxOptions.h"
#include "platform/linux/SystemServices.h"
#include "platform/linux/hosttool/VirtualMachines.h"

namespace LinuxHost {

namespace {

constexpr int kDone = 0, kFailed = 1, kUsage = 2, kNotRunning = 3;
// How long running machines get to shut down before a forced stop switches them off.
constexpr int kGraceSeconds = 120;
// The shell's idle time-out for every login shell on the host.
constexpr const char* kShellIdleProfile = "/etc/profile.d/kovo-shell-timeout.sh";
constexpr const char* kShellIdleOption = "/UserVars/QoriShellInteractiveTimeOut";
// The host's management daemons, in the order they start; the network service is not one of them.
const std::vector<std::string> kAgents{"virtlogd.service", "libvirtd.service"};

int Usage(const std::string& what) {
    std::cerr << "kovo-host: " << what << "\n";
    return kUsage;
}

// The shell idle time-out applies to login shells through the profile; 0 takes it away.
void ApplyShellIdle(const HostFiles& files, int64_t seconds) {
    const std::filesystem::path path = files.Under(kShellIdleProfile);
    std::error_code ignored;
    if (seconds == 0) {
        std::filesystem::remove(path, ignored);
        return;
    }
    std::filesystem::create_directories(path.parent_path(), ignored);
    std::ofstream profile(path, std::ios::trunc);
    profile << "# Written by the host console: shells end after this many idle seconds.\nTMOUT=" << seconds
            << "\nreadonly TMOUT\nexport TMOUT\n";
    if (!profile.flush())
        throw HostCtl::Lib::HostCtlException(std::string("Cannot write ") + kShellIdleProfile);
}

// Shows `text` in the pager, as a log would be.
int Page(const std::string& text) {
    const int fd = memfd_create("kovo-log", 0);
    if (fd < 0 || write(fd, text.data(), text.size()) != static_cast<ssize_t>(text.size())) return kFailed;
    const std::string path = "/proc/self/fd/" + std::to_string(fd);
    execl("/usr/bin/less", "less", path.c_str(), static_cast<char*>(nullptr));
    return kFailed;
}

}  // namespace

HostTool::HostTool(HostFiles files) : _files(std::move(files)) {}

std::string HostTool::UnitOf(const std::string& service) {
    if (service == "ssh") return "ssh.service";
    // The local shell is the login prompt on the second console.
    if (service == "shell") return "getty@tty2.service";
    return {};
}

std::vector<std::string> HostTool::JournalOf(const std::string& log) {
    if (log == "syslog") return {"journalctl", "--boot"};
    if (log == "kernel") return {"journalctl", "--boot", "--dmesg"};
    if (log == "boot") return {"journalctl", "--boot", "--unit=systemd-journald", "--unit=init.scope"};
    if (log == "agent") return {"journalctl", "--boot", "--unit=libvirtd.service", "--unit=virtlogd.service"};
    return {};
}

int HostTool::Run(const std::vector<std::string>& args) {
    if (args.empty()) return Usage("which job? (service, power, vms, agents, query, option, log)");
    const std::string& job = args[0];
    try {
        if (job == "service" && args.size() == 3) return Service(args[1], args[2]);
        if (job == "power" && args.size() == 2) return Power(args[1]);
        if (job == "vms") return Vms({args.begin() + 1, args.end()});
        if (job == "agents" && args.size() == 2) return Agents(args[1]);
        if (job == "query" && args.size() == 2) {
            if (args[1] != "lockdown-enabled" && args[1] != "lockdown-possible")
                return Usage("no such query");
            // Lockdown is the other kind of host's agent's; a Linux host is never in it.
            std::cout << "false\n";
            return kDone;
        }
        if (job == "option") return Option({args.begin() + 1, args.end()});
        if (job == "log" && args.size() >= 2) return Log(args[1], {args.begin() + 2, args.end()});
        if (job == "unavailable" && args.size() == 2) {
            std::cerr << args[1] << " is not available on this host\n";
            return kFailed;
        }
    } catch (const HostCtl::Lib::HostCtlException& e) {
        std::cerr << "kovo-host: " << e.what() << "\n";
        return kFailed;
    }
    return Usage("cannot do that: " + job);
}

int HostTool::Service(const std::string& name, const std::string& action) {
    const std::string unit = UnitOf(name);
    if (unit.empty()) return Usage("no such service: " + name);
    SystemServices services;
    if (action == "status") return services.ActiveState(unit) == "active" ? kDone : kNotRunning;
    if (action == "start") {
        services.Start(unit);
    } else if (action == "stop") {
        services.Stop(unit);
    } else if (action == "restart") {
        services.Restart(unit);
    } else if (action == "enable") {
        services.Enable(unit);
    } else if (action == "disable") {
        services.Disable(unit);
    } else {
        return Usage("a service can start, stop, restart, enable, disable or say its status");
    }
    std::cout << unit << ": " << action << "\n";
    return kDone;
}

int HostTool::Power(const std::string& action) {
    if (action != "off" && action != "reboot") return Usage("power off or power reboot");
    SystemServices services;
    action == "off" ? services.PowerOff() : services.Reboot();
    return kDone;
}

int HostTool::Vms(std::vector<std::string> args) {
    // --uri= first (the console passes what its unit was told), then libvirt's own variable.
    const char* variable = getenv("LIBVIRT_DEFAULT_URI");
    std::string uri = variable && *variable ? variable : VirtualMachines::kSystemUri;
    const auto given = std::find_if(args.begin(), args.end(),
                                    [](const std::string& arg) { return arg.rfind("--uri=", 0) == 0; });
    if (given != args.end()) {
        uri = given->substr(6);
        args.erase(given);
    }
    const VirtualMachines vms(uri);
    if (args.size() == 1 && args[0] == "running") return vms.CountRunning() > 0 ? kDone : kNotRunning;
    if (args.empty() || args[0] != "shutdown" || args.size() > 2 ||
        (args.size() == 2 && args[1] != "--force"))
        return Usage("vms running or vms shutdown [--force], either with --uri=URI");
    const int left = vms.ShutDown(args.size() == 2, kGraceSeconds);
    if (left == 0) return kDone;
    std::cerr << left << " virtual machine(s) still running\n";
    return kFailed;
}

int HostTool::Agents(const std::string& action) {
    if (action != "start" && action != "stop") return Usage("agents start or agents stop");
    SystemServices services;
    int found = 0;
    // Stopped in the reverse order of starting, so nothing is left talking to a daemon that is gone.
    std::vector<std::string> order = kAgents;
    if (action == "stop") order.assign(kAgents.rbegin(), kAgents.rend());
    for (const std::string& unit : order) {
        if (!services.IsInstalled(unit)) continue;
        ++found;
        action == "start" ? services.Start(unit) : services.Stop(unit);
    }
    if (found == 0) {
        std::cerr << "This host has no management agents\n";
        return kFailed;
    }
    return kDone;
}

int HostTool::Option(const std::vector<std::string>& args) {
    LinuxOptions options(_files.Under(LinuxOptions::kPath), false);
    if (args.size() == 2 && args[0] == "get") {
        auto option = options.FindOption(args[1]);
        if (!option) return Usage("no such option: " + args[1]);
        std::cout << option->GetIntValue() << "\n";
        return kDone;
    }
    if (args.size() == 3 && args[0] == "set") {
        auto option = options.FindOption(args[1]);
        if (!option) return Usage("no such option: " + args[1]);
        char* end = nullptr;
        const long long value = strtoll(args[2].c_str(), &end, 10);
        if (args[2].empty() || *end != '\0') return Usage("not a number: " + args[2]);
        option->SetIntValue(value);
        if (args[1] == kShellIdleOption) ApplyShellIdle(_files, value);
        return kDone;
    }
    return Usage("option get PATH or option set PATH SECONDS");
}

int HostTool::Log(const std::string& name, const std::vector<std::string>& pagerOptions) {
    const std::vector<std::string> journal = JournalOf(name);
    if (journal.empty()) return Page("The " + name + " log is not kept on this host.\n");
    // The journal writes into a pipe that less pages with the console's own options; less takes its keys
    // from the terminal.
    int pipeFds[2];
    if (pipe(pipeFds) != 0) return kFailed;
    const pid_t writer = fork();
    if (writer < 0) return kFailed;
    if (writer == 0) {
        dup2(pipeFds[1], STDOUT_FILENO);
        close(pipeFds[0]);
        close(pipeFds[1]);
        std::vector<std::string> words = journal;
        words.push_back("--no-pager");
        execv("/usr/bin/journalctl", Argv(words).data());
        _exit(127);
    }
    dup2(pipeFds[0], STDIN_FILENO);
    close(pipeFds[0]);
    close(pipeFds[1]);
    std::vector<std::string> words{"less"};
    words.insert(words.end(), pagerOptions.begin(), pagerOptions.end());
    words.push_back("-");
    execv("/usr/bin/less", Argv(words).data());
    perror("kovo-host: less");
    return kFailed;
}

}  // namespace LinuxHost
