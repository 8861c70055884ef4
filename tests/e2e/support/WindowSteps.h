#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "ConsoleDriver.h"
#include "NetworkSteps.h"
#include "TermSession.h"

namespace KovoE2e {

using namespace std::chrono_literals;
using KovoTerm::Key;
using KovoTerm::TermSession;
using KovoTerm::VirtualTerminal;

inline constexpr const char* kKeepQuestion = "Keep this network configuration?";

// The network window's steps on a console of a real host, from the welcome screen on: each waits for the
// screen it leads to, with waits generous enough for an emulated host.
class WindowSteps {
  public:
    explicit WindowSteps(TermSession& term) : term_(&term) {}

    // Logged in, with the network window open.
    bool OpenNetworkWindow(const std::string& password) {
        TermSession& term = *term_;
        if (!ConsoleDriver(*term_).LogIn(password) ||
            !ConsoleDriver(*term_).Select("Configure Management Network"))
            return false;
        term.Press(Key::Enter);
        return term.WaitForText(kWindowMark, 30s) && term.WaitForQuiet(300ms, 30s);
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
        if (!term.WaitForText(kConfirmTitle, 30s) || !term.WaitForQuiet(300ms, 30s)) return false;
        confirmation = term.Dump();
        term.Type("y");
        return true;
    }
    bool AcceptAndApply(const std::string& mark) { return Accept(mark) && Leave(); }
    // IPv4 set to a static address in the window, and the window left with Y.
    bool ApplyStatic(const std::string& password, const std::string& address, const std::string& mask,
                     const std::string& gateway) {
        return OpenNetworkWindow(password) && OpenEntry(kIpv4Downs, kStaticChoice) &&
               Choose(1, Key::Down, {address, mask, gateway}) && AcceptAndApply(kStaticChoice);
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
        return term.WaitForTextGone(kKeepQuestion, 30s) && term.WaitForTextGone(kWindowMark, 30s);
    }

    std::string confirmation;  // the screen that asked to apply the change
    std::string kept;          // the screen that asked to keep it

  private:
    TermSession* term_;
};

}  // namespace KovoE2e
