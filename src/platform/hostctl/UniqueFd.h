#pragma once

#include <unistd.h>

namespace HostCtl {

// Owns a file descriptor, so that every early return and throw closes it.
class UniqueFd {
  public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : _fd(fd) {}
    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;
    ~UniqueFd() { Close(); }

    int Get() const { return _fd; }
    void Reset(int fd) {
        Close();
        _fd = fd;
    }
    void Close() {
        if (_fd >= 0) ::close(_fd);
        _fd = -1;
    }
    // The descriptor, no longer owned.
    int Release() {
        const int fd = _fd;
        _fd = -1;
        return fd;
    }

  private:
    int _fd = -1;
};

}  // namespace HostCtl
