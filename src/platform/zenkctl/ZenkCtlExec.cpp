#include "platform/zenkctl/ZenkCtlExec.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <thread>

#include "platform/zenkctl/Log.h"

namespace ZenkCtl::Util {
namespace {

void LogLines(int fd) {
    std::string pending;
    char buffer[4096];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        pending.append(buffer, static_cast<size_t>(n));
        for (size_t nl; (nl = pending.find('\n')) != std::string::npos; pending.erase(0, nl + 1)) {
            Log_Info("%s", pending.substr(0, nl).c_str());
        }
    }
    if (!pending.empty()) Log_Info("%s", pending.c_str());
}

}  // namespace

int ZenkCtl_Exec(const std::string& command, bool logOutput, bool wait) {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    int pipeFds[2] = {-1, -1};
    const bool capture = logOutput && wait;
    if (capture && ::pipe2(pipeFds, O_CLOEXEC) != 0) Log_Error("pipe() failed: %s", std::strerror(errno));
    if (capture && pipeFds[1] >= 0) {
        posix_spawn_file_actions_adddup2(&actions, pipeFds[1], 1);
        posix_spawn_file_actions_adddup2(&actions, pipeFds[1], 2);
    } else {
        posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    }
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    // Every command in a session of its own: no key at the console's terminal interrupts it.
    const short flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID;
    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);  // the caller blocks signals for its signal thread
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setflags(&attributes, flags);

    char sh[] = "sh", dashC[] = "-c";
    std::string line = command;
    char* argv[] = {sh, dashC, line.data(), nullptr};
    char path[] = "PATH=/bin:/sbin:/usr/bin:/usr/sbin";
    char* envp[] = {path, nullptr};
    pid_t pid = -1;
    const int rc = posix_spawn(&pid, "/bin/sh", &actions, &attributes, argv, envp);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (pipeFds[1] >= 0) ::close(pipeFds[1]);
    if (rc != 0) {
        if (pipeFds[0] >= 0) ::close(pipeFds[0]);
        Log_Error("Cannot run \"%s\": %s", command.c_str(), std::strerror(rc));
        return -1;
    }
    if (pipeFds[0] >= 0) {
        LogLines(pipeFds[0]);
        ::close(pipeFds[0]);
    }
    if (!wait) {
        // Reap it in the background so it never lingers as a zombie of a long-lived console.
        std::thread([pid] {
            int ignored = 0;
            while (::waitpid(pid, &ignored, 0) < 0 && errno == EINTR) {
            }
        }).detach();
        return 0;
    }
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace ZenkCtl::Util
