#pragma once

// The real console on the lab's host, driven from outside through a terminal as an operator would:
// started there, logged in, and the network window's dialogs filled in. Shared by the lab's console tests
// and its benchmark, which define KOVO_NM_LAB, KOVO_LAB_DIR, KOVO_LAB_CONSOLE, KOVO_HOST_TOOL and
// KOVO_PAM_SERVICE.

#include <chrono>
#include <string>
#include <vector>

#include "LabSteps.h"
#include "ShellSteps.h"
#include "WindowSteps.h"

namespace KovoLab {

using namespace std::chrono_literals;
using KovoTerm::Key;
using KovoTerm::TermSession;
using KovoTerm::VirtualTerminal;

inline constexpr const char* kPassword = "Lab-Pass1";
using KovoE2e::kKeepQuestion;
using KovoE2e::WindowSteps;

// A shell command inside the lab's host; its output without the last line end.
inline std::string Lab(const std::string& script) {
    return KovoE2e::Output(std::string(KOVO_NM_LAB) + " exec " + KovoE2e::Quote(KOVO_LAB_DIR) + " -- sh -c " +
                           KovoE2e::Quote(script) + " 2>&1");
}

inline std::string KernelIpv4(const std::string& interface) {
    return Lab("ip -4 -o addr show dev " + interface + " 2>/dev/null | awk '{print $4}' | paste -sd' '");
}

// What a console needs on the lab's host, as its package would put it there: the account and the PAM
// service in the lab's /etc, the host tool in the lab's /usr/libexec.
inline void InstallConsole() {
    Lab("cp " + KovoE2e::Quote(KOVO_PAM_SERVICE) + " /etc/pam.d/kovo && echo root:" + kPassword +
        " | chpasswd");
    Lab("mkdir -p /usr/libexec/kovo && cp " + KovoE2e::Quote(KOVO_HOST_TOOL) +
        " /usr/libexec/kovo/kovo-host");
}

// A console on the lab host's terminal. In the sanitizer build its reports go to `sanitizerLog`, not over
// its screen.
inline KovoTerm::SpawnOptions ConsoleOnLab(const std::string& sanitizerLog) {
    KovoTerm::SpawnOptions options;
    options.argv = {KOVO_NM_LAB, "exec", KOVO_LAB_DIR, "--", KOVO_LAB_CONSOLE};
    options.environment = {{"ASAN_OPTIONS", "log_path=" + sanitizerLog},
                           {"UBSAN_OPTIONS", "print_stacktrace=1:log_path=" + sanitizerLog}};
    return options;
}

}  // namespace KovoLab
