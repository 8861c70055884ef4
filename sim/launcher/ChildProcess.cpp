#include "ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace KovoSim {

pid_t ChildProcess::Spawn(const std::vector<std::string>& argv, bool background) {
    if (argv.empty()) return -1;
    // Built before the fork: the child only calls what is safe between fork and exec.
    std::vector<char*> args;
    for (const auto& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    const pid_t pid = ::fork();
    if (pid < 0) return -1;
    if (pid == 0) {
        const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
        ::dup2(null, 0);
        ::dup2(null, 1);
        ::dup2(null, 2);
        sigset_t none;
        sigemptyset(&none);
        ::sigprocmask(SIG_SETMASK, &none, nullptr);
        if (background) ::setsid();
        ::execvp(args[0], args.data());
        _exit(127);
    }
    return pid;
}

int ChildProcess::Wait(pid_t pid) {
    if (pid < 0) return -1;
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

int ChildProcess::Run(const std::vector<std::string>& argv) {
    return Wait(Spawn(argv, false));
}

void ChildProcess::RunAll(const std::vector<std::vector<std::string>>& commands) {
    std::vector<pid_t> pids;
    for (const auto& argv : commands) pids.push_back(Spawn(argv, false));
    for (pid_t pid : pids) Wait(pid);
}

}  // namespace KovoSim
