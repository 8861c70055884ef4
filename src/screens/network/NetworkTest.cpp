#include "network/NetworkTest.h"

#include <fcntl.h>
#include <netdb.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <mutex>
#include <system_error>
#include <thread>

#include "network/LinkLocal.h"
#include "network/NetworkLog.h"
#include "platform/hostctl/HostsFile.h"
#include "platform/hostctl/Ipv6Address.h"
#include "platform/hostctl/ShellWords.h"

namespace Kovo {

namespace {

namespace fs = std::filesystem;

constexpr const char* kHosts = "/etc/hosts";
constexpr const char* kBackup = "/etc/hosts.backup";

// Who may touch the hosts file. A resolve test takes the host's name out of it; until the backup is put
// back the name is "in flight", and an ending console puts it back itself. Only one test at a time may
// have a name out, or the second would back up a file already missing the first's name: within this
// console the guard sees to that, and a lock on the backup keeps out the tests of other consoles.
struct HostsGuard {
    std::mutex mutex;
    std::condition_variable idle;
    bool inFlight = false;
    bool ending = false;  // no test may take a name out any more
    bool stuck = false;   // the backup could not be put back: it is the only whole copy
    int backupLock = -1;
};

// Never destroyed: a test thread may still be running while the process ends.
HostsGuard& Guard() {
    static auto* guard = new HostsGuard;
    return *guard;
}

// The functions below are called with the guard held.

void ReleaseBackup(HostsGuard& guard) {
    if (guard.backupLock >= 0) ::close(guard.backupLock);
    guard.backupLock = -1;
}

// The backup in place of the hosts file, in one rename so that no reader sees half a file. False
// (logged) when it cannot be done; the backup then stays locked and no test touches the file again.
bool PutBackHosts(HostsGuard& guard) {
    const std::string temp = std::string(kHosts) + ".kovo-restore";
    std::error_code error;
    fs::copy_file(kBackup, temp, fs::copy_options::overwrite_existing, error);
    if (!error) fs::rename(temp, kHosts, error);
    if (error) {
        LogError(std::string("failed to restore /etc/hosts: ") + error.message());
        guard.stuck = true;
        return false;
    }
    guard.inFlight = false;
    ReleaseBackup(guard);
    return true;
}

// Backs the hosts file up and takes `name` out of it; false (logged) when the test cannot run.
bool TakeNameOut(HostsGuard& guard, HostAccess& host, const std::string& name) {
    if (guard.stuck) {
        LogError("/etc/hosts was not put back after an earlier resolve test; it is left alone");
        return false;
    }
    const int lock = ::open(kBackup, O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (lock < 0) {
        LogError(std::string("failed to backup /etc/hosts: ") + std::strerror(errno));
        return false;
    }
    if (::flock(lock, LOCK_EX | LOCK_NB) != 0) {
        ::close(lock);
        LogError("failed to backup /etc/hosts: another console is testing name resolution");
        return false;
    }
    guard.backupLock = lock;
    std::error_code error;
    fs::copy_file(kHosts, kBackup, fs::copy_options::overwrite_existing, error);
    if (error) {
        LogError(std::string("failed to backup /etc/hosts: ") + error.message());
        ReleaseBackup(guard);
        return false;
    }
    try {
        guard.inFlight = host.HostsFile()->RemoveEntryByHostName(name);
    } catch (const std::exception& e) {
        // An entry left in place would answer for the name servers and pass a test that should fail.
        LogFailure("Unable to take " + name + " out of /etc/hosts: ", e);
        ReleaseBackup(guard);
        return false;
    }
    // Without an entry nothing is out, and nothing is put back over what the host may write meanwhile.
    if (!guard.inFlight) ReleaseBackup(guard);
    return true;
}

// Runs `work` on a thread nobody joins; whatever it throws counts as a failure, never as an end of the
// console.
TestResult StartThread(std::function<int32_t()> work) {
    auto result = std::make_shared<std::atomic<int32_t>>(kTestRunning);
    try {
        std::thread([result, work = std::move(work)] {
            int32_t status = 1;
            try {
                status = work();
            } catch (...) {
                status = 1;
            }
            result->store(status);
        }).detach();
    } catch (const std::system_error& e) {
        LogFailure("Unable to start a network test: ", e);
        result->store(1);
    }
    return result;
}

}  // namespace

std::string NetworkTest::PingTarget(const std::string& address, const std::string& interface) {
    if (interface.empty() || !HostCtl::Network::Ipv6Address::IsValidAddress(address)) return address;
    return IsLinkLocalByBytes(HostCtl::Network::Ipv6Address(address)) ? address + "%" + interface : address;
}

std::string NetworkTest::PingCommand(const std::string& interface, const std::string& target) {
    // The interface and the target come from the host's configuration; a shell may read this line.
    using HostCtl::QuoteShellWord;
    return std::string("/bin/zenkping -c 3 ") + (interface.empty() ? "" : "-I " + QuoteShellWord(interface)) +
           " " + QuoteShellWord(target);
}

TestResult NetworkTest::StartPing(HostAccess& host, const std::string& command) {
    return StartThread([&host, command] { return host.Exec(command) == 0 ? 0 : 1; });
}

int NetworkTest::Resolve(HostAccess& host, const std::string& name) {
    HostsGuard& guard = Guard();
    {
        std::unique_lock lock(guard.mutex);
        guard.idle.wait(lock, [&] { return !guard.inFlight || guard.ending || guard.stuck; });
        if (guard.ending || !TakeNameOut(guard, host, name)) return 1;
    }
    addrinfo* found = nullptr;
    const bool resolved = ::getaddrinfo(name.c_str(), nullptr, nullptr, &found) == 0;
    if (found) ::freeaddrinfo(found);
    {
        std::lock_guard lock(guard.mutex);
        // The ending console may have put it back already.
        if (guard.inFlight) PutBackHosts(guard);
    }
    guard.idle.notify_all();
    return resolved ? 0 : 1;
}

TestResult NetworkTest::StartResolve(HostAccess& host, const std::string& name) {
    static std::once_flag registered;
    std::call_once(registered, [] { std::atexit(RestoreHostsForExit); });
    return StartThread([&host, name] { return Resolve(host, name); });
}

void NetworkTest::RestoreHostsForExit() {
    HostsGuard& guard = Guard();
    std::lock_guard lock(guard.mutex);
    guard.ending = true;
    if (guard.inFlight && PutBackHosts(guard))
        LogInfo("Put back /etc/hosts after an interrupted resolve test");
    guard.idle.notify_all();
}

}  // namespace Kovo
