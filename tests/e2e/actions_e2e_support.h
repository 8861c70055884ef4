#pragma once

// Steps shared by the end-to-end tests of the system actions: a default host with its console restarted
// by the host, the operator's way to each screen, and the host's records.

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <string>

#include <nlohmann/json.hpp>

#include "login_e2e_support.h"

namespace KovoActionsE2e {

using namespace std::chrono_literals;
using namespace KovoLoginE2e;

inline constexpr const char* kDialogTitle = "Shut Down/Restart";
inline constexpr const char* kTroubleshootingTitle = "Troubleshooting Mode Options";

// A host the console comes back on after it ends or the host restarts.
inline ConsoleStart Restarting(ConsoleStart start = ConsoleStart{}) {
    start.once = false;
    return start;
}

// The host's store as its disk holds it (meaningful once the host has stopped, or for settled values).
inline nlohmann::json StoreOnDisk(const HostConsole& host) {
    std::ifstream in(host.HostDir() + "/upper/etc/halvor/host.json");
    return nlohmann::json::parse(in, nullptr, false);
}

// A value of the running host's store, read through the launcher from inside the host.
inline std::string StoreValue(const HostConsole& host, const std::string& pointer) {
    const std::string command = std::string(KOVO_E2E_LAUNCHER) + " get " + host.HostDir() + " " + pointer;
    FILE* out = popen(command.c_str(), "r");
    if (!out) return {};
    std::string text;
    char buffer[512];
    while (fgets(buffer, sizeof buffer, out)) text += buffer;
    pclose(out);
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

// Host commands run so far whose recorded line holds every one of `parts`.
inline size_t CommandCount(const HostConsole& host, const std::vector<std::string>& parts) {
    size_t count = 0;
    std::istringstream in(HostRecords(host, "commands.log"));
    for (std::string line; std::getline(in, line);) {
        bool all = true;
        for (const auto& part : parts) all = all && line.find(part) != std::string::npos;
        count += all ? 1 : 0;
    }
    return count;
}

// Replaces a host program with a script of its own (inside the host, so only the host's disk changes).
inline bool ReplaceHostProgram(HostConsole& host, const std::string& path, const std::string& script) {
    const std::string body = "rm -f " + path + " && printf '%s\\n' '#!/bin/sh' '" + script + "' > " + path +
                             " && chmod 755 " + path;
    auto session = host.ExecInHost({"/bin/sh", "-c", body}, ConsoleStart{});
    const auto status = session->WaitExit();
    return status && status->IsExitCode(0);
}

// F12, the login dialog as root, and the shut-down dialog.
inline bool OpenShutdown(HostConsole& host) {
    auto& term = host.Term();
    term.Press(Key::F12);
    if (!term.WaitForText(kLoginTitle) || !term.WaitForQuiet(200ms)) return false;
    if (term.Screen().Contains("Configured Keyboard")) term.Press(Key::Down);
    Submit(host, "", kRootPassword);
    return term.WaitForText("Forcefully terminate running VMs") && term.WaitForQuiet(200ms);
}

// From the menu's first entry, `downs` presses of Down and Enter; waits for `title`.
inline bool OpenFromMenu(HostConsole& host, int downs, const std::string& title) {
    auto& term = host.Term();
    for (int i = 0; i < downs; ++i) {
        term.Press(Key::Down);
        if (!term.WaitForQuiet(60ms)) return false;
    }
    term.Press(Key::Enter);
    return term.WaitForText(title) && term.WaitForQuiet(200ms);
}

// Menu entries of the default host over a terminal without the keyboard entry, counted in presses of
// Down from Configure Password.
inline constexpr int kLockdownDowns = 1;
inline constexpr int kTroubleshootingDowns = 6;
inline constexpr int kResetDowns = 9;

// Logs in as root and opens the troubleshooting window.
inline bool OpenTroubleshooting(HostConsole& host) {
    return LogIn(host, "", kRootPassword) && OpenFromMenu(host, kTroubleshootingDowns, kTroubleshootingTitle);
}

}  // namespace KovoActionsE2e
