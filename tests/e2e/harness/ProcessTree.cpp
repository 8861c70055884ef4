#include "ProcessTree.h"

#include <dirent.h>
#include <unistd.h>

#include <fstream>
#include <map>
#include <sstream>

namespace KovoTerm {

namespace {

std::string ReadFile(const std::string& path) {
    std::ifstream in(path);
    std::stringstream all;
    all << in.rdbuf();
    return all.str();
}

std::map<pid_t, pid_t> ParentMap() {
    std::map<pid_t, pid_t> parents;
    for (pid_t pid : ProcessTree::All())
        if (auto parent = ProcessTree::ParentOf(pid)) parents[pid] = *parent;
    return parents;
}

}  // namespace

std::optional<pid_t> ProcessTree::ParentOf(pid_t pid) {
    // "pid (comm) state ppid ...": comm may hold spaces and parentheses, so parse after the last ')'.
    std::string stat = ReadFile("/proc/" + std::to_string(pid) + "/stat");
    auto close = stat.rfind(')');
    if (close == std::string::npos) return std::nullopt;
    std::istringstream rest(stat.substr(close + 1));
    std::string state;
    long parent = -1;
    if (!(rest >> state >> parent)) return std::nullopt;
    return pid_t(parent);
}

std::optional<std::chrono::milliseconds> ProcessTree::CpuTime(pid_t pid) {
    // After the command name: state, then ten fields, then utime and stime in clock ticks.
    std::string stat = ReadFile("/proc/" + std::to_string(pid) + "/stat");
    auto close = stat.rfind(')');
    if (close == std::string::npos) return std::nullopt;
    std::istringstream rest(stat.substr(close + 1));
    std::string field;
    for (int skip = 0; skip < 11; ++skip)
        if (!(rest >> field)) return std::nullopt;
    long long user = 0, system = 0;
    if (!(rest >> user >> system)) return std::nullopt;
    const long ticks = sysconf(_SC_CLK_TCK);
    if (ticks <= 0) return std::nullopt;
    return std::chrono::milliseconds((user + system) * 1000 / ticks);
}

std::optional<std::string> ProcessTree::CommandName(pid_t pid) {
    std::string comm = ReadFile("/proc/" + std::to_string(pid) + "/comm");
    if (comm.empty()) return std::nullopt;
    if (comm.back() == '\n') comm.pop_back();
    return comm;
}

std::string ProcessTree::CommandLine(pid_t pid) {
    // A process may end while it is read: what it had by then, or nothing, never an exception.
    return ReadFile("/proc/" + std::to_string(pid) + "/cmdline");
}

std::vector<pid_t> ProcessTree::All() {
    std::vector<pid_t> pids;
    DIR* proc = opendir("/proc");
    if (!proc) return pids;
    while (dirent* entry = readdir(proc)) {
        char* end = nullptr;
        const long pid = std::strtol(entry->d_name, &end, 10);
        if (*end == '\0' && pid > 0) pids.push_back(pid_t(pid));
    }
    closedir(proc);
    return pids;
}

std::vector<pid_t> ProcessTree::Descendants(pid_t root) {
    auto parents = ParentMap();
    std::vector<pid_t> found;
    std::vector<pid_t> frontier{root};
    while (!frontier.empty()) {
        pid_t current = frontier.back();
        frontier.pop_back();
        for (const auto& [pid, parent] : parents) {
            if (parent == current) {
                found.push_back(pid);
                frontier.push_back(pid);
            }
        }
    }
    return found;
}

pid_t ProcessTree::FindDescendant(pid_t root, std::string_view name) {
    for (pid_t pid : Descendants(root)) {
        auto comm = CommandName(pid);
        if (comm && *comm == name) return pid;
    }
    return 0;
}

std::optional<long> ProcessTree::StatusKb(pid_t pid, std::string_view field) {
    std::istringstream status(ReadFile("/proc/" + std::to_string(pid) + "/status"));
    std::string line;
    std::string key = std::string(field) + ":";
    while (std::getline(status, line)) {
        if (line.compare(0, key.size(), key) != 0) continue;
        std::istringstream value(line.substr(key.size()));
        long kb = 0;
        if (value >> kb) return kb;
        return std::nullopt;
    }
    return std::nullopt;
}

}  // namespace KovoTerm
