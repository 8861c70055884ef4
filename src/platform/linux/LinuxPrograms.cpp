#include "platform/linux/LinuxPrograms.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <map>
#include <vector>

#include "platform/hostctl/ShellWords.h"
#include "platform/linux/Argv.h"

namespace LinuxHost {

namespace {

using HostCtl::Program;

Program Tool(std::vector<std::string> args) {
    args.insert(args.begin(), "kovo-host");
    return {LinuxPrograms::kHostTool, std::move(args)};
}

const Program kTrue{"/bin/true", {"true"}};

// The hypervisor the console's unit names (libvirt's own variable) goes on the tool's command line: the
// console runs host programs with an environment of its own making, which does not carry it.
Program VmsTool(std::vector<std::string> args) {
    const char* uri = getenv("LIBVIRT_DEFAULT_URI");
    if (uri && *uri) args.push_back(std::string("--uri=") + uri);
    return Tool(std::move(args));
}

// The host agent's commands ("hcl-cmd -U USER COMMAND").
Program AgentCommand(const std::string& command) {
    static const std::map<std::string, std::vector<std::string>> services{
        {"hostsvc/start_ssh", {"service", "ssh", "start"}},
        {"hostsvc/stop_ssh", {"service", "ssh", "stop"}},
        {"hostsvc/enable_ssh", {"service", "ssh", "enable"}},
        {"hostsvc/disable_ssh", {"service", "ssh", "disable"}},
        {"hostsvc/start_qor_shell", {"service", "shell", "start"}},
        {"hostsvc/stop_qor_shell", {"service", "shell", "stop"}},
        {"hostsvc/enable_qor_shell", {"service", "shell", "enable"}},
        {"hostsvc/disable_qor_shell", {"service", "shell", "disable"}},
        {"hclsvc/auth/lockdown_is_enabled", {"query", "lockdown-enabled"}},
        {"hclsvc/auth/lockdown_is_possible", {"query", "lockdown-possible"}},
    };
    if (const auto it = services.find(command); it != services.end()) return Tool(it->second);
    // Virtual machines start with the host by their own setting, and nothing here caches the host.
    if (command == "hostsvc/autostartmanager/autostop" || command == "internalsvc/refresh") return kTrue;
    if (command.rfind("hclsvc/auth/lockdown_mode_", 0) == 0) return Tool({"unavailable", "Lockdown mode"});
    return Tool({"unavailable", command});
}

// The log files the pager is pointed at, by the journal's view of the same lines. The others (the
// agents this host does not run) are not kept here.
const std::map<std::string, std::string>& JournalLogs() {
    static const std::map<std::string, std::string> logs{
        {"/var/log/syslog.log", "syslog"},
        {"/var/log/zenkernel.log", "kernel"},
        {"/var/log/sysboot.log", "boot"},
        {"/var/log/hagentd.log", "agent"},
    };
    return logs;
}

// The pager's own options (its prompt, say) go with the log, which is always the last word.
Program Pager(const Program& documented) {
    const std::vector<std::string>& a = documented.argv;
    if (a.size() >= 2)
        if (const auto it = JournalLogs().find(a.back()); it != JournalLogs().end()) {
            std::vector<std::string> args{"log", it->second};
            args.insert(args.end(), a.begin() + 1, a.end() - 1);
            return Tool(args);
        }
    return {"/usr/bin/less", a};
}

bool IsTimeoutSet(const std::vector<std::string>& a) {
    return a.size() == 9 && a[1] == "system" && a[2] == "settings" && a[3] == "advanced" && a[4] == "set" &&
           a[5] == "-o" && a[7] == "-i";
}

}  // namespace

Program LinuxPrograms::Resolve(const Program& documented) const {
    const std::string& path = documented.path;
    const std::vector<std::string>& a = documented.argv;
    if (path == "/bin/hcl-cmd" && a.size() == 4 && a[1] == "-U") return AgentCommand(a[3]);
    if (path == "/bin/sh" && a.size() == 3) {
        if (a[1] == "/etc/init.d/SSH") return Tool({"service", "ssh", a[2]});
        if (a[1] == "/etc/init.d/QorShell") return Tool({"service", "shell", a[2]});
        if (a[1] == "-c" && a[2] == "poweroff") return Tool({"power", "off"});
        if (a[1] == "-c" && a[2] == "reboot") return Tool({"power", "reboot"});
        // Resetting a Debian host to its first state is a reinstallation, not a console's job.
        if (a[1] == "-c" && a[2].rfind("/sbin/firmwareConfig.py --reset-only", 0) == 0)
            return Tool({"unavailable", "Resetting the configuration"});
    }
    if (path == "/bin/powerOffVms" || path == "/sbin/powerOffVms") {
        const bool force = a.size() == 2 && a[1] == "--terminate";
        return force ? VmsTool({"vms", "shutdown", "--force"}) : VmsTool({"vms", "shutdown"});
    }
    if (path == "/sbin/backup.sh") return kTrue;
    if (path == "/sbin/qorcfg-advcfg" && a.size() == 4 && a[1] == "-q" && a[2] == "-g")
        return Tool({"option", "get", a[3]});
    if ((path == "/sbin/qorcli" || path == "/sbin/qorlocalcli") && IsTimeoutSet(a))
        return Tool({"option", "set", a[6], a[8]});
    if (path == "/bin/less") return Pager(documented);
    if (path == "/bin/openssl") return {"/usr/bin/openssl", a};
    if (path == "/usr/lib/halvor/openssh/bin/ssh-keygen") return {"/usr/bin/ssh-keygen", a};
    return documented;
}

bool LinuxPrograms::IsJournalLog(const std::string& path) {
    return JournalLogs().count(path) != 0;
}

std::optional<Program> LinuxPrograms::ResolveCommandLine(const std::string& commandLine) {
    // Its words as a shell would read them; a line that asks a shell for more runs nowhere.
    const std::optional<std::vector<std::string>> split = HostCtl::SplitShellWords(commandLine);
    if (!split) return std::nullopt;
    std::vector<std::string> words = *split;
    if (words.size() == 3 && words[0] == "/bin/sh" && words[1] == "/sbin/services.sh" &&
        (words[2] == "stop" || words[2] == "start"))
        return Tool({"agents", words[2]});
    if (!words.empty() && words[0] == "/bin/zenkping") {
        words[0] = "ping";
        return Program{"/usr/bin/ping", words};
    }
    return std::nullopt;
}

int LinuxPrograms::RunDetached(const Program& program, std::string* errors) {
    int errorPipe[2] = {-1, -1};
    if (errors && pipe2(errorPipe, O_CLOEXEC) != 0) return 127;
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    if (errors)
        posix_spawn_file_actions_adddup2(&actions, errorPipe[1], 2);
    else
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);  // the console blocks signals for its signal thread
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
    Argv argv(program.argv);
    pid_t pid = -1;
    const int spawned = posix_spawn(&pid, program.path.c_str(), &actions, &attributes, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (errors) {
        close(errorPipe[1]);
        // Read to the end before waiting, so a child with much to say never blocks on a full pipe.
        char buffer[512];
        while (spawned == 0) {
            const ssize_t n = read(errorPipe[0], buffer, sizeof buffer);
            if (n > 0)
                errors->append(buffer, static_cast<std::size_t>(n));
            else if (n == 0 || errno != EINTR)
                break;
        }
        close(errorPipe[0]);
    }
    if (spawned != 0) return 127;
    int status = 0;
    while (waitpid(pid, &status, 0) < 0)
        if (errno != EINTR) return 127;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace LinuxHost
