#include "network/NetworkTest.h"

#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <system_error>
#include <thread>

#include "frames/Log.h"
#include "network/HostsFileBackup.h"
#include "network/LinkLocal.h"
#include "platform/hostctl/Ipv6Address.h"
#include "platform/hostctl/ShellWords.h"

namespace Kovo {

namespace {

// Who may touch the hosts file. A resolve test takes the host's name out of it; until the backup is put
// back the name is out, and an ending console puts it back itself. Only one test at a time may have a
// name out, or the second would back up a file already missing the first's name: within this console
// the guard sees to that, and the backup's lock keeps out the tests of other consoles.
struct HostsGuard {
    std::mutex mutex;
    std::condition_variable idle;
    HostsFileBackup backup;
    bool ending = false;  // no test may take a name out any more
};

// Never destroyed: a test thread may still be running while the process ends.
HostsGuard& Guard() {
    static auto* guard = new HostsGuard;
    return *guard;
}

bool TakeNameOut(HostsGuard& guard, HostAccess& host, const std::string& name) {
    try {
        return guard.backup.TakeNameOut(*host.HostsFile(), name);
    } catch (const std::exception& e) {
        LogFailure("Unable to take " + name + " out of /etc/hosts: ", e);
        return false;
    }
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
        guard.idle.wait(lock,
                        [&] { return !guard.backup.NameOut() || guard.backup.Stuck() || guard.ending; });
        if (guard.ending || !TakeNameOut(guard, host, name)) return 1;
    }
    addrinfo* found = nullptr;
    const bool resolved = ::getaddrinfo(name.c_str(), nullptr, nullptr, &found) == 0;
    if (found) ::freeaddrinfo(found);
    {
        std::lock_guard lock(guard.mutex);
        // The ending console may have put it back already.
        guard.backup.PutBack();
    }
    guard.idle.notify_all();
    return resolved ? 0 : 1;
}

bool NetworkTest::PutBackLeftoverHosts() {
    HostsGuard& guard = Guard();
    std::lock_guard lock(guard.mutex);
    return guard.backup.PutBackLeftover();
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
    if (guard.backup.NameOut() && guard.backup.PutBack())
        LogInfo("Put back /etc/hosts after an interrupted resolve test");
    guard.idle.notify_all();
}

}  // namespace Kovo
