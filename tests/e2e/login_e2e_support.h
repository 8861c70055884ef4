#pragma once

// Shared steps of the login, password and smart-card end-to-end tests: hosts made from a scenario, the
// login dialog driven like an operator, and the host's records (syslog, events, audit, commands).

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "HostConsole.h"

extern char** environ;

namespace KovoLoginE2e {

using namespace std::chrono_literals;
using KovoE2e::ConsoleStart;
using KovoE2e::HostConsole;
using KovoTerm::Key;
using KovoTerm::VirtualTerminal;

// The accounts of the scenarios and their documented passwords.
inline constexpr const char* kRootPassword = "Kovo-Demo1";
inline constexpr const char* kViewerPassword = "Viewer-Pass1";
inline constexpr const char* kExpiredPassword = "Expired-Pass1";

inline constexpr const char* kLoginTitle = "Authentication Required";
inline constexpr const char* kWelcomeKeys = "<F12> Shut Down/Restart";
inline constexpr const char* kMenuTitle = "System Customization";

using StoreChanges = std::vector<std::pair<std::string, std::string>>;

// Runs the launcher to completion with its output discarded; true when it exits 0.
inline bool Launcher(const std::vector<std::string>& arguments) {
    std::vector<std::string> all{KOVO_E2E_LAUNCHER};
    all.insert(all.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (auto& a : all) argv.push_back(a.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t pid = -1;
    const int error = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) return false;
    int status = 0;
    while (waitpid(pid, &status, 0) < 0)
        if (errno != EINTR) return false;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// A host made from `scenario` with `changes` made to its store (JSON pointer, JSON value), its console
// started and showing the welcome screen.
inline std::unique_ptr<HostConsole> MakeHost(const std::string& scenario, const StoreChanges& changes = {},
                                             const ConsoleStart& start = ConsoleStart{}) {
    const std::string dir = KovoE2e::FreshHostDir();
    EXPECT_TRUE(Launcher({"run", "--dir", dir, "--scenario", scenario, "--once", "--kovo", "/bin/true"}));
    for (const auto& [pointer, value] : changes)
        EXPECT_TRUE(Launcher({"set", dir, pointer, value})) << pointer << " = " << value;
    auto host = std::make_unique<HostConsole>(dir, start);
    EXPECT_TRUE(host->WaitForFirstPaint()) << host->Term().Dump();
    EXPECT_TRUE(host->Term().WaitForText(kWelcomeKeys)) << host->Term().Dump();
    return host;
}

// Changes the running host's store from outside, as its management services would.
inline bool SetStore(HostConsole& host, const std::string& pointer, const std::string& value) {
    return Launcher({"set", host.HostDir(), pointer, value});
}

// A record file the host writes under /var/log/kovo-sim ("events.log", "audit.log", "commands.log").
inline std::string HostRecords(const HostConsole& host, const std::string& name) {
    std::ifstream in(host.HostDir() + "/upper/var/log/kovo-sim/" + name);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

inline std::vector<std::string> Lines(const std::string& text, const std::string& part) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        if (line.find(part) != std::string::npos) lines.push_back(line);
    return lines;
}

// Waits until the record file holds at least `count` lines containing `part`.
inline bool WaitForRecords(const HostConsole& host, const std::string& name, const std::string& part,
                           size_t count = 1, std::chrono::milliseconds deadline = 10000ms) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (Lines(HostRecords(host, name), part).size() < count) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(20ms);
    }
    return true;
}

// Waits until the syslog holds at least `count` lines containing every one of `parts`.
inline bool WaitForSyslogCount(HostConsole& host, const std::vector<std::string>& parts, size_t count,
                               std::chrono::milliseconds deadline = 10000ms) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (host.SyslogLines(parts).size() < count) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(20ms);
    }
    return true;
}

// F2 and the login dialog, ready for typing with the name field focused.
// Every screen discards keys typed while it is being shown, so each step waits for the screen to settle.
inline bool OpenLogin(HostConsole& host) {
    auto& term = host.Term();
    term.Press(Key::F2);
    if (!term.WaitForText(kLoginTitle)) return false;
    if (!term.WaitForQuiet(300ms)) return false;
    // With the keyboard line, focus starts there; the name field is one down.
    if (term.Screen().Contains("Configured Keyboard")) term.Press(Key::Down);
    return true;
}

// Types a name (empty keeps the prefilled one) and a secret into the open dialog and submits them.
inline void Submit(HostConsole& host, const std::string& user, const std::string& secret) {
    auto& term = host.Term();
    if (!user.empty()) term.Type(user);
    term.Press(Key::Enter);
    term.Type(secret);
    term.Press(Key::Enter);
}

inline bool MenuShown(const VirtualTerminal& screen) {
    return screen.Contains(kMenuTitle) && !screen.Contains(kLoginTitle);
}

// Logs in from the welcome screen and waits for the menu.
inline bool LogIn(HostConsole& host, const std::string& user, const std::string& secret) {
    if (!OpenLogin(host)) return false;
    Submit(host, user, secret);
    return host.Term().WaitFor(MenuShown) && host.Term().WaitForQuiet(300ms);
}

// Closes a message dialog showing `text` with Enter and waits for it to go.
inline bool Acknowledge(HostConsole& host, const std::string& text) {
    auto& term = host.Term();
    if (!term.WaitForText(text)) return false;
    if (!term.WaitForQuiet(300ms)) return false;
    term.Press(Key::Enter);
    // The dialog behind discards keys typed while it comes back: wait until it has settled.
    return term.WaitForTextGone(text) && term.WaitForQuiet(300ms);
}

// No secret anywhere an operator or an administrator could read it.
inline void ExpectSecretNowhere(HostConsole& host, const std::string& secret) {
    EXPECT_EQ(host.Syslog().find(secret), std::string::npos) << "in the system log";
    EXPECT_EQ(HostRecords(host, "events.log").find(secret), std::string::npos) << "in the host events";
    EXPECT_EQ(HostRecords(host, "audit.log").find(secret), std::string::npos) << "in the audit records";
    EXPECT_EQ(HostRecords(host, "commands.log").find(secret), std::string::npos) << "in the host commands";
    EXPECT_EQ(host.Term().Output().find(secret), std::string::npos) << "written to the terminal";
}

}  // namespace KovoLoginE2e
