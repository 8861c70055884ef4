#include "CommandLog.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>

#include <nlohmann/json.hpp>

namespace KovoSim::Host {

void CommandLog::Record(const std::string& program, const std::string& programPath,
                        const std::vector<std::string>& argv, const std::string& logPath) {
    const uid_t uid = ::getuid();
    const struct passwd* account = ::getpwuid(uid);
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    nlohmann::json line = {
        {"time", std::chrono::duration_cast<std::chrono::microseconds>(now).count() / 1e6},
        {"program", program},
        {"path", programPath},
        {"argv", argv},
        {"uid", uid},
        {"user", account ? account->pw_name : std::to_string(uid)},
    };
    const std::string text = line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(logPath).parent_path(), error);
    const int fd = ::open(logPath.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) return;  // a host without its log still runs its programs
    // One write with O_APPEND: concurrent programs never interleave within a line.
    if (::write(fd, text.data(), text.size()) < 0) {
    }
    ::close(fd);
}

}  // namespace KovoSim::Host
