#include "SyslogReceiver.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <system_error>
#include <vector>

#include "SyslogLine.h"

namespace KovoSim {
namespace {

std::string HostName() {
    char name[256] = {};
    if (::gethostname(name, sizeof name - 1) != 0) return "-";
    return name;
}

}  // namespace

SyslogReceiver::SyslogReceiver(std::string socketPath, std::string logPath)
    : _socketPath(std::move(socketPath)), _logPath(std::move(logPath)) {
    struct sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (_socketPath.size() >= sizeof address.sun_path)
        throw std::system_error(ENAMETOOLONG, std::generic_category(), "syslog socket " + _socketPath);
    std::memcpy(address.sun_path, _socketPath.c_str(), _socketPath.size() + 1);

    _log = ::open(_logPath.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    if (_log < 0) throw std::system_error(errno, std::generic_category(), "open " + _logPath);
    _socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (_socket < 0) {
        const int saved = errno;
        ::close(_log);
        throw std::system_error(saved, std::generic_category(), "syslog socket");
    }
    ::unlink(_socketPath.c_str());
    if (::bind(_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        const int saved = errno;
        ::close(_socket);
        ::close(_log);
        throw std::system_error(saved, std::generic_category(), "bind " + _socketPath);
    }
    ::chmod(_socketPath.c_str(), 0666);
}

SyslogReceiver::~SyslogReceiver() {
    if (_socket >= 0) {
        Drain();
        ::close(_socket);
        ::unlink(_socketPath.c_str());
    }
    if (_log >= 0) ::close(_log);
}

int SyslogReceiver::Drain() {
    // Large enough for any message the C library sends; a longer one is cut, never split.
    std::vector<char> buffer(64 * 1024);
    int count = 0;
    for (;;) {
        const ssize_t n = ::recv(_socket, buffer.data(), buffer.size(), 0);
        if (n < 0) {
            if (errno == EINTR) continue;
            break;  // EAGAIN: nothing more waiting
        }
        Append(SyslogLine::Format(std::string_view(buffer.data(), static_cast<size_t>(n)),
                                  std::chrono::system_clock::now(), HostName()));
        ++count;
    }
    return count;
}

void SyslogReceiver::WriteLocal(int priority, std::string_view tagAndMessage) {
    const std::string datagram = "<" + std::to_string(priority) + ">" + std::string(tagAndMessage);
    Append(SyslogLine::Format(datagram, std::chrono::system_clock::now(), HostName()));
}

void SyslogReceiver::Append(const std::string& line) {
    // One write per line with O_APPEND: readers never see half a line from us.
    size_t done = 0;
    while (done < line.size()) {
        const ssize_t n = ::write(_log, line.data() + done, line.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return;  // a full disk loses the line, not the host
        done += static_cast<size_t>(n);
    }
}

}  // namespace KovoSim
