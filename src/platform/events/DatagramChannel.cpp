#include "platform/events/DatagramChannel.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace ZenkCtl::Events {

DatagramChannel::~DatagramChannel() {
    Close();
}

int DatagramChannel::Connect(const std::string& socketPath) {
    Close();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (socketPath.size() >= sizeof address.sun_path) return ENAMETOOLONG;
    std::memcpy(address.sun_path, socketPath.c_str(), socketPath.size() + 1);
    _fd = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (_fd < 0) return errno;
    if (::connect(_fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const int err = errno;
        Close();
        return err;
    }
    return 0;
}

int DatagramChannel::Send(const std::string& record) {
    if (_fd < 0) return ENOTCONN;
    const size_t length = record.size() < kMaxRecord ? record.size() : kMaxRecord;
    for (;;) {
        if (::send(_fd, record.data(), length, MSG_NOSIGNAL) >= 0) return 0;
        if (errno != EINTR) return errno;
    }
}

void DatagramChannel::Close() {
    if (_fd >= 0) ::close(_fd);
    _fd = -1;
}

}  // namespace ZenkCtl::Events
