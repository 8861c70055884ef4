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
