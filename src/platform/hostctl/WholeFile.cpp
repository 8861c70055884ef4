#include "platform/hostctl/WholeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace HostCtl {

namespace {

[[noreturn]] void Fail(const char* what, const std::string& path, int error) {
    throw std::system_error(error, std::generic_category(), std::string(what) + " " + path);
}

// Writes all of `text` to `fd` and syncs it; the errno of the first failure, or 0.
int WriteAllAndSync(int fd, const std::string& text) {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return errno;
        if (n == 0) return EIO;
        done += static_cast<size_t>(n);
    }
    return ::fsync(fd) == 0 ? 0 : errno;
}

std::string DirectoryOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

void WriteInPlace(const std::string& path, const std::string& text) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    if (fd < 0) Fail("Cannot write", path, errno);
    const int error = WriteAllAndSync(fd, text);
    ::close(fd);
    if (error != 0) Fail("Cannot write", path, error);
}

}  // namespace

void WriteWholeFile(const std::string& path, const std::string& text) {
    const std::string temp = path + ".kovo-new";
    struct stat found {};
    const bool exists = ::stat(path.c_str(), &found) == 0;
    const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) Fail("Cannot write", path, errno);
    int error = WriteAllAndSync(fd, text);
    if (error == 0 && exists && ::fchmod(fd, found.st_mode & 07777) != 0) error = errno;
    if (::close(fd) != 0 && error == 0) error = errno;
    if (error == 0 && ::rename(temp.c_str(), path.c_str()) != 0) error = errno;
    if (error != 0) ::unlink(temp.c_str());
    if (error == EBUSY || error == EXDEV) return WriteInPlace(path, text);
    if (error != 0) Fail("Cannot write", path, error);
    SyncDirectoryOf(path);
}

std::string ReadWholeFile(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) Fail("Cannot read", path, errno);
    std::string text;
    char buffer[8192];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            const int error = errno;
            ::close(fd);
            Fail("Cannot read", path, error);
        }
        if (n == 0) break;
        text.append(buffer, static_cast<size_t>(n));
    }
    ::close(fd);
    return text;
}

void SyncDirectoryOf(const std::string& path) {
    const int fd = ::open(DirectoryOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    ::fsync(fd);
    ::close(fd);
}

}  // namespace HostCtl
