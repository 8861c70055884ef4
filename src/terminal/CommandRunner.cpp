#include "terminal/CommandRunner.h"

#include <curses.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <syslog.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>

#include "platform/events/ObsUserLib.h"
#include "platform/hostctl/HostPrograms.h"
#include "platform/hostctl/UniqueFd.h"
#include "terminal/Log.h"
#include "terminal/Session.h"

extern char** environ;

namespace Kovo {

namespace {

using HostCtl::UniqueFd;

constexpr int kHclCmdRetryCapacity = 256;
constexpr int kQueryTimeoutSeconds = 120;
constexpr int kQueryCapacity = 255;
constexpr int kTickMs = 20;

struct Pipe {
    UniqueFd read, write;
    bool Open() {
        int fds[2];
        if (pipe2(fds, O_CLOEXEC) != 0) return false;
        read.Reset(fds[0]);
        write.Reset(fds[1]);
        return true;
    }
};

// Keeps at most `capacity` bytes of a stream and drops the rest, so the child never blocks on a full pipe.
struct Capture {
    char* buffer;
    int capacity;
    int stored = 0;
    Capture(char* b, const int* length) : buffer(b), capacity(b && length ? *length : 0) {}
    void Add(const char* data, ssize_t n) {
        ssize_t room = capacity - stored;
        ssize_t take = n < room ? n : room;
        if (take > 0) {
            memcpy(buffer + stored, data, static_cast<size_t>(take));
            stored += static_cast<int>(take);
        }
    }
};

long long NowMs() {
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec * 1000LL + ts.tv_nsec / 1000000;
}

// Reads what is there now; false at end of stream or on an error other than "try again".
bool Drain(UniqueFd& fd, Capture& capture) {
    char chunk[4096];
    for (;;) {
        ssize_t n = read(fd.Get(), chunk, sizeof chunk);
        if (n > 0) {
            capture.Add(chunk, n);
            continue;
        }
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && errno == EAGAIN) return true;
        fd.Close();
        return false;
    }
}

[[noreturn]] void ExecChild(const char* program, const char* const argv[], int in, int out, int err) {
    // Only async-signal-safe calls between fork and exec.
    if (dup2(in, 0) < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0) _exit(127);
    syscall(SYS_close_range, 3U, ~0U, 0U);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);  // the console's signal thread owns signals, children don't
    signal(SIGPIPE, SIG_DFL);
    signal(SIGTSTP, SIG_DFL);  // the console ignores it, an ignored signal stays ignored across exec
    // A session of its own, without the console's terminal: a key meant for the console (Ctrl-C) never
    // interrupts a host program half-way, nor does the terminal hanging up.
    setsid();
    static char pythonHome[] = "PYTHONHOME=/";
    char* const env[] = {pythonHome, nullptr};
    execve(program, const_cast<char* const*>(argv), env);
    _exit(127);
}

// Writing to a child that stopped reading must fail with EPIPE, not kill the console: SIGPIPE is held
// back for this thread while a command runs and any one raised by it is discarded.
class SigpipeGuard {
  public:
    SigpipeGuard() {
        sigemptyset(&_pipe);
        sigaddset(&_pipe, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        _wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &_pipe, &_old);
    }
    ~SigpipeGuard() {
        if (!_wasPending) {
            timespec zero{0, 0};
            while (sigtimedwait(&_pipe, nullptr, &zero) == SIGPIPE) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &_old, nullptr);
    }

  private:
    sigset_t _pipe, _old;
    bool _wasPending;
};

const HostCtl::HostPrograms* g_programs = nullptr;

// A program as this host has it, resolved before any fork: nothing may allocate in the child.
class HostProgram {
  public:
    HostProgram(const char* program, const char* const argv[]) {
        if (g_programs == nullptr || program == nullptr || argv == nullptr) {
            _path = program;
            _argv = argv;
            return;
        }
        HostCtl::Program documented{program, {}};
        for (const char* const* arg = argv; *arg != nullptr; ++arg) documented.argv.emplace_back(*arg);
        _resolved = g_programs->Resolve(documented);
        for (const std::string& arg : _resolved.argv) _pointers.push_back(arg.c_str());
        _pointers.push_back(nullptr);
        _path = _resolved.path.c_str();
        _argv = _pointers.data();
    }
    const char* Path() const { return _path; }
    const char* const* Argv() const { return _argv; }

  private:
    HostCtl::Program _resolved;
    std::vector<const char*> _pointers;
    const char* _path = nullptr;
    const char* const* _argv = nullptr;
};

}  // namespace

void InstallHostPrograms(const HostCtl::HostPrograms* programs) {
    g_programs = programs;
}

int RunCommand(const char* program, const char* const argv[], char* output, int* outputLength, char* error,
               int* errorLength, const char* input, int inputLength, int timeout) {
    const HostProgram host(program, argv);
    SigpipeGuard sigpipe;
    Pipe in, out, err;
    if (!in.Open() || !out.Open() || !err.Open()) return -1;

    pid_t pid = fork();
    if (pid < 0) return -1;
    if (pid == 0) ExecChild(host.Path(), host.Argv(), in.read.Get(), out.write.Get(), err.write.Get());

    in.read.Close();
    out.write.Close();
    err.write.Close();
    for (int fd : {in.write.Get(), out.read.Get(), err.read.Get()}) fcntl(fd, F_SETFL, O_NONBLOCK);
    UniqueFd exitFd(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));

    Capture outCapture(output, outputLength), errCapture(error, errorLength);
    const char* pending = input;
    int pendingLength = input ? inputLength : 0;
    if (pendingLength <= 0) in.write.Close();

    const long long deadline = timeout > 0 ? NowMs() + timeout * 1000LL : -1;
    int status = 0;
    bool ended = false;
    bool killed = false;
    while (!ended) {
        pollfd fds[4];
        int n = 0;
        int inIdx = -1, outIdx = -1, errIdx = -1;
        if (in.write.Get() >= 0) fds[inIdx = n++] = {in.write.Get(), POLLOUT, 0};
        if (out.read.Get() >= 0) fds[outIdx = n++] = {out.read.Get(), POLLIN, 0};
        if (err.read.Get() >= 0) fds[errIdx = n++] = {err.read.Get(), POLLIN, 0};
        if (exitFd.Get() >= 0) fds[n++] = {exitFd.Get(), POLLIN, 0};

        // Without a pidfd the child's end is noticed on a short tick, as waitpid polling would.
        int wait = exitFd.Get() >= 0 ? -1 : kTickMs;
        if (deadline >= 0) {
            long long left = deadline - NowMs();
            if (left < 0) left = 0;
            if (wait < 0 || left < wait) wait = static_cast<int>(left);
        }
        if (poll(fds, static_cast<nfds_t>(n), wait) < 0 && errno != EINTR) break;

        if (inIdx >= 0 && fds[inIdx].revents) {
            ssize_t w = write(in.write.Get(), pending, static_cast<size_t>(pendingLength));
            if (w > 0) {
                pending += w;
                pendingLength -= static_cast<int>(w);
            }
            if (pendingLength <= 0 || (w < 0 && errno != EAGAIN && errno != EINTR)) in.write.Close();
        }
        if (outIdx >= 0 && fds[outIdx].revents) Drain(out.read, outCapture);
        if (errIdx >= 0 && fds[errIdx].revents) Drain(err.read, errCapture);

        pid_t done = waitpid(pid, &status, WNOHANG);
        if (done == pid) {
            ended = true;
        } else if (deadline >= 0 && NowMs() >= deadline) {
            syslog(LOG_WARNING, "Killing process because %d seconds timeout expired", timeout);
            kill(pid, SIGKILL);
            // Reaped so no zombie is left behind; its status stays unknown to the caller.
            waitpid(pid, nullptr, 0);
            killed = true;
            break;
        }
    }
    in.write.Close();
    if (out.read.Get() >= 0) Drain(out.read, outCapture);
    if (err.read.Get() >= 0) Drain(err.read, errCapture);
    if (outputLength && output) *outputLength = outCapture.stored;
    if (errorLength && error) *errorLength = errCapture.stored;

    if (killed || !ended || !WIFEXITED(status)) {
        syslog(LOG_ERR, "Run Command did not terminate normally");
        return -1;
    }
    return WEXITSTATUS(status);
}

int RunCaptured(const std::string& program, const std::vector<std::string>& argv, std::string& output,
                std::string& error, int capacity) {
    std::vector<const char*> pointers;
    pointers.reserve(argv.size() + 1);
    for (const std::string& arg : argv) pointers.push_back(arg.c_str());
    pointers.push_back(nullptr);
    output.clear();
    error.clear();
    // Nothing to keep: the child's output is drained and dropped.
    if (capacity <= 0) return RunCommand(program.c_str(), pointers.data());
    std::string outBuffer(static_cast<size_t>(capacity), '\0'),
        errBuffer(static_cast<size_t>(capacity), '\0');
    int outLength = capacity, errLength = capacity;
    const int status = RunCommand(program.c_str(), pointers.data(), outBuffer.data(), &outLength,
                                  errBuffer.data(), &errLength);
    // Each text ends where the capture ended.
    output.assign(outBuffer.data(), static_cast<size_t>(outLength));
    error.assign(errBuffer.data(), static_cast<size_t>(errLength));
    return status;
}

namespace {

// Gives the terminal's foreground back to the console's own process group. The console is in the
// background while it does so, which would stop it with SIGTTOU unless this thread holds that back.
void TakeTerminalBack() {
    sigset_t ttou, old;
    sigemptyset(&ttou);
    sigaddset(&ttou, SIGTTOU);
    pthread_sigmask(SIG_BLOCK, &ttou, &old);
    tcsetpgrp(STDIN_FILENO, getpgrp());
    pthread_sigmask(SIG_SETMASK, &old, nullptr);
}

}  // namespace

int RunOnTerminal(const char* program, const char* const argv[]) {
    const HostProgram host(program, argv);
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t actions;
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_init(&actions);
    // The console blocks its signals for the signal thread; the program must get them the ordinary way.
    sigset_t none, defaults;
    sigemptyset(&none);
    sigemptyset(&defaults);
    for (int signal :
         {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGUSR1, SIGUSR2, SIGWINCH, SIGTSTP, SIGPIPE, SIGCHLD})
        sigaddset(&defaults, signal);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    short flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
    // The program gets the terminal as a process group of its own in the foreground: the keys it reads
    // there (Ctrl-C ends the pager's follow mode) reach it and not the console, which takes the terminal
    // back when it ends.
    // (Only where the console can name its own group to take the terminal back: a group made outside
    // its PID namespace shows as 0.)
    const bool ownsTerminal = isatty(STDIN_FILENO) && getpgrp() > 0 && tcgetpgrp(STDIN_FILENO) == getpgrp();
    if (ownsTerminal) {
        flags |= POSIX_SPAWN_SETPGROUP;
        posix_spawnattr_setpgroup(&attributes, 0);
        posix_spawn_file_actions_addtcsetpgrp_np(&actions, STDIN_FILENO);
    }
    posix_spawnattr_setflags(&attributes, flags);
    pid_t pid = -1;
    const int error =
        posix_spawn(&pid, host.Path(), &actions, &attributes, const_cast<char* const*>(host.Argv()), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (error != 0) {
        errno = error;
        LogErrno((std::string("posix_spawn(") + program + ")").c_str());
        return -1;
    }
    int status = 0;
    pid_t ended;
    for (;;) {
        ended = waitpid(pid, &status, WUNTRACED);
        if (ended < 0 && errno == EINTR) continue;
        // Suspended (Ctrl-Z): nothing would ever bring it back to the front, so it goes on at once.
        if (ended == pid && WIFSTOPPED(status)) {
            kill(-pid, SIGCONT);
            continue;
        }
        break;
    }
    if (ownsTerminal) {
        TakeTerminalBack();
        // A resize signal went to the program in the foreground, not to the console: the console takes
        // up a size that changed meanwhile as its own resize.
        winsize size{};
        if (ioctl(STDIN_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0 &&
            (size.ws_row != LINES || size.ws_col != COLS))
            kill(getpid(), SIGWINCH);
    }
    return ended == pid && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int RunShell(const std::string& commandLine) {
    const char* argv[] = {"sh", "-c", commandLine.c_str(), nullptr};
    return RunCommand("/bin/sh", argv);
}

namespace {

int RunHclCmdOnce(const std::vector<std::string>& args, char* output, int* outputLength, char* error,
                  int* errorLength, const char* input, int inputLength) {
    std::vector<const char*> argv;
    argv.reserve(args.size() + 1);
    for (const std::string& a : args) argv.push_back(a.c_str());
    argv.push_back(nullptr);
    return RunCommand("/bin/hcl-cmd", argv.data(), output, outputLength, error, errorLength, input,
                      inputLength, 0);
}

}  // namespace

int RunHclCmd(std::vector<std::string> argv, char* output, int* outputLength, char* error, int* errorLength,
              const char* input, int inputLength) {
    const int outCapacity = outputLength ? *outputLength : 0;
    const int errCapacity = errorLength ? *errorLength : 0;
    int status = RunHclCmdOnce(argv, output, outputLength, error, errorLength, input, inputLength);
    if (status != 255 || argv.size() < 4) return status;

    syslog(LOG_INFO, "Unable to execute command hcl-cmd %s using user %s. Using user %s", argv[3].c_str(),
           argv[2].c_str(), KOVO_USER);
    argv[2] = KOVO_USER;
    // The retry gets fresh capacities, never more than the caller's buffers hold.
    if (outputLength) *outputLength = std::min(outCapacity, kHclCmdRetryCapacity);
    if (errorLength) *errorLength = std::min(errCapacity, kHclCmdRetryCapacity);
    return RunHclCmdOnce(argv, output, outputLength, error, errorLength, input, inputLength);
}

bool HclCmdQuery(const char* commandPath) {
    syslog(LOG_INFO, "hcl-cmd invocation: get %s", commandPath);
    std::string path;
    try {
        path = commandPath;
    } catch (const std::bad_alloc&) {
        syslog(LOG_ERR, "hcl-cmd invocation failure: %s", strerror(ENOMEM));
        return false;
    }
    const char* argv[] = {"hcl-cmd", "-U", KOVO_USER, path.c_str(), nullptr};
    char output[kQueryCapacity] = {};
    int outputLength = kQueryCapacity;
    int status = RunCommand("/bin/hcl-cmd", argv, output, &outputLength, nullptr, nullptr, nullptr, 0,
                            kQueryTimeoutSeconds);
    if (status != 0) syslog(LOG_ERR, "hcl-cmd invocation failure: %m");
    return IsTrueAnswer(output, outputLength);
}

bool IsTrueAnswer(const char* output, int length) {
    return length >= 4 && memcmp(output, "true", 4) == 0;
}

void RefreshHostAgent() {
    RunHclCmd({"hcl-cmd", "-U", Session::_loginName, "internalsvc/refresh"});
}

int PowerOffVms(bool graceful) {
    RunHclCmd({"hcl-cmd", "-U", Session::_loginName, "hostsvc/autostartmanager/autostop"});
    if (graceful) {
        const char* argv[] = {"powerOffVms", nullptr};
        return RunCommand("/bin/powerOffVms", argv);
    }
    const char* argv[] = {"powerOffVms", "--terminate", nullptr};
    return RunCommand("/bin/powerOffVms", argv);
}

int InitEvents() {
    syslog(LOG_INFO, "Initializing obsuser library");
    int rc = ObsUserLib_Init();
    if (rc != 0) syslog(LOG_ERR, "Unable to initialize obsuser library from KOVO. Error code: %d", rc);
    return rc;
}

}  // namespace Kovo
