#pragma once

// The real console on the lab's host, driven from outside through a terminal as an operator would:
// started there, logged in, and the network window's dialogs filled in. Shared by the lab's console tests
// and its benchmark, which define KOVO_NM_LAB, KOVO_LAB_DIR, KOVO_LAB_CONSOLE, KOVO_HOST_TOOL and
// KOVO_PAM_SERVICE.

#include <chrono>
#include <string>
#include <vector>

#include "ConsoleDriver.h"
#include "LabSteps.h"
#include "NetworkSteps.h"
#include "ShellSteps.h"
#include "TermSession.h"

namespace KovoLab {

using namespace std::chrono_literals;
using KovoTerm::Key;
using KovoTerm::TermSession;
using KovoTerm::VirtualTerminal;

inline constexpr const char* kPassword = "Lab-Pass1";
inline constexpr const char* kKeepQuestion = "Keep this network configuration?";

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

// The steps of the network window on a console of the lab's host.
class WindowSteps {
  public:
    explicit WindowSteps(TermSession& term) : term_(&term) {}

    // Logged in, with the network window open.
    bool OpenNetworkWindow() {
        TermSession& term = *term_;
        if (!KovoE2e::ConsoleDriver(*term_).LogIn(kPassword) ||
            !KovoE2e::ConsoleDriver(*term_).Select("Configure Management Network"))
            return false;
        term.Press(Key::Enter);
        return term.WaitForText(KovoE2e::kWindowMark, 30s) && term.WaitForQuiet(300ms, 30s);
    }
    // Presses `key` `times` times, letting the screen settle after each.
    void Step(Key key, int times = 1) {
        for (int i = 0; i < times; ++i) {
            term_->Press(key);
            term_->WaitForQuiet(100ms, 10s);
        }
    }
    // From the selected entry: the entry `downs` below it opened, showing `mark`.
    bool OpenEntry(int downs, const std::string& mark) {
        Step(Key::Down, downs);
        term_->Press(Key::Enter);
        return term_->WaitForText(mark, 30s) && term_->WaitForQuiet(300ms, 30s);
    }
    // Types into the focused field and waits for it to show.
    bool TypeShown(const std::string& text) {
        term_->Type(text);
        return term_->WaitForText(text, 10s) && term_->WaitForQuiet(100ms, 10s);
    }
    // In a dialog of choices and fields, from the choice it opened on: `moves` presses of `direction` to
    // another choice, taken, then the fields below it typed over in turn ("" empties one).
    bool Choose(int moves, Key direction, const std::vector<std::string>& fields = {}) {
        Step(direction, moves);
        term_->Type(" ");
        term_->WaitForQuiet(100ms, 10s);
        for (const std::string& value : fields) {
            Step(Key::Down);
            if (value.empty())
                Step(Key::Backspace);  // the whole field, as typing would replace it whole
            else if (!TypeShown(value))
                return false;
        }
        return true;
    }
    // Enter on the dialog showing `mark`: back in the window, on the same entry.
    bool Accept(const std::string& mark) {
        term_->Press(Key::Enter);
        return term_->WaitForTextGone(mark, 30s) && term_->WaitForQuiet(300ms, 30s);
    }
    // The window left with Y to its question.
    bool Leave() {
        TermSession& term = *term_;
        term.Press(Key::Escape);
        if (!term.WaitForText(KovoE2e::kConfirmTitle, 30s) || !term.WaitForQuiet(300ms, 30s)) return false;
        confirmation = term.Dump();
        term.Type("y");
        return true;
    }
    bool AcceptAndApply(const std::string& mark) { return Accept(mark) && Leave(); }
    // IPv4 set to a static address in the window, and the window left with Y.
    bool ApplyStatic(const std::string& address) {
        return OpenNetworkWindow() && OpenEntry(KovoE2e::kIpv4Downs, KovoE2e::kStaticChoice) &&
               Choose(1, Key::Down, {address, "255.255.255.0", "192.168.88.1"}) &&
               AcceptAndApply(KovoE2e::kStaticChoice);
    }
    // The question answered Y once the change's tests have run; true when the window has gone with it.
    bool KeepWhenAsked() {
        TermSession& term = *term_;
        // The last of the tests: the host's name resolved (or not).
        const auto testsRan = [](const VirtualTerminal& screen) {
            int row = 0, column = 0;
            if (!screen.Find("Resolving hostname (", row, column)) return false;
            const std::string line = screen.RowText(row);
            return line.find("). OK.") != std::string::npos || line.find("). Failed.") != std::string::npos;
        };
        if (!term.WaitForText(kKeepQuestion, 90s) || !term.WaitFor(testsRan, 60s)) return false;
        kept = term.Dump();
        term.Type("y");
        return term.WaitForTextGone(kKeepQuestion, 30s) && term.WaitForTextGone(KovoE2e::kWindowMark, 30s);
    }

    std::string confirmation;  // the screen that asked to apply the change
    std::string kept;          // the screen that asked to keep it

  private:
    TermSession* term_;
};

}  // namespace KovoLab
