#include "network/NetworkTest.h"

#include <netdb.h>
#include <sys/socket.h>

#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <mutex>
#include <system_error>
#include <thread>

#include "network/LinkLocal.h"
#include "network/NetworkLog.h"
#include "platform/hostctl/Ipv6Address.h"
#include "platform/zenkctl/HostsFile.h"

namespace Kovo {

namespace {

namespace fs = std::filesystem;

constexpr const char* kHosts = "/etc/hosts";
constexpr const char* kBackup = "/etc/hosts.backup";

// Who may touch the hosts file. A resolve test takes the host's name out of it; until the test puts
// the backup back, that name is "in flight", and the ending console puts it back itself. Only one test
// at a time may have a name out, or the second would back up a file already missing the first's name.
struct HostsGuard {
    std::mutex mutex;
    std::condition_variable idle;
    bool inFlight = false;
    bool ending = false;
};

// Never destroyed: a test thread may still be running while the process ends.
HostsGuard& Guard() {
    static auto* guard = new HostsGuard;
    return *guard;
}

// Called with the guard held.
void PutBackHosts() {
    std::error_code error;
    fs::copy_file(kBackup, kHosts, fs::copy_options::overwrite_existing, error);
    if (error) LogError(std::string("failed to restore /etc/hosts: ") + error.message());
    Guard().inFlight = false;
}

// Takes `name` out of the hosts file after backing the file up; false (logged) when the test cannot run.
bool TakeNameOut(const std::string& name) {
    HostsGuard& guard = Guard();
    std::unique_lock lock(guard.mutex);
    guard.idle.wait(lock, [&] { return !guard.inFlight || guard.ending; });
    if (guard.ending) return false;
    std::error_code error;
    fs::copy_file(kHosts, kBackup, fs::copy_options::overwrite_existing, error);
    if (error) {
        LogError(std::string("failed to backup /etc/hosts: ") + error.message());
        return false;
    }
    guard.inFlight = true;
    try {
        ZenkCtl::Network::HostsFile(kHosts).RemoveEntryByHostName(name);
    } catch (const std::exception& e) {
        // An entry left in place would answer for the name servers and pass a test that should fail.
        LogFailure("Unable to take " + name + " out of /etc/hosts: ", e);
        PutBackHosts();
        return false;
    }
    return true;
}

void PutNameBack() {
    HostsGuard& guard = Guard();
    {
        std::lock_guard lock(guard.mutex);
        // The ending console may have put it back already.
        if (guard.inFlight) PutBackHosts();
    }
    guard.idle.notify_all();
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
    return std::string("/bin/zenkping -c 3 ") + (interface.empty() ? "" : "-I ") + interface + " " + target;
}

TestResult NetworkTest::StartPing(HostAccess& host, const std::string& command) {
    return StartThread([&host, command] { return host.Exec(command) == 0 ? 0 : 1; });
}

int NetworkTest::Resolve(const std::string& name) {
    if (!TakeNameOut(name)) return 1;
    addrinfo* found = nullptr;
    const bool resolved = ::getaddrinfo(name.c_str(), nullptr, nullptr, &found) == 0;
    if (found) ::freeaddrinfo(found);
    PutNameBack();
    return resolved ? 0 : 1;
}

TestResult NetworkTest::StartResolve(const std::string& name) {
    static std::once_flag registered;
    std::call_once(registered, [] { std::atexit(RestoreHostsForExit); });
    return StartThread([name] { return Resolve(name); });
}

void NetworkTest::RestoreHostsForExit() {
    HostsGuard& guard = Guard();
    std::lock_guard lock(guard.mutex);
    guard.ending = true;
    if (!guard.inFlight) return;
    PutBackHosts();
    LogInfo("Put back /etc/hosts after an interrupted resolve test");
    guard.idle.notify_all();
}

}  // namespace Kovo
