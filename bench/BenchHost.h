#pragma once

// What the console benchmarks share: a simulated host booted with the real console in the harness's
// terminal, the operator's login, and the moment a screen settled.

#include <signal.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include "Settled.h"
#include "TermSession.h"

namespace KovoBench {

using namespace std::chrono_literals;

inline constexpr const char* kLastOfFirstScreen = "<F12> Shut Down/Restart";
inline constexpr const char* kRootPassword = "Kovo-Demo1";

inline KovoTerm::SpawnOptions ConsoleOnHost(const std::string& hostDir) {
    KovoTerm::SpawnOptions options;
    options.argv = {KOVO_BENCH_LAUNCHER, "run", "--dir", hostDir, "--kovo", KOVO_BENCH_CONSOLE, "--once"};
    options.environment = {{"PATH", "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"}};
    return options;
}

inline std::string FreshHost(const std::string& name) {
    const std::string dir = std::string(KOVO_BENCH_SCRATCH) + "/" + name;
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    return dir;
}

// Ends the console politely and waits for the host to stop, outside the timed region.
inline void Stop(KovoTerm::TermSession& session, pid_t console) {
    if (console > 0) session.Signal(SIGTERM, console);
    session.WaitExit();
}

// From the welcome screen through the login dialog as root to the settled main menu. Each screen discards
// keys typed while it is being drawn, hence the quiet waits.
inline bool LogInToMenu(KovoTerm::TermSession& session) {
    using KovoTerm::Key;
    if (!session.WaitForText(kLastOfFirstScreen) || !session.WaitForQuiet(300ms)) return false;
    session.Press(Key::F2);
    if (!session.WaitForText("Authentication Required") || !session.WaitForQuiet(300ms)) return false;
    session.Press(Key::Down);
    if (!session.WaitForQuiet(200ms)) return false;
    session.Type(kRootPassword);
    session.Press(Key::Enter);
    return session.WaitForText("System Customization") && session.WaitForQuiet(300ms);
}

}  // namespace KovoBench
