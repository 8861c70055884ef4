#pragma once

#include <sys/time.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "platform/hostctl/AdvancedOption.h"

namespace Kovo {

class Window;

// Codes WaitInput returns besides keys.
enum InputEvent : int {
    kInputFailed = -1,
    kInputTimedOut = -2,
    kHostNotification = -3,
    kRestartRequest = -4,
    kTerminalResized = -5,
    kTerminate = -6,
    kTerminalGone = -7,  // the terminal hung up: no key will ever come
};

// Seconds without a key before the screen dims.
constexpr int kDimSeconds = 60;

// How long curses waits after Esc for the rest of a key sequence, in milliseconds. Every lone Esc costs
// this much, so it is short; but an operator without function keys types Esc and then a digit for F1-F10,
// and the pair must still be one key. Typists take about 240 ms between two keys on average (slow ones
// well over 300 ms), and Esc-digit is a short reach: 400 ms keeps a deliberate pair together.
constexpr int kEscapeDelayMs = 400;

// Creates the signal pipe and blocks the handled signals in this (and every later) thread. The thread
// that turns them into pipe bytes starts at the first wait for input, off the way to the first screen:
// a signal that comes before then waits for it, as it would wait for that first read of the pipe. Ends
// the process with status 1 if the pipe or the thread cannot be made.
void BlockSignals();

// One wait for a key or a signal event; no limit waits indefinitely. Every signal byte queued is read at
// once: termination and resize come before anything else, keys before the rest, and any number of
// queued notifications (or restart requests) is one event.
int WaitInput(std::optional<timeval> limit);

// The key reader every frame loop calls: dims after a minute, raises KovoTimeout at the idle logout
// when useIdleTimeout is set, and turns signals into their reactions.
// The frame is dimmed and restored through `frame`; host notifications go to the hook.
int GetKey(Window* frame, bool useIdleTimeout);

// A key typed within `milliseconds`, or kInputTimedOut: for screens that watch work in progress while
// the operator may interrupt it. Signals act as in GetKey; nothing dims and no idle logout comes.
int PollKey(int milliseconds);

// What a host notification (SIGUSR1) does; set once at start-up by the layer that knows the screens.
void SetNotificationHook(std::function<void()> hook);

void ResizeTerminal();
// The idle time-out the host's option "/UserVars/KovoTimeOut" sets, in seconds; the default when the
// host has no such integer option or cannot be asked. `options` makes the host's advanced options.
using OptionsSource = std::function<std::unique_ptr<HostCtl::Adv::AdvancedOption>()>;
uint32_t GetIdleTimeoutOption(const OptionsSource& options);
void LoadIdleTimeout(const OptionsSource& options);
void SetLoggedIn(bool loggedIn);

// The deadlines of one GetKey call, counted from its start.
struct IdleDeadlines {
    timeval dimAt;
    timeval logoutAt;
    bool logoutArmed;
};
IdleDeadlines ComputeIdleDeadlines(const timeval& start, uint32_t idleTimeout, bool useIdleTimeout);
// True once `now` has reached `moment` (seconds compared first, then microseconds).
bool TimeReached(const timeval& now, const timeval& moment);
// How long the next wait may last: until the dim moment while undimmed, until the logout once dimmed
// and armed, without limit otherwise.
std::optional<timeval> NextWaitLimit(const timeval& now, const IdleDeadlines& deadlines, bool dimmed);

}  // namespace Kovo
