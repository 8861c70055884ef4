#pragma once

#include <sys/types.h>
#include <termios.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "ExitStatus.h"
#include "Key.h"
#include "SpawnOptions.h"
#include "VirtualTerminal.h"

namespace KovoTerm {

// A program running in a pseudo-terminal whose output drives a VirtualTerminal.
//
// Output is read only while the test waits (every Wait* call pumps it), so a test is a plain sequence
// of "do something, wait for a condition". Every wait has a deadline and returns false when it passes;
// none of them sleeps for a fixed time.
class TermSession {
  public:
    using Clock = std::chrono::steady_clock;
    using Millis = std::chrono::milliseconds;
    using ScreenPredicate = std::function<bool(const VirtualTerminal&)>;

    // Deadline of every wait that is not given one: generous, for loaded machines and sanitizer builds.
    static constexpr Millis kDefaultDeadline{20000};

    explicit TermSession(const SpawnOptions& options);
    ~TermSession();
    TermSession(const TermSession&) = delete;
    TermSession& operator=(const TermSession&) = delete;

    pid_t Pid() const { return _pid; }
    const VirtualTerminal& Screen() const { return *_terminal; }
    // Every byte the program wrote to the terminal, in order.
    const std::string& Output() const { return _output; }

    // Input, encoded as the terminal would send it.
    void Press(Key key, bool shift = false, bool alt = false, bool ctrl = false);
    void Type(std::string_view utf8);
    // Bytes sent as they are (escape sequences of the program's own key map, e.g. "\x1b" "1").
    void SendRaw(std::string_view bytes);
    // Lets `time` pass, taking the program's output meanwhile: an operator's pause between two keys. It
    // is input timing, not a wait for something to happen (use the Wait* calls for that).
    void Pause(Millis time);
    // Closes the terminal as a closed terminal window or a dropped line would: the program's side
    // reports hang-up and end of input, the session leader gets SIGHUP. Nothing can be sent afterwards.
    void HangUp();

    // Sends `signal` to `target` (the spawned process when 0). False when kill() fails.
    bool Signal(int signal, pid_t target = 0);
    // Sets the new size on the pseudo-terminal (the kernel signals its foreground process group) and
    // resizes the emulator; `alsoSignal` additionally gets a SIGWINCH of its own.
    void Resize(int columns, int rows, pid_t alsoSignal = 0);

    // Waits until `predicate` holds on the screen.
    bool WaitFor(const ScreenPredicate& predicate, Millis deadline = kDefaultDeadline);
    bool WaitForText(std::string_view text, Millis deadline = kDefaultDeadline);
    bool WaitForTextGone(std::string_view text, Millis deadline = kDefaultDeadline);
    // Waits until the program has written nothing for `quiet`.
    bool WaitForQuiet(Millis quiet, Millis deadline = kDefaultDeadline);
    // Waits until the raw output contains `bytes` anywhere.
    bool WaitForOutput(std::string_view bytes, Millis deadline = kDefaultDeadline);
    // Waits while pumping output until `condition` (about anything but the screen, e.g. a file) holds.
    // It is checked each time output arrives and at least every `poll` otherwise.
    bool WaitUntil(const std::function<bool()>& condition, Millis deadline = kDefaultDeadline,
                   Millis poll = Millis(20));
    // Waits for the spawned process to end; drains what it wrote before it ended.
    std::optional<ExitStatus> WaitExit(Millis deadline = kDefaultDeadline);
    // Waits for a process called `name` anywhere below the spawned one (e.g. the program a launcher
    // starts); 0 when none appeared in time.
    pid_t WaitForDescendant(std::string_view name, Millis deadline = kDefaultDeadline);

    // The terminal's current line discipline settings (echo, canonical mode, special characters), as
    // the program left them; nullopt once the terminal is gone.
    std::optional<termios> TerminalAttributes() const;

    bool Running() const { return !_exit.has_value(); }
    const std::optional<ExitStatus>& Exit() const { return _exit; }

    // The screen and the last bytes written, for assertion messages.
    std::string Dump() const;

  private:
    // Reads what is available within `wait`; returns true when anything was read or the child ended.
    bool Pump(Millis wait);
    bool ReapChild();
    void WriteToPty(std::string_view bytes);

    pid_t _pid = -1;
    int _master = -1;
    bool _hungUp = false;  // no process holds the terminal any more
    int _pidfd = -1;
    std::unique_ptr<VirtualTerminal> _terminal;
    std::string _output;
    std::optional<ExitStatus> _exit;
    Clock::time_point _lastOutput;
};

}  // namespace KovoTerm
