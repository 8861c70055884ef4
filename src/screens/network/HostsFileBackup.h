#pragma once

#include <string>

#include "platform/hostctl/HostsFile.h"

namespace Kovo {

// The resolve test's copy of the hosts file. While the host's name is out of the hosts file the backup
// exists, and only then: a backup found with no console holding the lock is the only whole copy, left by
// a console that was killed, and is put back before anything else touches the file. A lock file, held
// from the backup to the put-back, tells a live console's backup from a leftover (the kernel drops the
// lock of a killed process). Not thread-safe: the network test serialises its callers.
class HostsFileBackup {
  public:
    struct Paths {
        std::string hosts = "/etc/hosts";
        std::string backup = "/etc/hosts.backup";
        std::string lock = "/run/lock/kovo-hosts.lock";
    };

    HostsFileBackup() = default;
    explicit HostsFileBackup(Paths paths) : _paths(std::move(paths)) {}
    ~HostsFileBackup();
    HostsFileBackup(const HostsFileBackup&) = delete;
    HostsFileBackup& operator=(const HostsFileBackup&) = delete;

    // At start-up: puts back a backup an ended console left. True when one was put back; a backup that
    // a running console's test holds is left to it.
    bool PutBackLeftover();
    // Backs the hosts file up and takes `name` out of it through `file`. False (logged) when the test
    // cannot run; the hosts file is then as it was.
    bool TakeNameOut(HostCtl::Network::HostsFile& file, const std::string& name);
    // The backup in place of the hosts file, then the backup removed. False (logged) when it cannot be
    // done: the backup then stays, the only whole copy, and no name is taken out again.
    bool PutBack();
    bool NameOut() const { return _nameOut; }
    // A backup that could not be put back: the file is left alone from then on.
    bool Stuck() const { return _stuck; }

  private:
    bool Lock(std::string& error);
    void Unlock();
    // The backup over the hosts file and gone; the reason in `error` when not.
    bool Restore(std::string& error);

    Paths _paths;
    int _lock = -1;
    bool _nameOut = false;
    bool _stuck = false;
};

}  // namespace Kovo
