#include "HostSteps.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "ShellSteps.h"

namespace KovoE2e {

bool Launcher(const std::vector<std::string>& arguments) {
    std::string command = Quote(KOVO_E2E_LAUNCHER);
    for (const auto& argument : arguments) command += " " + Quote(argument);
    const int status = std::system((command + " </dev/null >/dev/null").c_str());
    return status != -1 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
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
    return Output(Quote(KOVO_E2E_LAUNCHER) + " get " + Quote(host.HostDir()) + " " + Quote(pointer));
}

std::string HostRecords(const HostConsole& host, const std::string& name) {
    return ReadFile(host.HostDir() + "/upper/var/log/kovo-sim/" + name);
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
    return WaitFor([&] { return Lines(HostRecords(host, name), part).size() >= count; }, deadline, 20ms);
}

bool WaitForSyslogCount(HostConsole& host, const std::vector<std::string>& parts, size_t count,
                        std::chrono::milliseconds deadline) {
    return WaitFor([&] { return host.SyslogLines(parts).size() >= count; }, deadline, 20ms);
}

size_t CommandCount(const HostConsole& host, const std::vector<std::string>& parts) {
    const auto holdsAll = [&](const std::string& line) {
        return std::ranges::all_of(parts,
                                   [&](const auto& part) { return line.find(part) != std::string::npos; });
    };
    return static_cast<size_t>(std::ranges::count_if(Lines(HostRecords(host, "commands.log"), ""), holdsAll));
}

std::vector<std::string> FileLines(const std::string& path) {
    return Lines(ReadFile(path), "");
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

bool Settled(HostConsole& host, const std::string& text, std::chrono::milliseconds quiet) {
    return host.Term().WaitForText(text) && host.Term().WaitForQuiet(quiet);
}

bool PressFor(HostConsole& host, Key key, const std::string& text, std::chrono::milliseconds quiet) {
    host.Term().Press(key);
    return Settled(host, text, quiet);
}

bool Closed(HostConsole& host, const std::string& text, std::chrono::milliseconds quiet) {
    return host.Term().WaitForTextGone(text) && host.Term().WaitForQuiet(quiet);
}

bool OpenLogin(HostConsole& host, Key key) {
    auto& term = host.Term();
    // A screen still repainting (after a dialog closed, say) would discard the key.
    if (!term.WaitForQuiet(300ms) || !PressFor(host, key, kLoginTitle)) return false;
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
    if (!Settled(host, text)) return false;
    term.Press(Key::Enter);
    // The dialog behind discards keys typed while it comes back: wait until it has settled.
    return Closed(host, text);
}

bool OpenShutdown(HostConsole& host) {
    if (!OpenLogin(host, Key::F12)) return false;
    Submit(host, "", kRootPassword);
    return Settled(host, "Forcefully terminate running VMs", 200ms);
}

bool OpenFromMenu(HostConsole& host, int downs, const std::string& title) {
    auto& term = host.Term();
    for (int i = 0; i < downs; ++i) {
        term.Press(Key::Down);
        if (!term.WaitForQuiet(60ms)) return false;
    }
    return PressFor(host, Key::Enter, title, 200ms);
}

bool OpenTroubleshooting(HostConsole& host) {
    return LogIn(host, "", kRootPassword) && OpenFromMenu(host, kTroubleshootingDowns, kTroubleshootingTitle);
}

}  // namespace KovoE2e
