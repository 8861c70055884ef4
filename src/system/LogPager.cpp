#include "system/LogPager.h"

#include <curses.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <optional>

#include "app/Log.h"
#include "app/Startup.h"

extern char** environ;

namespace Kovo {

namespace {

// Sets LESSSECURE for the pager and puts the previous state back, however the pager ends.
class SecurePagerEnvironment {
  public:
    SecurePagerEnvironment() {
        if (const char* value = getenv("LESSSECURE")) _previous = value;
        setenv("LESSSECURE", "1", 1);
    }
    ~SecurePagerEnvironment() {
        if (_previous)
            setenv("LESSSECURE", _previous->c_str(), 1);
        else
            unsetenv("LESSSECURE");
    }
    SecurePagerEnvironment(const SecurePagerEnvironment&) = delete;
    SecurePagerEnvironment& operator=(const SecurePagerEnvironment&) = delete;

  private:
    std::optional<std::string> _previous;
};

// The console blocks its signals for the signal thread; the pager must get them the ordinary way.
int Spawn(const std::string& program, const std::string& file, pid_t& pid) {
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none, defaults;
    sigemptyset(&none);
    sigemptyset(&defaults);
    for (int signal : {SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGWINCH, SIGTSTP, SIGPIPE, SIGCHLD})
        sigaddset(&defaults, signal);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    const char* argv[] = {"less", "-cfP", LogPager::kPrompt, file.c_str(), nullptr};
    const int error =
        posix_spawn(&pid, program.c_str(), nullptr, &attributes, const_cast<char* const*>(argv), environ);
    posix_spawnattr_destroy(&attributes);
    return error;
}

}  // namespace

int LogPager::Show(const std::string& file) const {
    termios saved{};
    const bool haveSaved = tcgetattr(STDOUT_FILENO, &saved) == 0;
    if (haveSaved) tcsetattr(STDOUT_FILENO, TCSANOW, &orig_termios);
    clear();
    refresh();

    int result = -1;
    {
        SecurePagerEnvironment secure;
        pid_t pid = -1;
        if (const int error = Spawn(_program, file, pid); error != 0) {
            errno = error;
            LogErrno(("posix_spawn(" + _program + ")").c_str());
        } else {
            int status = 0;
            pid_t ended;
            while ((ended = waitpid(pid, &status, 0)) < 0 && errno == EINTR) {
            }
            if (ended == pid && WIFEXITED(status)) result = WEXITSTATUS(status);
        }
    }

    if (haveSaved) tcsetattr(STDOUT_FILENO, TCSANOW, &saved);
    // The pager may have taken the terminal's foreground; the console needs it for its keys. SIGTTOU is
    // held so that asking from the background cannot stop the console.
    sigset_t ttou, previous;
    sigemptyset(&ttou);
    sigaddset(&ttou, SIGTTOU);
    pthread_sigmask(SIG_BLOCK, &ttou, &previous);
    tcsetpgrp(STDOUT_FILENO, getpgid(0));
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    // The pager leaves the keypad in its own mode; switching it off and on sends ours again.
    keypad(stdscr, FALSE);
    keypad(stdscr, TRUE);
    return result;
}

}  // namespace Kovo
