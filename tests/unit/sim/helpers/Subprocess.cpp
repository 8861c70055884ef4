#include "helpers/Subprocess.h"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace KovoSim::Test {
namespace {

using Clock = std::chrono::steady_clock;

int StatusOf(int status) {
    if (WIFEXITED(status)) return WEXITSTATUS(status);
    if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
    return -1;
}

[[noreturn]] void Exec(const std::vector<std::string>& argv) {
    std::vector<char*> args;
    for (const auto& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    ::execv(args[0], args.data());
    _exit(127);
}

}  // namespace

RunResult RunInHost(const std::string& launcher, const std::string& hostDir,
                    const std::vector<std::string>& command) {
    std::vector<std::string> argv = {launcher, "exec", hostDir, "--"};
    argv.insert(argv.end(), command.begin(), command.end());
    return RunProgram(argv);
}

RunResult RunProgram(const std::vector<std::string>& argv, const RunOptions& options) {
    int out[2], err[2];
    if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0) throw std::runtime_error("pipe");
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::dup2(out[1], 1);
        ::dup2(err[1], 2);
        // Keep the test runner's terminal out of it: a new session has no controlling terminal.
        ::setsid();
        if (options.uid != static_cast<uid_t>(-1)) {
            if (::setgroups(0, nullptr) != 0 || ::setgid(65534) != 0 || ::setuid(options.uid) != 0)
                _exit(126);
        }
        Exec(argv);
    }
    ::close(out[1]);
    ::close(err[1]);
    RunResult result;
    // Read both pipes alternately; children here print little, but never block on a full pipe.
    struct pollfd fds[2] = {{out[0], POLLIN, 0}, {err[0], POLLIN, 0}};
    int open = 2;
    while (open > 0) {
        if (::poll(fds, 2, -1) < 0 && errno != EINTR) break;
        for (int i = 0; i < 2; ++i) {
            if (fds[i].fd < 0 || !(fds[i].revents & (POLLIN | POLLHUP))) continue;
            char buffer[4096];
            const ssize_t n = ::read(fds[i].fd, buffer, sizeof buffer);
            if (n > 0) {
                (i == 0 ? result.out : result.err).append(buffer, static_cast<size_t>(n));
            } else {
                ::close(fds[i].fd);
                fds[i].fd = -1;
                --open;
            }
        }
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    result.status = StatusOf(status);
    return result;
}

bool WaitFor(const std::function<bool()>& condition, std::chrono::milliseconds deadline) {
    const auto end = Clock::now() + deadline;
    auto pause = std::chrono::milliseconds(1);
    while (!condition()) {
        if (Clock::now() >= end) return false;
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, std::chrono::milliseconds(50));
    }
    return true;
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

bool Exists(const std::string& path) {
    return ::access(path.c_str(), F_OK) == 0;
}

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kovo-sim-test.XXXXXX").string();
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp");
    _path = pattern;
    ::chmod(_path.c_str(), 0755);
}

TempDir::~TempDir() {
    std::error_code error;
    std::filesystem::remove_all(_path, error);
}

}  // namespace KovoSim::Test
