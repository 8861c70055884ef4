#include "HostConsole.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "ProcessTree.h"

namespace fs = std::filesystem;

namespace KovoE2e {

namespace {

std::string ReadWhole(const std::string& path) {
    std::ifstream in(path);
    std::stringstream all;
    all << in.rdbuf();
    return all.str();
}

std::string ShellQuote(const std::string& text) {
    std::string quoted = "'";
    for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// The console started through a tiny script that adds variables to its environment alone.
std::string WriteConsoleWrapper(const std::string& path,
                                const std::map<std::string, std::string>& environment) {
    std::string script = "#!/bin/sh\nexec /usr/bin/env";
    // A preloaded library (the accelerated clock) must not stop a sanitizer build of the console from
    // starting; other builds ignore the setting.
    if (environment.count("LD_PRELOAD")) script += " ASAN_OPTIONS=verify_asan_link_order=0";
    for (const auto& [name, value] : environment) script += " " + ShellQuote(name + "=" + value);
    script += " " + ShellQuote(HostConsole::ConsoleProgram()) + " \"$@\"\n";
    std::ofstream(path) << script;
    fs::permissions(path, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                              fs::perms::others_read | fs::perms::others_exec);
    return path;
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

    KovoTerm::SpawnOptions options;
    options.argv = {KOVO_E2E_LAUNCHER, "run", "--dir", _hostDir, "--kovo", console};
    if (start.once) options.argv.push_back("--once");
    options.argv.push_back("--");
    options.argv.insert(options.argv.end(), start.arguments.begin(), start.arguments.end());
    options.term = start.term;
    options.environment = start.environment;
    options.environment.emplace("PATH", "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin");
    options.columns = start.columns;
    options.rows = start.rows;
    _term = std::make_unique<KovoTerm::TermSession>(options);
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
    std::istringstream status(ReadWhole("/proc/" + std::to_string(machinePid) + "/status"));
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
    return ReadWhole(_hostDir + "/upper/var/log/syslog.log");
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
    std::ifstream in(PathInHost(machinePid, hostPath));
    if (!in) return std::nullopt;
    std::stringstream all;
    all << in.rdbuf();
    return all.str();
}

bool HostConsole::WriteHostFile(pid_t machinePid, const std::string& hostPath, const std::string& text) {
    std::ofstream out(PathInHost(machinePid, hostPath), std::ios::trunc);
    out << text;
    return bool(out);
}

std::unique_ptr<KovoTerm::TermSession> HostConsole::ExecInHost(const std::vector<std::string>& command,
                                                               const ConsoleStart& start) const {
    KovoTerm::SpawnOptions options;
    options.argv = {KOVO_E2E_LAUNCHER, "exec", _hostDir, "--"};
    options.argv.insert(options.argv.end(), command.begin(), command.end());
    options.term = start.term;
    options.environment = start.environment;
    options.environment.emplace("PATH", "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin");
    options.columns = start.columns;
    options.rows = start.rows;
    return std::make_unique<KovoTerm::TermSession>(options);
}

bool HostConsole::WaitForFirstPaint() {
    // The bottom line is drawn last of the first screen; after it, output settles.
    return _term->WaitForText("<F12> Shut Down/Restart") &&
           _term->WaitForQuiet(KovoTerm::TermSession::Millis(200));
}

}  // namespace KovoE2e
