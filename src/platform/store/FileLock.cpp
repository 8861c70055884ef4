#include "platform/store/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/hostctl/HostCtlException.h"

namespace ZenkCtl::Store {

FileLock::FileLock(const std::string& path, Mode mode) {
    _fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (_fd < 0 && (errno == EROFS || errno == EACCES)) {
        // A read-only disk still lets readers lock an existing file.
        _fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    }
    if (_fd < 0) {
        throw HostCtl::Lib::HostCtlException("Cannot open the host configuration lock " + path + ": " +
                                             std::strerror(errno));
    }
    const int op = mode == Mode::Shared ? LOCK_SH : LOCK_EX;
    while (::flock(_fd, op) != 0) {
        if (errno == EINTR) continue;
        const int err = errno;
        ::close(_fd);
        _fd = -1;
        throw HostCtl::Lib::HostCtlException("Cannot lock the host configuration " + path + ": " +
                                             std::strerror(err));
    }
}

FileLock::~FileLock() {
    if (_fd >= 0) ::close(_fd);  // closing the descriptor releases the lock
}

}  // namespace ZenkCtl::Store
