#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace KovoSim::Test {

// Runs a program to its end, collecting its output.
struct RunResult {
    int status = -1;  // exit status, or 128 + signal
    std::string out;
    std::string err;
};
struct RunOptions {
    uid_t uid = static_cast<uid_t>(-1);  // run as this user (and its group 65534) when set
};
RunResult RunProgram(const std::vector<std::string>& argv, const RunOptions& options = {});
// A command run inside the simulated host whose disk is `hostDir`, through `launcher exec`.
RunResult RunInHost(const std::string& launcher, const std::string& hostDir,
                    const std::vector<std::string>& command);

// A program on a new pseudo-terminal, as an operator's terminal would run it (its own session and
// foreground process group, so the terminal's Ctrl-C reaches the whole group).
class PtyProcess {
  public:
    explicit PtyProcess(const std::vector<std::string>& argv);
    ~PtyProcess();
    PtyProcess(const PtyProcess&) = delete;
    PtyProcess& operator=(const PtyProcess&) = delete;

    void Write(const std::string& bytes);
    // Reads what the program printed until the predicate holds on all of it or the deadline passes.
    bool ReadUntil(const std::function<bool(const std::string&)>& done, std::chrono::milliseconds deadline);
    const std::string& Output() const { return _output; }
    // Exit status (or 128 + signal); -1 when it did not end before the deadline.
    int Wait(std::chrono::milliseconds deadline);
    pid_t Pid() const { return _pid; }

  private:
    pid_t _pid = -1;
    int _master = -1;
    int _status = -1;
    std::string _output;
};

bool WaitFor(const std::function<bool()>& condition,
             std::chrono::milliseconds deadline = std::chrono::milliseconds(20000));

std::string ReadFile(const std::string& path);
bool Exists(const std::string& path);

// A fresh directory under the system's temporary directory, removed with everything in it.
class TempDir {
  public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::string& Path() const { return _path; }
    std::string operator/(const std::string& name) const { return _path + "/" + name; }

  private:
    std::string _path;
};

}  // namespace KovoSim::Test
