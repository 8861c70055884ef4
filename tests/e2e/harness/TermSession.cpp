#include "TermSession.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "ProcessTree.h"

extern char** environ;

namespace KovoTerm {

namespace {

// Resolves a bare program name through the test's PATH, before fork, so the child need not.
std::string ResolveProgram(const std::string& name) {
    if (name.find('/') != std::string::npos) return name;
    const char* path = std::getenv("PATH");
    std::string dirs = path ? path : "/usr/local/bin:/usr/bin:/bin";
    std::size_t start = 0;
    while (start <= dirs.size()) {
        auto end = dirs.find(':', start);
        if (end == std::string::npos) end = dirs.size();
        std::string candidate = dirs.substr(start, end - start) + "/" + name;
        if (access(candidate.c_str(), X_OK) == 0) return candidate;
        start = end + 1;
    }
    return name;
}

std::vector<std::string> BuildEnvironment(const SpawnOptions& options) {
    std::map<std::string, std::string> env;
    if (options.inheritEnvironment) {
        for (char** e = environ; *e; ++e) {
            std::string entry(*e);
            auto eq = entry.find('=');
            if (eq != std::string::npos) env[entry.substr(0, eq)] = entry.substr(eq + 1);
        }
    }
    for (const auto& [name, value] : options.environment) env[name] = value;
    env.erase("TERM");
    if (options.term) env["TERM"] = *options.term;
    std::vector<std::string> flat;
    for (const auto& [name, value] : env) flat.push_back(name + "=" + value);
    return flat;
}

}  // namespace

TermSession::TermSession(const SpawnOptions& options) {
    if (options.argv.empty()) throw std::invalid_argument("nothing to run");
    _terminal = std::make_unique<VirtualTerminal>(options.rows, options.columns,
                                                  [this](std::string_view bytes) { WriteToPty(bytes); });

    // Everything the child needs is built before fork: after it only exec-safe calls are made.
    std::string program = ResolveProgram(options.argv[0]);
    std::vector<std::string> envStrings = BuildEnvironment(options);
    std::vector<char*> argv;
    for (const auto& a : options.argv) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    std::vector<char*> envp;
    for (const auto& e : envStrings) envp.push_back(const_cast<char*>(e.c_str()));
    envp.push_back(nullptr);

    winsize size{};
    size.ws_row = static_cast<unsigned short>(options.rows);
    size.ws_col = static_cast<unsigned short>(options.columns);

    // The exec error travels back through a close-on-exec pipe: an empty read means exec worked.
    int errorPipe[2];
    if (pipe2(errorPipe, O_CLOEXEC) != 0) throw std::runtime_error("pipe2 failed");

    _pid = forkpty(&_master, nullptr, nullptr, &size);
    if (_pid < 0) {
        close(errorPipe[0]);
        close(errorPipe[1]);
        throw std::runtime_error(std::string("forkpty failed: ") + std::strerror(errno));
    }
    if (_pid == 0) {
        close(errorPipe[0]);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        for (int s = 1; s < NSIG; ++s) signal(s, SIG_DFL);
        if (!options.workingDirectory.empty() && chdir(options.workingDirectory.c_str()) != 0) {
            int e = errno;
            (void)!write(errorPipe[1], &e, sizeof e);
            ::_exit(127);
        }
        execve(program.c_str(), argv.data(), envp.data());
        int e = errno;
        (void)!write(errorPipe[1], &e, sizeof e);
        ::_exit(127);
    }
    close(errorPipe[1]);
    int childErrno = 0;
    ssize_t got;
    do {
        got = read(errorPipe[0], &childErrno, sizeof childErrno);
    } while (got < 0 && errno == EINTR);
    close(errorPipe[0]);

    fcntl(_master, F_SETFL, fcntl(_master, F_GETFL) | O_NONBLOCK);
    fcntl(_master, F_SETFD, FD_CLOEXEC);
    _pidfd = static_cast<int>(syscall(SYS_pidfd_open, _pid, 0));
    _lastOutput = Clock::now();

    if (got == sizeof childErrno) {
        ReapChild();
        throw std::runtime_error("cannot run " + program + ": " + std::strerror(childErrno));
    }
}

TermSession::~TermSession() {
    if (Running()) {
        // Take down whatever the program started too, so no test leaves processes behind.
        for (pid_t pid : ProcessTree::Descendants(_pid)) kill(pid, SIGKILL);
        kill(_pid, SIGKILL);
        int status;
        while (waitpid(_pid, &status, 0) < 0 && errno == EINTR) {
        }
    }
    if (_pidfd >= 0) close(_pidfd);
    if (_master >= 0) close(_master);
}

void TermSession::WriteToPty(std::string_view bytes) {
    while (!bytes.empty() && !_hungUp) {
        ssize_t n = write(_master, bytes.data(), bytes.size());
        if (n > 0) {
            bytes.remove_prefix(std::size_t(n));
        } else if (n < 0 && errno == EAGAIN) {
            // The program is not reading; keep its output flowing so neither side blocks.
            pollfd fds[1] = {{_master, POLLOUT, 0}};
            poll(fds, 1, 50);
            Pump(Millis(0));
        } else if (n < 0 && errno == EINTR) {
            continue;
        } else {
            return;  // the slave side is gone
        }
    }
}

void TermSession::Press(Key key, bool shift, bool alt, bool ctrl) {
    _terminal->PressKey(key, shift, alt, ctrl);
}

void TermSession::Type(std::string_view utf8) {
    _terminal->TypeText(utf8);
}

void TermSession::SendRaw(std::string_view bytes) {
    WriteToPty(bytes);
}

void TermSession::Pause(Millis time) {
    const auto end = Clock::now() + time;
    for (auto now = Clock::now(); now < end; now = Clock::now())
        Pump(std::chrono::duration_cast<Millis>(end - now) + Millis(1));
}

void TermSession::HangUp() {
    if (_master < 0) return;
    // Only this process holds the terminal's master side: closing it hangs the terminal up.
    close(_master);
    _master = -1;
    _hungUp = true;
}

bool TermSession::Signal(int signal, pid_t target) {
    pid_t pid = target ? target : _pid;
    if (pid <= 0) return false;
    return kill(pid, signal) == 0;
}

void TermSession::Resize(int columns, int rows, pid_t alsoSignal) {
    winsize size{};
    size.ws_row = static_cast<unsigned short>(rows);
    size.ws_col = static_cast<unsigned short>(columns);
    ioctl(_master, TIOCSWINSZ, &size);
    _terminal->Resize(rows, columns);
    if (alsoSignal > 0) kill(alsoSignal, SIGWINCH);
}

std::optional<termios> TermSession::TerminalAttributes() const {
    termios attributes{};
    if (_master < 0 || tcgetattr(_master, &attributes) != 0) return std::nullopt;
    return attributes;
}

bool TermSession::ReapChild() {
    if (_exit) return true;
    int status = 0;
    pid_t r;
    do {
        r = waitpid(_pid, &status, WNOHANG);
    } while (r < 0 && errno == EINTR);
    if (r != _pid) return false;
    ExitStatus exit;
    if (WIFEXITED(status)) {
        exit.exited = true;
        exit.code = WEXITSTATUS(status);
    } else if (WIFSIGNALED(status)) {
        exit.signal = WTERMSIG(status);
    }
    _exit = exit;
    return true;
}

bool TermSession::Pump(Millis wait) {
    pollfd fds[2];
    nfds_t count = 0;
    if (!_hungUp) fds[count++] = {_master, POLLIN, 0};
    int pidIndex = -1;
    if (_pidfd >= 0 && !_exit) {
        pidIndex = int(count);
        fds[count++] = {_pidfd, POLLIN, 0};
    }
    int timeout = int(wait.count());
    // Without a pidfd the child's end is noticed by polling waitpid now and then.
    if (_pidfd < 0 && !_exit && (timeout < 0 || timeout > 20)) timeout = 20;
    // With nothing left to read, this only waits (for outside state a caller is watching).
    int ready = poll(count ? fds : nullptr, count, timeout);
    if (ready < 0) return false;

    bool progressed = false;
    if (!_hungUp && fds[0].revents) {
        char buffer[65536];
        ssize_t n = read(_master, buffer, sizeof buffer);
        if (n > 0) {
            std::string_view chunk(buffer, std::size_t(n));
            _output.append(chunk);
            _terminal->Feed(chunk);
            _lastOutput = Clock::now();
            progressed = true;
        } else if (n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR)) {
            // Every holder of the terminal's other side has closed it; nothing more will come.
            // The descriptor stays open so the terminal's settings can still be read.
            _hungUp = true;
            progressed = true;
        }
    }
    if ((pidIndex >= 0 && fds[pidIndex].revents) || (_pidfd < 0 && !_exit)) {
        if (ReapChild()) progressed = true;
    }
    return progressed;
}

bool TermSession::WaitUntil(const std::function<bool()>& condition, Millis deadline, Millis poll) {
    auto end = Clock::now() + deadline;
    while (true) {
        if (condition()) return true;
        auto now = Clock::now();
        if (now >= end) return false;
        auto left = std::chrono::duration_cast<Millis>(end - now);
        Pump(std::min(left, poll));
    }
}

bool TermSession::WaitFor(const ScreenPredicate& predicate, Millis deadline) {
    return WaitUntil([&] { return predicate(*_terminal); }, deadline, Millis(200));
}

bool TermSession::WaitForText(std::string_view text, Millis deadline) {
    return WaitFor([text](const VirtualTerminal& t) { return t.Contains(text); }, deadline);
}

bool TermSession::WaitForTextGone(std::string_view text, Millis deadline) {
    return WaitFor([text](const VirtualTerminal& t) { return !t.Contains(text); }, deadline);
}

bool TermSession::WaitForOutput(std::string_view bytes, Millis deadline) {
    return WaitUntil([&] { return _output.find(bytes) != std::string::npos; }, deadline, Millis(200));
}

bool TermSession::WaitForQuiet(Millis quiet, Millis deadline) {
    auto end = Clock::now() + deadline;
    _lastOutput = Clock::now();  // quiet is counted from the call, not from earlier output
    while (true) {
        auto now = Clock::now();
        if (now - _lastOutput >= quiet) return true;
        if (now >= end) return false;
        auto untilQuiet = std::chrono::duration_cast<Millis>(_lastOutput + quiet - now) + Millis(1);
        auto left = std::chrono::duration_cast<Millis>(end - now) + Millis(1);
        Pump(std::min(untilQuiet, left));
        if (_hungUp && _exit) return true;  // nobody can write any more
    }
}

std::optional<ExitStatus> TermSession::WaitExit(Millis deadline) {
    WaitUntil([this] { return _exit.has_value(); }, deadline, Millis(200));
    if (!_exit) return std::nullopt;
    // Take what the program wrote just before it ended.
    while (!_hungUp && Pump(Millis(0))) {
    }
    return _exit;
}

pid_t TermSession::WaitForDescendant(std::string_view name, Millis deadline) {
    pid_t found = 0;
    WaitUntil(
        [&] {
            found = ProcessTree::FindDescendant(_pid, name);
            return found != 0;
        },
        deadline, Millis(10));
    return found;
}

std::string TermSession::Dump() const {
    std::string dump = "screen " + std::to_string(_terminal->Columns()) + "x" +
                       std::to_string(_terminal->Rows()) + ":\n" + _terminal->ScreenText();
    dump += "process: " + (_exit ? _exit->Describe() : std::string("running")) + "\n";
    dump += "last output bytes: ";
    std::string tail = _output.size() > 200 ? _output.substr(_output.size() - 200) : _output;
    for (unsigned char c : tail) {
        if (c == 0x1b)
            dump += "\\e";
        else if (c < 0x20 || c == 0x7f) {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02x", c);
            dump += hex;
        } else
            dump += char(c);
    }
    return dump + "\n";
}

}  // namespace KovoTerm
