#pragma once

#include <signal.h>

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "HostLayout.h"
#include "LauncherOptions.h"
#include "Supervisor.h"

namespace KovoSim {

// The kovo-sim program: boots a simulated host around the console, or acts on a host from outside.
class Launcher {
  public:
    static int Main(int argc, char** argv);

  private:
    static int Dispatch(const LauncherOptions& options, const std::string& program);
    static int RunConsole(const LauncherOptions& options);
    static int Exec(const HostLayout& layout, const std::vector<std::string>& command);
    static int Paths(const HostLayout& layout);
    static int InHostGet(const std::string& pointer);
    static int InHostSet(const std::string& pointer, const std::string& value);

    // Boots a host in new namespaces with a Supervisor as its PID 1 and waits for it.
    static int Boot(const HostLayout& layout, Supervisor::Config config);
    // The scenario of the host in DIR: the one it was made from, or the named one for a new host
    // (recorded in DIR/state/scenario.json). Throws std::invalid_argument for an unusable scenario.
    static nlohmann::json HostScenario(const HostLayout& layout, const LauncherOptions& options);
    static nlohmann::json LoadScenario(const std::string& nameOrFile);
    // PID 1 of a new host: mounts, makes the host when new, and supervises it. Returns the exit status.
    static int RunInit(const HostLayout& layout, Supervisor::Config config);
    // Waits for a child, passing termination on to it; returns its wait status.
    static int ForwardUntilEnd(pid_t child, const sigset_t& signals);
    // Runs a command inside the running host whose PID 1 is init.
    static int Join(int init, const std::vector<std::string>& command);

    static std::string SelfPath();
    static std::string DefaultConsole();
};

}  // namespace KovoSim
