#include "HostSteps.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <thread>

extern char** environ;

namespace KovoE2e {

namespace {

// Polls `done` every 20 ms until it holds or `deadline` passes.
template <typename Done>
bool PollUntil(Done done, std::chrono::milliseconds deadline) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(20ms);
    }
    return true;
}

}  // namespace

bool Launcher(const std::vector<std::string>& arguments) {
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

std::unique_ptr<HostConsole> MakeHost(const std::string& scenario, const StoreChanges& changes,
                                      const ConsoleStart& start) {
    const std::string dir = FreshHostDir();
    // A first boot with a console that ends at once makes the host's disk from the scenario.
    EXPECT_TRUE(Launcher({"run", "--dir", dir, "--scenario", scenario, "--once", "--kovo", "/bin/true"}));
    for (const auto& [pointer, value] : changes)
        EXPECT_TRUE(Launcher({"set", dir, pointer, value})) << pointer << " = " << value;
    auto host = std::make_unique<HostConsole>(dir, start);
    EXPECT_TRUE(host->WaitForFirstPaint()) << host->Term().Dump();
    EXPECT_TRUE(host->Term().WaitForText(kWelcomeKeys)) << host->Term().Dump();
    return host;
}

ConsoleStart FastClock(int speedUp) {
    ConsoleStart start;
    start.consoleOnlyEnvironment = {{"LD_PRELOAD", KOVO_E2E_FAKETIME},
                                    {"FAKETIME", "+0 x" + std::to_string(speedUp)}};
    return start;
}

ConsoleStart Restarting(ConsoleStart start) {
    start.once = false;
    return start;
}

bool SetStore(HostConsole& host, const std::string& pointer, const std::string& value) {
    return Launcher({"set", host.HostDir(), pointer, value});
}

nlohmann::json StoreOnDisk(const HostConsole& host) {
    std::ifstream in(host.HostDir() + "/upper/etc/halvor/host.json");
    return nlohmann::json::parse(in, nullptr, false);
}

std::string StoreValue(const HostConsole& host, const std::string& pointer) {
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

std::string HostRecords(const HostConsole& host, const std::string& name) {
    std::ifstream in(host.HostDir() + "/upper/var/log/kovo-sim/" + name);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::vector<std::string> Lines(const std::string& text, const std::string& part) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        if (line.find(part) != std::string::npos) lines.push_back(line);
    return lines;
}

bool WaitForRecords(const HostConsole& host, const std::string& name, const std::string& part, size_t count,
                    std::chrono::milliseconds deadline) {
    return PollUntil([&] { return Lines(HostRecords(host, name), part).size() >= count; }, deadline);
}

bool WaitForSyslogCount(HostConsole& host, const std::vector<std::string>& parts, size_t count,
                        std::chrono::milliseconds deadline) {
    return PollUntil([&] { return host.SyslogLines(parts).size() >= count; }, deadline);
}

size_t CommandCount(const HostConsole& host, const std::vector<std::string>& parts) {
    size_t count = 0;
    std::istringstream in(HostRecords(host, "commands.log"));
    for (std::string line; std::getline(in, line);) {
        bool all = true;
        for (const auto& part : parts) all = all && line.find(part) != std::string::npos;
        count += all ? 1 : 0;
    }
    return count;
}

std::vector<std::string> FileLines(const std::string& path) {
    std::ifstream in(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

std::string StartHeldReset(HostConsole& host) {
    if (!ReplaceHostProgram(host, "/usr/sbin/firmwareConfig.py",
                            "echo started > /var/log/went; while [ ! -e /run/go-on ]; do sleep 0.02; done; "
                            "echo finished >> /var/log/went"))
        return "";
    if (!LogIn(host, "", kRootPassword) ||
        !OpenFromMenu(host, kResetDowns, "Reset System Configuration now?"))
        return "";
    host.Term().Press(Key::F11);
    const std::string record = host.HostDir() + "/upper/var/log/went";
    return host.Term().WaitUntil([&] { return FileLines(record).size() == 1; }) ? record : "";
}

bool ReplaceHostProgram(HostConsole& host, const std::string& path, const std::string& script) {
    const std::string body = "rm -f " + path + " && printf '%s\\n' '#!/bin/sh' '" + script + "' > " + path +
                             " && chmod 755 " + path;
    auto session = host.ExecInHost({"/bin/sh", "-c", body}, ConsoleStart{});
    const auto status = session->WaitExit();
    return status && status->IsExitCode(0);
}

void ExpectSecretNowhere(HostConsole& host, const std::string& secret) {
    EXPECT_EQ(host.Syslog().find(secret), std::string::npos) << "in the system log";
    EXPECT_EQ(HostRecords(host, "events.log").find(secret), std::string::npos) << "in the host events";
    EXPECT_EQ(HostRecords(host, "audit.log").find(secret), std::string::npos) << "in the audit records";
    EXPECT_EQ(HostRecords(host, "commands.log").find(secret), std::string::npos) << "in the host commands";
    EXPECT_EQ(host.Term().Output().find(secret), std::string::npos) << "written to the terminal";
}

bool OpenLogin(HostConsole& host) {
    auto& term = host.Term();
    // A screen still repainting (after a dialog closed, say) would discard the key.
    if (!term.WaitForQuiet(300ms)) return false;
    term.Press(Key::F2);
    if (!term.WaitForText(kLoginTitle)) return false;
    if (!term.WaitForQuiet(300ms)) return false;
    // With the keyboard line, focus starts there; the name field is one down.
    if (term.Screen().Contains("Configured Keyboard")) term.Press(Key::Down);
    return true;
}

void Submit(HostConsole& host, const std::string& user, const std::string& secret) {
    auto& term = host.Term();
    if (!user.empty()) term.Type(user);
    term.Press(Key::Enter);
    term.Type(secret);
    term.Press(Key::Enter);
}

bool MenuShown(const VirtualTerminal& screen) {
    return screen.Contains(kMenuTitle) && !screen.Contains(kLoginTitle);
}

bool LogIn(HostConsole& host, const std::string& user, const std::string& secret) {
    if (!OpenLogin(host)) return false;
    Submit(host, user, secret);
    return host.Term().WaitFor(MenuShown) && host.Term().WaitForQuiet(300ms);
}

bool Acknowledge(HostConsole& host, const std::string& text) {
    auto& term = host.Term();
    if (!term.WaitForText(text)) return false;
    if (!term.WaitForQuiet(300ms)) return false;
    term.Press(Key::Enter);
    // The dialog behind discards keys typed while it comes back: wait until it has settled.
    return term.WaitForTextGone(text) && term.WaitForQuiet(300ms);
}

bool OpenShutdown(HostConsole& host) {
    auto& term = host.Term();
    term.Press(Key::F12);
    if (!term.WaitForText(kLoginTitle) || !term.WaitForQuiet(200ms)) return false;
    if (term.Screen().Contains("Configured Keyboard")) term.Press(Key::Down);
    Submit(host, "", kRootPassword);
    return term.WaitForText("Forcefully terminate running VMs") && term.WaitForQuiet(200ms);
}

bool OpenFromMenu(HostConsole& host, int downs, const std::string& title) {
    auto& term = host.Term();
    for (int i = 0; i < downs; ++i) {
        term.Press(Key::Down);
        if (!term.WaitForQuiet(60ms)) return false;
    }
    term.Press(Key::Enter);
    return term.WaitForText(title) && term.WaitForQuiet(200ms);
}

bool OpenTroubleshooting(HostConsole& host) {
    return LogIn(host, "", kRootPassword) && OpenFromMenu(host, kTroubleshootingDowns, kTroubleshootingTitle);
}

}  // namespace KovoE2e
