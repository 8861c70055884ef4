#include "HostConsole.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "ProcessTree.h"
#include "ShellSteps.h"

namespace fs = std::filesystem;

namespace KovoE2e {

namespace {

// The console started through a tiny script that adds variables to its environment alone.
std::string WriteConsoleWrapper(const std::string& path,
                                const std::map<std::string, std::string>& environment) {
    std::string script = "#!/bin/sh\nexec /usr/bin/env";
    // A preloaded library (the accelerated clock) must not stop a sanitizer build of the console from
    // starting; other builds ignore the setting.
    if (environment.count("LD_PRELOAD")) script += " ASAN_OPTIONS=verify_asan_link_order=0";
    for (const auto& [name, value] : environment) script += " " + Quote(name + "=" + value);
    script += " " + Quote(HostConsole::ConsoleProgram()) + " \"$@\"\n";
    std::ofstream(path) << script;
    fs::permissions(path, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                              fs::perms::others_read | fs::perms::others_exec);
    return path;
}

// `argv` in a terminal of the start's type, size and environment, with a path of the host's.
KovoTerm::SpawnOptions Spawn(std::vector<std::string> argv, const ConsoleStart& start) {
    KovoTerm::SpawnOptions options;
    options.argv = std::move(argv);
    options.term = start.term;
    options.environment = start.environment;
    options.environment.emplace("PATH", "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin");
    options.columns = start.columns;
    options.rows = start.rows;
    return options;
}

bool ContainsAll(const std::string& line, const std::vector<std::string>& parts) {
    for (const auto& part : parts)
        if (line.find(part) == std::string::npos) return false;
    return true;
}

// "/proc/<pid>/root" + the host path with its symbolic links followed inside the host: an absolute link
// target (such as /var/run -> /run) would otherwise be taken from this machine's root.
std::string PathInHost(pid_t machinePid, const std::string& hostPath) {
    const std::string root = "/proc/" + std::to_string(machinePid) + "/root";
    std::vector<std::string> pending;
    std::istringstream split(hostPath);
    for (std::string part; std::getline(split, part, '/');)
        if (!part.empty()) pending.push_back(part);
    std::string resolved;
    for (int hops = 0; !pending.empty() && hops < 64;) {
        std::string part = pending.front();
        pending.erase(pending.begin());
        std::string candidate = resolved + "/" + part;
        std::error_code error;
        if (!fs::is_symlink(root + candidate, error)) {
            resolved = candidate;
            continue;
        }
        ++hops;
        std::string target = fs::read_symlink(root + candidate, error).string();
        std::vector<std::string> parts;
        std::istringstream targetSplit(target);
        for (std::string p; std::getline(targetSplit, p, '/');)
            if (!p.empty()) parts.push_back(p);
        if (!target.empty() && target[0] == '/') resolved.clear();
        pending.insert(pending.begin(), parts.begin(), parts.end());
    }
    return root + resolved;
}

}  // namespace

std::string ReadFile(const std::string& path) {
    std::ifstream in(path);
    std::stringstream all;
    all << in.rdbuf();
    return all.str();
}

std::string HostConsole::ConsoleProgram() {
    const char* other = std::getenv("KOVO_E2E_CONSOLE");
    return other && *other ? other : KOVO_E2E_CONSOLE;
}

std::string FreshHostDir() {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(test->test_suite_name()) + "." + test->name();
    for (char& c : name)
        if (c == '/') c = '_';
    std::string dir = std::string(KOVO_E2E_SCRATCH) + "/" + name;
    fs::remove_all(dir);
    fs::remove(dir + ".console");
    fs::create_directories(dir);
    return dir;
}

HostConsole::HostConsole(std::string hostDir, const ConsoleStart& start) : _hostDir(std::move(hostDir)) {
    std::string console = ConsoleProgram();
    if (!start.consoleOnlyEnvironment.empty())
        console = WriteConsoleWrapper(_hostDir + ".console", start.consoleOnlyEnvironment);
    std::vector<std::string> argv{KOVO_E2E_LAUNCHER, "run", "--dir", _hostDir, "--kovo", console};
    if (start.once) argv.push_back("--once");
    argv.push_back("--");
    argv.insert(argv.end(), start.arguments.begin(), start.arguments.end());
    _term = std::make_unique<KovoTerm::TermSession>(Spawn(argv, start));
}

pid_t HostConsole::WaitForConsole(pid_t notThis) {
    pid_t found = 0;
    _term->WaitUntil([&] {
        for (pid_t pid : KovoTerm::ProcessTree::Descendants(_term->Pid())) {
            if (pid == notThis || KovoTerm::ProcessTree::CommandName(pid) != "kovo") continue;
            // A child the console forked has its name until it runs its program: not a console.
            const std::optional<pid_t> parent = KovoTerm::ProcessTree::ParentOf(pid);
            if (parent && KovoTerm::ProcessTree::CommandName(*parent) == "kovo") continue;
            found = pid;
            return true;
        }
        return false;
    });
    return found;
}

std::optional<pid_t> HostConsole::PidInsideHost(pid_t machinePid) {
    // "NSpid:\t<outer>\t...\t<innermost>"
    std::istringstream status(ReadFile("/proc/" + std::to_string(machinePid) + "/status"));
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("NSpid:", 0) != 0) continue;
        std::istringstream ids(line.substr(6));
        long id = 0, last = 0;
        while (ids >> id) last = id;
        if (last > 0) return pid_t(last);
    }
    return std::nullopt;
}

std::string HostConsole::Syslog() const {
    return ReadFile(_hostDir + "/upper/var/log/syslog.log");
}

std::vector<std::string> HostConsole::SyslogLines(const std::vector<std::string>& parts) const {
    std::vector<std::string> lines;
    std::istringstream log(Syslog());
    std::string line;
    while (std::getline(log, line))
        if (ContainsAll(line, parts)) lines.push_back(line);
    return lines;
}

std::optional<std::string> HostConsole::WaitForSyslog(const std::vector<std::string>& parts,
                                                      KovoTerm::TermSession::Millis deadline) {
    std::optional<std::string> found;
    _term->WaitUntil(
        [&] {
            auto lines = SyslogLines(parts);
            if (lines.empty()) return false;
            found = lines.front();
            return true;
        },
        deadline);
    return found;
}

std::optional<std::string> HostConsole::ReadHostFile(pid_t machinePid, const std::string& hostPath) {
    const std::string path = PathInHost(machinePid, hostPath);
    if (!fs::exists(path)) return std::nullopt;
    return ReadFile(path);
}

bool HostConsole::WriteHostFile(pid_t machinePid, const std::string& hostPath, const std::string& text) {
    std::ofstream out(PathInHost(machinePid, hostPath), std::ios::trunc);
    out << text;
    return bool(out);
}

std::unique_ptr<KovoTerm::TermSession> HostConsole::ExecInHost(const std::vector<std::string>& command,
                                                               const ConsoleStart& start) const {
    std::vector<std::string> argv{KOVO_E2E_LAUNCHER, "exec", _hostDir, "--"};
    argv.insert(argv.end(), command.begin(), command.end());
    return std::make_unique<KovoTerm::TermSession>(Spawn(argv, start));
}

bool HostConsole::WaitForFirstPaint() {
    // The bottom line is drawn last of the first screen; after it, output settles.
    return _term->WaitForText("<F12> Shut Down/Restart") &&
           _term->WaitForQuiet(KovoTerm::TermSession::Millis(200));
}

}  // namespace KovoE2e
