#include "OuterPid.h"

#include <fcntl.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>

namespace KovoSim {
namespace {

std::string ReadAt(int dir, const std::string& path) {
    const int fd = ::openat(dir, path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return {};
    std::string text;
    char buffer[4096];
    ssize_t n;
    while ((n = ::read(fd, buffer, sizeof buffer)) > 0) text.append(buffer, static_cast<size_t>(n));
    ::close(fd);
    return text;
}

}  // namespace

pid_t OuterPid::OfChild(int machineProc, pid_t innerPid) {
    char self[32] = {};
    if (::readlinkat(machineProc, "self", self, sizeof self - 1) <= 0) return -1;
    const std::string me = self;
    std::istringstream children(ReadAt(machineProc, me + "/task/" + me + "/children"));
    long candidate;
    while (children >> candidate) {
        std::istringstream status(ReadAt(machineProc, std::to_string(candidate) + "/status"));
        std::string line;
        while (std::getline(status, line)) {
            if (line.rfind("NSpid:", 0) != 0) continue;
            std::istringstream ids(line.substr(6));
            long id = -1, last = -1;
            while (ids >> id) last = id;
            if (last == innerPid) return static_cast<pid_t>(candidate);
        }
    }
    return -1;
}

}  // namespace KovoSim
