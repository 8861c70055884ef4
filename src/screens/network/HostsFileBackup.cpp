#include "network/HostsFileBackup.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "frames/Log.h"
#include "platform/hostctl/WholeFile.h"

namespace Kovo {

namespace {

bool IsRegularFile(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

// The reason alone, as the log lines quote it.
std::string Reason(const std::system_error& e) {
    return e.code().message();
}

}  // namespace

HostsFileBackup::~HostsFileBackup() {
    Unlock();
}

bool HostsFileBackup::Lock(std::string& error) {
    if (_lock >= 0) return true;
    const int fd = ::open(_paths.lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0) {
        error = std::strerror(errno);
        return false;
    }
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        ::close(fd);
        error = "another console is testing name resolution";
        return false;
    }
    _lock = fd;
    return true;
}

void HostsFileBackup::Unlock() {
    if (_lock >= 0) ::close(_lock);
    _lock = -1;
}

bool HostsFileBackup::Restore(std::string& error) {
    try {
        HostCtl::WriteWholeFile(_paths.hosts, HostCtl::ReadWholeFile(_paths.backup));
    } catch (const std::system_error& e) {
        error = Reason(e);
        return false;
    }
    // Gone only once the hosts file is whole on disk: a kill in between leaves a backup to put back again.
    if (::unlink(_paths.backup.c_str()) != 0 && errno != ENOENT) {
        error = std::strerror(errno);
        return false;
    }
    HostCtl::SyncDirectoryOf(_paths.backup);
    return true;
}

bool HostsFileBackup::PutBackLeftover() {
    std::string error;
    if (!IsRegularFile(_paths.backup) || !Lock(error)) return false;
    // Checked again under the lock: the console that held it may have put its backup back meanwhile.
    const bool leftover = IsRegularFile(_paths.backup);
    const bool restored = leftover && Restore(error);
    if (restored)
        LogInfo("Put back " + _paths.hosts + " from " + _paths.backup +
                " left by an interrupted resolve test");
    if (leftover && !restored) {
        LogError("failed to restore " + _paths.hosts + ": " + error);
        _stuck = true;
    }
    Unlock();
    return restored;
}

bool HostsFileBackup::TakeNameOut(HostCtl::Network::HostsFile& file, const std::string& name) {
    const std::string failedBackup = "failed to backup " + _paths.hosts + ": ";
    if (_stuck) {
        LogError(_paths.hosts + " was not put back after an earlier resolve test; it is left alone");
        return false;
    }
    std::string error;
    if (!Lock(error)) {
        LogError(failedBackup + error);
        return false;
    }
    // A backup nobody holds is the only whole copy: it goes back before a new one may be taken.
    if (IsRegularFile(_paths.backup) && !Restore(error)) {
        LogError("failed to restore " + _paths.hosts + ": " + error);
        _stuck = true;
        Unlock();
        return false;
    }
    try {
        HostCtl::WriteWholeFile(_paths.backup, HostCtl::ReadWholeFile(_paths.hosts));
    } catch (const std::system_error& e) {
        LogError(failedBackup + Reason(e));
        Unlock();
        return false;
    }
    try {
        _nameOut = file.RemoveEntryByHostName(name);
    } catch (const std::exception& e) {
        // An entry left in place would answer for the name servers and pass a test that should fail.
        LogFailure("Unable to take " + name + " out of " + _paths.hosts + ": ", e);
        _nameOut = true;  // the file may have been half rewritten in place: put the backup back
        PutBack();
        return false;
    }
    // Without an entry nothing is out, and nothing is put back over what the host may write meanwhile.
    if (!_nameOut) {
        if (::unlink(_paths.backup.c_str()) == 0) HostCtl::SyncDirectoryOf(_paths.backup);
        Unlock();
    }
    return true;
}

bool HostsFileBackup::PutBack() {
    if (!_nameOut) return true;
    std::string error;
    if (!Restore(error)) {
        LogError("failed to restore " + _paths.hosts + ": " + error);
        _stuck = true;
        return false;
    }
    _nameOut = false;
    Unlock();
    return true;
}

}  // namespace Kovo
