#pragma once

#include <string>
#include <vector>

namespace KovoSim::Host {

// The host's record of every host program run: one JSON object a line in
// "/var/log/kovo-sim/commands.log": {"time", "program", "path", "argv", "uid", "user"}. "program" is the
// host program it is ("powerOffVms"), "path" where it was run from ("/sbin/powerOffVms").
class CommandLog {
  public:
    static constexpr const char* kPath = "/var/log/kovo-sim/commands.log";

    static void Record(const std::string& program, const std::string& programPath,
                       const std::vector<std::string>& argv, const std::string& logPath = kPath);
};

}  // namespace KovoSim::Host
