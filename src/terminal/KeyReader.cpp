#include "terminal/KeyReader.h"

#include <curses.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <syslog.h>
#include <unistd.h>

#include <fcntl.h>
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iterator>

#include "platform/hostctl/HostCtlException.h"
#include "terminal/KovoTimeout.h"
#include "terminal/Log.h"
#include "terminal/Session.h"
#include "terminal/Window.h"

namespace Kovo {

namespace {

constexpr uint32_t kDefaultIdleTimeout = 600;

timeval AddSeconds(const timeval& t, long seconds) {
    timeval r = t;
    r.tv_sec += seconds;
    return r;
}

timeval Now() {
    timeval t{};
    gettimeofday(&t, nullptr);
    return t;
}

char SignalByte(int sig) {
    switch (sig) {
        case SIGUSR1:
            return 1;
        case SIGUSR2:
            return 2;
        case SIGWINCH:
            return 3;
        case SIGINT:
        case SIGQUIT:
        case SIGTERM:
        case SIGHUP:  // a serial or SSH terminal going away
            return 4;
        default:
            return 0;
    }
}

}  // namespace

void* Session::SignalHandler(void*) {
    for (;;) {
        int sig = 0;
        int rc = sigwait(&_signalSet, &sig);
        if (rc != 0) {
            errno = rc;
            LogErrno("sigwait() failed");
            continue;
        }
        char byte = SignalByte(sig);
        if (byte == 0) continue;
        for (;;) {
            ssize_t n = write(_signalPipe[1], &byte, 1);
            if (n == 1) break;
            if (n < 0 && errno != EINTR) break;  // any other error drops the byte
        }
    }
    return nullptr;
}

namespace {
// Set once the signals are blocked: the thread that turns them into pipe bytes is still to start.
bool g_signalThreadDue = false;

void StartSignalThread() {
    g_signalThreadDue = false;
    pthread_t thread;
    const int rc = pthread_create(&thread, nullptr, &Session::SignalHandler, nullptr);
    if (rc != 0) {
        errno = rc;
        LogErrno("pthread_create() failed");
        exit(1);
    }
    pthread_detach(thread);
}
}  // namespace

void BlockSignals() {
    if (pipe2(Session::_signalPipe, O_CLOEXEC) != 0) {
        LogErrno("pipe() failed");
        exit(1);
    }
    sigemptyset(&Session::_signalSet);
    for (int sig : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGUSR1, SIGUSR2, SIGWINCH})
        sigaddset(&Session::_signalSet, sig);
    int rc = pthread_sigmask(SIG_BLOCK, &Session::_signalSet, nullptr);
    if (rc != 0) {
        errno = rc;
        LogErrno("pthread_sigmask() failed");
    }
    g_signalThreadDue = true;
}

static std::function<void()> g_notificationHook;

void SetNotificationHook(std::function<void()> hook) {
    g_notificationHook = std::move(hook);
}

// After a key, curses may hold input it read ahead while telling a lone Esc from a key sequence: a key
// typed right after an Esc, or the rest of a sequence the terminal's keys do not explain. poll() cannot
// see that, so the wait after a key first asks curses without blocking, until it holds nothing.
static bool g_cursesMayHold = false;

static int ReadKeyNow() {
    wtimeout(stdscr, 0);
    int key = wgetch(stdscr);
    wtimeout(stdscr, -1);
    g_cursesMayHold = key != ERR;
    return key;
}

namespace {

// Signal events read from the pipe and not yet acted on, most urgent first. A flag, not a count: a
// backlog of notifications needs only one redraw.
struct PendingEvent {
    char byte;
    int event;
    bool urgent;  // acts ahead of keys already typed
};
constexpr PendingEvent kPendingEvents[] = {
    {4, kTerminate, true},
    {3, kTerminalResized, true},
    {2, kRestartRequest, false},
    {1, kHostNotification, false},
};
unsigned g_pending = 0;  // bit i stands for kPendingEvents[i]
// A signal pipe whose reads fail is left out of later waits rather than reported on every one.
int g_failedPipe = -1;

int SignalPipe() {
    const int fd = Session::_signalPipe[0];
    return fd == g_failedPipe ? -1 : fd;
}

void AddPending(char byte) {
    for (unsigned i = 0; i < std::size(kPendingEvents); ++i)
        if (kPendingEvents[i].byte == byte) g_pending |= 1U << i;
}

// Reads everything the signal thread has queued so far, never blocking.
void DrainSignalPipe() {
    const int fd = SignalPipe();
    char bytes[4096];
    for (;;) {
        pollfd ready = {fd, POLLIN, 0};
        const int rc = poll(&ready, 1, 0);
        if (rc < 0 && errno == EINTR) continue;
        if (rc <= 0) return;
        // A pipe that reports only hang-up or an error would wake every wait from now on.
        const ssize_t n = ready.revents & POLLIN ? read(fd, bytes, sizeof bytes) : 0;
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            syslog(LOG_ERR, "The signal pipe failed; signals are no longer seen");
            g_failedPipe = fd;
            return;
        }
        for (ssize_t i = 0; i < n; ++i) AddPending(bytes[i]);
    }
}

// The most urgent pending event, taken off the backlog; 0 when there is none (among the urgent ones
// when `urgentOnly`).
int TakePending(bool urgentOnly) {
    for (unsigned i = 0; i < std::size(kPendingEvents); ++i) {
        if (!(g_pending & (1U << i))) continue;
        if (urgentOnly && !kPendingEvents[i].urgent) return 0;
        g_pending &= ~(1U << i);
        return kPendingEvents[i].event;
    }
    return 0;
}

}  // namespace

int WaitInput(std::optional<timeval> limit) {
    if (g_signalThreadDue) StartSignalThread();
    if (int event = TakePending(true)) return event;
    if (g_cursesMayHold) {
        int key = ReadKeyNow();
        if (key != ERR) return key;
    }
    // With events pending only a look is taken: keys typed meanwhile still go first.
    int ms = -1;
    if (g_pending)
        ms = 0;
    else if (limit)
        ms = static_cast<int>(limit->tv_usec / 1000 + limit->tv_sec * 1000);
    pollfd fds[2] = {{0, POLLIN, 0}, {SignalPipe(), POLLIN, 0}};
    int rc = poll(fds, 2, ms);
    if (rc < 0) {
        if (errno != EINTR) LogErrno("poll() failed");
        return kInputFailed;
    }
    // The pipe is read whatever the terminal reports, so a hung-up terminal cannot starve it.
    if (fds[1].revents) DrainSignalPipe();
    if (int event = TakePending(true)) return event;
    if (fds[0].revents) {
        int key = ReadKeyNow();
        if (key != ERR) return key;
        // Nothing to read from a terminal that reports hang-up: it is gone.
        if (fds[0].revents & (POLLHUP | POLLERR | POLLNVAL)) return kTerminalGone;
    }
    if (int event = TakePending(false)) return event;
    return rc == 0 ? kInputTimedOut : kInputFailed;
}

IdleDeadlines ComputeIdleDeadlines(const timeval& start, uint32_t idleTimeout, bool useIdleTimeout) {
    IdleDeadlines d{};
    d.logoutArmed = idleTimeout != 0 && useIdleTimeout;
    d.dimAt = AddSeconds(start, kDimSeconds);
    // A time-out below one minute is raised to one minute.
    d.logoutAt = AddSeconds(start, std::max<long>(idleTimeout, kDimSeconds));
    return d;
}

bool TimeReached(const timeval& now, const timeval& moment) {
    if (now.tv_sec != moment.tv_sec) return now.tv_sec > moment.tv_sec;
    return now.tv_usec >= moment.tv_usec;
}

std::optional<timeval> NextWaitLimit(const timeval& now, const IdleDeadlines& deadlines, bool dimmed) {
    const timeval* until = nullptr;
    if (!dimmed)
        until = &deadlines.dimAt;
    else if (deadlines.logoutArmed)
        until = &deadlines.logoutAt;
    if (!until) return std::nullopt;
    timeval left{};
    if (!TimeReached(now, *until)) timersub(until, &now, &left);
    return left;
}

namespace {

// What a signal event does wherever keys are read: false for a code that is no event (a key, or a wait
// that timed out or failed). The events that end the console end it here.
bool ActOnEvent(int code) {
    switch (code) {
        case kHostNotification:
            if (g_notificationHook) g_notificationHook();
            return true;
        case kRestartRequest:
            if (!Session::_loggedIn) exit(0);
            Session::_markForRestart = true;
            return true;
        case KEY_RESIZE:
        case kTerminalResized:
            // The interface is not redrawn in place: it starts afresh at the new size.
            ResizeTerminal();
            exit(0);
        case kTerminate:
            exit(0);
        case kTerminalGone:
            // A dropped line or a closed session: end, and the host starts the console afresh.
            syslog(LOG_INFO, "Terminal hung up; ending");
            exit(0);
        default:
            return false;
    }
}

}  // namespace

int GetKey(Window* frame, bool useIdleTimeout) {
    const IdleDeadlines deadlines = ComputeIdleDeadlines(Now(), Session::_idleTimeout, useIdleTimeout);
    bool dimmed = false;
    for (;;) {
        timeval now = Now();
        if (deadlines.logoutArmed && TimeReached(now, deadlines.logoutAt)) throw KovoTimeout();
        if (!dimmed && TimeReached(now, deadlines.dimAt)) {
            frame->SetActive(false);
            frame->Refresh();
            dimmed = true;
        }
        int code = WaitInput(NextWaitLimit(Now(), deadlines, dimmed));
        if (ActOnEvent(code) || code < 0) continue;
        if (dimmed) {
            clearok(curscr, TRUE);
            frame->SetActive(true);
            frame->Refresh();
        }
        return code;
    }
}

int PollKey(int milliseconds) {
    const timeval limit = {milliseconds / 1000, (milliseconds % 1000) * 1000};
    for (;;) {
        const int code = WaitInput(limit);
        if (ActOnEvent(code)) continue;
        return code < 0 ? kInputTimedOut : code;
    }
}

void ResizeTerminal() {
    winsize ws{};
    if (ioctl(0, TIOCGWINSZ, &ws) != 0) return;
    if (ws.ws_row == 0 || ws.ws_col == 0) return;
    resizeterm(ws.ws_row, ws.ws_col);
    syslog(LOG_INFO, "Resized window to %dx%d", ws.ws_col, ws.ws_row);
    refresh();
}

uint32_t GetIdleTimeoutOption(const OptionsSource& options) {
    try {
        auto option = options()->FindOption(KOVO_TIMEOUT_VAR);
        if (!option || !option->IsInteger()) return kDefaultIdleTimeout;
        int64_t value = option->GetIntValue();
        if (value < 0) return kDefaultIdleTimeout;
        return static_cast<uint32_t>(std::min<int64_t>(value, UINT32_MAX));
    } catch (const HostCtl::Lib::HostCtlException&) {
        return kDefaultIdleTimeout;
    }
}

void LoadIdleTimeout(const OptionsSource& options) {
    Session::_idleTimeout = GetIdleTimeoutOption(options);
}

void SetLoggedIn(bool loggedIn) {
    Session::_loggedIn = loggedIn;
}

}  // namespace Kovo
