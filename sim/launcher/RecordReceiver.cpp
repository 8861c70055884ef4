#include "RecordReceiver.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

namespace KovoSim {

RecordReceiver::RecordReceiver(std::string socketPath, std::string logPath)
    : _socketPath(std::move(socketPath)) {
    struct sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (_socketPath.size() >= sizeof address.sun_path)
        throw std::system_error(ENAMETOOLONG, std::generic_category(), "record socket " + _socketPath);
    std::memcpy(address.sun_path, _socketPath.c_str(), _socketPath.size() + 1);
    _log = ::open(logPath.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    if (_log < 0) throw std::system_error(errno, std::generic_category(), "open " + logPath);
    _socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (_socket < 0 || (::unlink(_socketPath.c_str()),
                        ::bind(_socket, reinterpret_cast<sockaddr*>(&address), sizeof address)) != 0) {
        const int saved = errno;
        if (_socket >= 0) ::close(_socket);
        ::close(_log);
        throw std::system_error(saved, std::generic_category(), "bind " + _socketPath);
    }
    ::chmod(_socketPath.c_str(), 0666);
}

RecordReceiver::~RecordReceiver() {
    Drain();
    ::close(_socket);
    ::unlink(_socketPath.c_str());
    ::close(_log);
}

int RecordReceiver::Drain() {
    char buffer[kMaxRecord + 1];
    int count = 0;
    for (;;) {
        const ssize_t n = ::recv(_socket, buffer, kMaxRecord, 0);
        if (n < 0) {
            if (errno == EINTR) continue;
            return count;
        }
        buffer[n] = '\n';
        if (::write(_log, buffer, static_cast<size_t>(n) + 1) < 0) {
            // a full disk loses the record, not the host
        }
        ++count;
    }
}

}  // namespace KovoSim
