#pragma once

#include <string>
#include <vector>

namespace KovoSim::Host {

// The host's record of every host program run: one JSON object a line in
// "/var/log/kovo-sim/commands.log": {"time", "program", "argv", "uid", "user"}.
class CommandLog {
  public:
    static constexpr const char* kPath = "/var/log/kovo-sim/commands.log";

    static void Record(const std::string& program, const std::vector<std::string>& argv,
                       const std::string& path = kPath);
};

}  // namespace KovoSim::Host
