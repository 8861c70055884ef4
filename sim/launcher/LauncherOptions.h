#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace KovoSim {

// The launcher's command line. Bad input is a LauncherOptions::Error with a message for the operator.
struct LauncherOptions {
    enum class Command { Run, Exec, Get, Set, Paths, Help, InHostGet, InHostSet };

    class Error : public std::runtime_error {
      public:
        using std::runtime_error::runtime_error;
    };

    static constexpr const char* kDefaultDir = "sim-host";
    static constexpr const char* kDefaultScenario = "default";

    Command command = Command::Run;
    std::string dir = kDefaultDir;
    std::string scenario = kDefaultScenario;
    bool scenarioGiven = false;
    bool once = false;
    std::string kovo;               // empty: the console built beside the launcher
    std::vector<std::string> args;  // console arguments (run) or the command line (exec)
    std::string pointer;            // get/set
    std::string value;              // set: JSON text

    // argv without the program name.
    static LauncherOptions Parse(const std::vector<std::string>& argv);
    static std::string Usage(const std::string& program);
};

}  // namespace KovoSim
