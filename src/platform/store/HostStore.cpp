#include "platform/store/HostStore.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <mutex>

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/UniqueFd.h"
#include "platform/store/FileLock.h"

using HostCtl::UniqueFd;
using HostCtl::Lib::HostCtlException;
using nlohmann::json;

namespace ZenkCtl::Store {
namespace {

std::string Errno() {
    return std::strerror(errno);
}

std::string DirName(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    if (slash == 0) return "/";
    return path.substr(0, slash);
}

std::string BaseName(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

void WriteAll(int fd, const std::string& data, const std::string& path) {
    size_t done = 0;
    while (done < data.size()) {
        ssize_t n = ::write(fd, data.data() + done, data.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) throw HostCtlException("Cannot write the host configuration " + path + ": " + Errno());
        done += static_cast<size_t>(n);
    }
}

const char kTempInfix[] = ".tmp.";

// Every write replaces the file, so device, inode, modification time and size together change with it.
std::string GenerationOf(const struct stat& st) {
    return std::to_string(st.st_dev) + ":" + std::to_string(st.st_ino) + ":" +
           std::to_string(st.st_mtim.tv_sec) + "." + std::to_string(st.st_mtim.tv_nsec) + ":" +
           std::to_string(st.st_size);
}

}  // namespace

HostStore::HostStore(std::string path) : _path(std::move(path)) {}

std::shared_ptr<HostStore> HostStore::System() {
    static const std::shared_ptr<HostStore> store = std::make_shared<HostStore>(kHostPath);
    return store;
}

json HostStore::Parse(const std::string& text, const std::string& origin) {
    json document;
    try {
        document = json::parse(text);
    } catch (const json::exception& e) {
        throw HostCtlException("The host configuration " + origin + " is malformed: " + e.what());
    }
    if (!document.is_object()) {
        throw HostCtlException("The host configuration " + origin + " is not a JSON object");
    }
    return document;
}

std::shared_ptr<const json> HostStore::LoadLocked() const {
    // Under the lock no writer can replace the file between this look and the read below.
    struct stat st {};
    if (::stat(_path.c_str(), &st) == 0) {
        std::lock_guard<std::mutex> guard(_cacheMutex);
        if (_cached && _cachedGeneration == GenerationOf(st)) return _cached;
    }
    UniqueFd fd(::open(_path.c_str(), O_RDONLY | O_CLOEXEC));
    if (fd.Get() < 0) {
        if (errno == ENOENT) throw HostCtlException("The host configuration " + _path + " does not exist");
        throw HostCtlException("Cannot read the host configuration " + _path + ": " + Errno());
    }
    if (::fstat(fd.Get(), &st) != 0)
        throw HostCtlException("Cannot read the host configuration " + _path + ": " + Errno());
    std::string text;
    char buffer[65536];
    for (;;) {
        ssize_t n = ::read(fd.Get(), buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) throw HostCtlException("Cannot read the host configuration " + _path + ": " + Errno());
        if (n == 0) break;
        text.append(buffer, static_cast<size_t>(n));
    }
    if (text.empty()) throw HostCtlException("The host configuration " + _path + " is empty");
    auto document = std::make_shared<const json>(Parse(text, _path));
    std::lock_guard<std::mutex> guard(_cacheMutex);
    _cached = document;
    _cachedGeneration = GenerationOf(st);
    return document;
}

void HostStore::RemoveStaleTempFiles() const {
    // Only called under the exclusive lock: no other writer can own a temp file now, so every one left
    // is the remains of a writer that died between creating and renaming it.
    const std::string dir = DirName(_path);
    const std::string prefix = BaseName(_path) + kTempInfix;
    DIR* d = ::opendir(dir.c_str());
    if (d == nullptr) return;
    while (dirent* entry = ::readdir(d)) {
        if (std::strncmp(entry->d_name, prefix.c_str(), prefix.size()) == 0) {
            ::unlinkat(::dirfd(d), entry->d_name, 0);
        }
    }
    ::closedir(d);
}

void HostStore::WriteLocked(const json& document) {
    RemoveStaleTempFiles();
    const std::string text = document.dump(2) + "\n";
    std::string temp = _path + kTempInfix + "XXXXXX";
    UniqueFd fd(::mkostemp(temp.data(), O_CLOEXEC));
    if (fd.Get() < 0) throw HostCtlException("Cannot create a file beside " + _path + ": " + Errno());
    try {
        WriteAll(fd.Get(), text, temp);
        if (::fchmod(fd.Get(), 0644) != 0 || ::fsync(fd.Get()) != 0) {
            throw HostCtlException("Cannot write the host configuration " + _path + ": " + Errno());
        }
        if (::close(fd.Release()) != 0) {
            throw HostCtlException("Cannot write the host configuration " + _path + ": " + Errno());
        }
        if (::rename(temp.c_str(), _path.c_str()) != 0) {
            throw HostCtlException("Cannot replace the host configuration " + _path + ": " + Errno());
        }
    } catch (...) {
        ::unlink(temp.c_str());
        throw;
    }
    // The rename is only durable once the directory entry is.
    UniqueFd dir(::open(DirName(_path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir.Get() >= 0) ::fsync(dir.Get());
    // What was just written needs no parse on the next read.
    struct stat st {};
    std::lock_guard<std::mutex> guard(_cacheMutex);
    if (::stat(_path.c_str(), &st) == 0) {
        _cached = std::make_shared<const json>(document);
        _cachedGeneration = GenerationOf(st);
    } else {
        _cached.reset();
    }
}

json HostStore::Read() const {
    return *Snapshot();
}

std::shared_ptr<const json> HostStore::Snapshot() const {
    // Writers only ever rename a whole new file over the old one: a file that is still the one last read
    // needs no lock to be read again. Most reads are of an unchanged store, and take one stat.
    struct stat st {};
    if (::stat(_path.c_str(), &st) == 0) {
        std::lock_guard<std::mutex> guard(_cacheMutex);
        if (_cached && _cachedGeneration == GenerationOf(st)) return _cached;
    }
    FileLock lock(LockPath(), FileLock::Mode::Shared);
    return LoadLocked();
}

std::string HostStore::Generation() const {
    struct stat st {};
    if (::stat(_path.c_str(), &st) != 0) return {};
    return GenerationOf(st);
}

json HostStore::Get(const std::string& pointer) const {
    const auto document = Snapshot();
    try {
        const json::json_pointer ptr(pointer);
        return document->contains(ptr) ? document->at(ptr) : json();
    } catch (const json::exception& e) {
        throw HostCtlException("Invalid host configuration path " + pointer + ": " + e.what());
    }
}

void HostStore::Update(const std::function<void(json&)>& mutate) {
    FileLock lock(LockPath(), FileLock::Mode::Exclusive);
    const auto before = LoadLocked();
    json after = *before;
    try {
        mutate(after);
    } catch (const json::exception& e) {
        // A document of an unexpected shape is a host fault, not a program fault.
        throw HostCtlException(std::string("The host configuration cannot be changed: ") + e.what());
    }
    if (!after.is_object())
        throw HostCtlException("Refusing to store a host configuration that is not an object");
    if (after != *before) WriteLocked(after);
}

void HostStore::Replace(const json& document) {
    if (!document.is_object())
        throw HostCtlException("Refusing to store a host configuration that is not an object");
    FileLock lock(LockPath(), FileLock::Mode::Exclusive);
    WriteLocked(document);
}

}  // namespace ZenkCtl::Store
