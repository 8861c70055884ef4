#pragma once

// An operator's way through a console on a real host (a guest's serial line, the network lab), where
// nothing can be read from the inside: back to the welcome screen, the login, a menu entry by its title.
// Waits are generous, for emulated and busy hosts.

#include <algorithm>
#include <chrono>
#include <string>

#include "HostSteps.h"
#include "TermSession.h"

namespace KovoE2e {

class ConsoleDriver {
  public:
    explicit ConsoleDriver(KovoTerm::TermSession& term) : _term(term) {}

    static bool MenuShown(const VirtualTerminal& s) {
        return s.Contains(kMenuTitle) && !s.Contains(kLoginTitle);
    }

    // At the welcome screen, settled: a screen still drawing discards keys typed ahead.
    bool AtWelcome() {
        for (int i = 0; i < 5 && !_term.Screen().Contains(kWelcomeKeys); ++i) {
            _term.Press(Key::Escape);
            _term.Pause(600ms);  // longer than the console's Esc delay
            _term.WaitForQuiet(500ms, 20s);
        }
        return _term.WaitForText(kWelcomeKeys, 30s) && _term.WaitForQuiet(500ms, 30s);
    }
    bool OpenLogin(Key key = Key::F2) {
        if (!AtWelcome()) return false;
        _term.Press(key);
        if (!_term.WaitForText(kLoginTitle, 30s) || !_term.WaitForQuiet(500ms, 30s)) return false;
        if (_term.Screen().Contains("Configured Keyboard")) _term.Press(Key::Down);
        return true;
    }
    // The name field holds root: Enter passes it, then the secret.
    void Submit(const std::string& secret) {
        _term.Press(Key::Enter);
        _term.Type(secret);
        _term.Press(Key::Enter);
    }
    bool LogIn(const std::string& secret) {
        if (!OpenLogin()) return false;
        Submit(secret);
        return _term.WaitFor(MenuShown, 60s) && _term.WaitForQuiet(500ms, 30s);
    }
    // Waits for `text`, presses Enter, and waits for it to go.
    bool Acknowledge(const std::string& text) {
        if (!_term.WaitForText(text, 60s) || !_term.WaitForQuiet(500ms, 30s)) return false;
        _term.Press(Key::Enter);
        return _term.WaitForTextGone(text, 30s) && _term.WaitForQuiet(500ms, 30s);
    }
    // Moves a menu's selection to `entry`, which the right pane's title then starts with: down, and up
    // once the list ends below.
    bool Select(const std::string& entry) {
        static constexpr const char* kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
        Key direction = Key::Down;
        for (int i = 0; i < 32; ++i) {
            if (!_term.WaitForQuiet(300ms, 30s)) return false;
            const std::string row = _term.Screen().RowText(1);
            const std::size_t title = row.find_first_of(kLetters, std::min<std::size_t>(row.size(), 40));
            if (title != std::string::npos && row.compare(title, entry.size(), entry) == 0) return true;
            _term.Press(direction);
            // A slow host can take longer than a quiet spell to answer a key: wait for the new title, or a
            // key would be pressed again on the strength of the old one. No new title: that end of the list.
            if (!_term.WaitFor([&](const VirtualTerminal& s) { return s.RowText(1) != row; }, 10s)) {
                if (direction == Key::Up) return false;
                direction = Key::Up;
            }
        }
        return false;
    }

  private:
    KovoTerm::TermSession& _term;
};

}  // namespace KovoE2e
