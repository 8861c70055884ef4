#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace KovoTerm {

// Read-only views of /proc used to find and measure processes a spawned program started.
class ProcessTree {
  public:
    // Every process below `root` (children, grandchildren, ...), in no particular order.
    static std::vector<pid_t> Descendants(pid_t root);
    // The first process below `root` whose command name (comm) is `name`; 0 when none.
    static pid_t FindDescendant(pid_t root, std::string_view name);
    static std::optional<std::string> CommandName(pid_t pid);
    // Its arguments, each ended by a NUL; empty once the process has gone (or for a kernel thread).
    static std::string CommandLine(pid_t pid);
    // Every process on the machine, whoever started it.
    static std::vector<pid_t> All();
    static std::optional<pid_t> ParentOf(pid_t pid);
    // A "Name:   value kB" line of /proc/<pid>/status, e.g. "VmHWM" (peak resident set); in kB.
    static std::optional<long> StatusKb(pid_t pid, std::string_view field);
    // Processor time used so far (user and system), to the clock tick; nullopt once it is gone.
    static std::optional<std::chrono::milliseconds> CpuTime(pid_t pid);
};

}  // namespace KovoTerm
