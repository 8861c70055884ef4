#include "app/terminal/KeyReader.h"

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

#include "app/terminal/KovoTimeout.h"
#include "app/terminal/Log.h"
#include "app/terminal/Session.h"
#include "app/terminal/Window.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/zenkctl/AdvancedOptionImpl.h"

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

void StartSignalThread() {
    if (pipe2(Session::_signalPipe, O_CLOEXEC) != 0) {
        LogErrno("pipe() failed");
        exit(1);
    }
    sigemptyset(&Session::_signalSet);
    for (int sig : {SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGWINCH})
        sigaddset(&Session::_signalSet, sig);
    int rc = pthread_sigmask(SIG_BLOCK, &Session::_signalSet, nullptr);
    if (rc != 0) {
        errno = rc;
        LogErrno("pthread_sigmask() failed");
    }
    pthread_t thread;
    rc = pthread_create(&thread, nullptr, &Session::SignalHandler, nullptr);
    if (rc != 0) {
        errno = rc;
        LogErrno("pthread_create() failed");
        exit(1);
    }
    pthread_detach(thread);
}

static void (*g_notificationHook)() = nullptr;

void SetNotificationHook(void (*hook)()) {
    g_notificationHook = hook;
}

// After an Esc, curses may hold input it read while telling a lone Esc from a key sequence (a key typed
// right after it); poll() cannot see that. So the wait after an Esc first asks curses without blocking.
static bool g_afterEscape = false;

static int ReadKeyNow() {
    wtimeout(stdscr, 0);
    int key = wgetch(stdscr);
    wtimeout(stdscr, -1);
    g_afterEscape = key == 27;
    return key;
}

int WaitInput(std::optional<timeval> limit) {
    if (g_afterEscape) {
        int key = ReadKeyNow();
        if (key != ERR) return key;
    }
    pollfd fds[2] = {{0, POLLIN, 0}, {Session::_signalPipe[0], POLLIN, 0}};
    int ms = -1;
    if (limit) ms = static_cast<int>(limit->tv_usec / 1000 + limit->tv_sec * 1000);
    int rc = poll(fds, 2, ms);
    if (rc < 0) {
        LogErrno("poll() failed");
        return kInputFailed;
    }
    if (rc == 0) return kInputTimedOut;
    if (fds[0].revents & (POLLIN | POLLHUP | POLLERR)) return ReadKeyNow();
    if (fds[1].revents & POLLIN) {
        char byte = 0;
        ssize_t n;
        do {
            n = read(Session::_signalPipe[0], &byte, 1);
        } while (n < 0 && errno == EINTR);
        if (n != 1) return kInputFailed;
        switch (byte) {
            case 1:
                return kHostNotification;
            case 2:
                return kRestartRequest;
            case 3:
                return kTerminalResized;
            case 4:
                return kTerminate;
            default:
                return kInputFailed;
        }
    }
    return kInputFailed;
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
        switch (code) {
            case kInputTimedOut:
            case kInputFailed:
                continue;
            case kHostNotification:
                if (g_notificationHook) g_notificationHook();
                continue;
            case kRestartRequest:
                if (!Session::_loggedIn) exit(0);
                Session::_markForRestart = true;
                continue;
            case KEY_RESIZE:
            case kTerminalResized:
                // The interface is not redrawn in place: it starts afresh at the new size.
                ResizeTerminal();
                exit(0);
            case kTerminate:
                exit(0);
            default:
                break;
        }
        if (code < 0) continue;
        if (dimmed) {
            clearok(curscr, TRUE);
            frame->SetActive(true);
            frame->Refresh();
        }
        return code;
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

uint32_t GetIdleTimeoutOption() {
    try {
        ZenkCtl::Adv::AdvancedOptionImpl options;
        auto option = options.FindOption(KOVO_TIMEOUT_VAR);
        if (!option || !option->IsInteger()) return kDefaultIdleTimeout;
        int64_t value = option->GetIntValue();
        if (value < 0) return kDefaultIdleTimeout;
        return static_cast<uint32_t>(std::min<int64_t>(value, UINT32_MAX));
    } catch (const HostCtl::Lib::HostCtlException&) {
        return kDefaultIdleTimeout;
    }
}

void LoadIdleTimeout() {
    Session::_idleTimeout = GetIdleTimeoutOption();
}

void SetLoggedIn(bool loggedIn) {
    Session::_loggedIn = loggedIn;
    if (loggedIn) LoadIdleTimeout();
}

}  // namespace Kovo
