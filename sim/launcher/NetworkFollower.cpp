#include "NetworkFollower.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <sys/inotify.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <thread>

#include "ChildProcess.h"
#include "HostFiles.h"
#include "HostNetwork.h"
#include "host/SimulationSchema.h"
#include "platform/store/HostStore.h"
#include "platform/store/StoreSchema.h"

namespace KovoSim {

namespace Schema = ZenkCtl::Store::Schema;
using nlohmann::json;
using Clock = std::chrono::steady_clock;

NetworkState NetworkState::Of(const json& store, const json& scenario) {
    NetworkState state;
    state.addresses = HostNetwork::AnsweringAddresses(store, scenario);
    state.listen = HostNetwork::NameServerAddresses(store, scenario);
    state.silent = HostNetwork::SilentNameServers(store);
    state.names = HostNetwork::DnsNames(store, scenario);
    state.hosts = HostFiles::Hosts(store);
    const json::json_pointer saved("/network/dns/saved");
    if (store.is_object() && store.contains(saved)) state.saved = store.at(saved);
    return state;
}

NetworkChanges NetworkChanges::Between(const NetworkState& was, const NetworkState& now,
                                       const std::vector<std::string>& kept) {
    NetworkChanges changes;
    const std::set<std::string> before(was.addresses.begin(), was.addresses.end());
    const std::set<std::string> after(now.addresses.begin(), now.addresses.end());
    const std::set<std::string> keep(kept.begin(), kept.end());
    for (const auto& address : now.addresses)
        if (!before.count(address) && !HostNetwork::IsLoopback(address)) changes.add.push_back(address);
    for (const auto& address : was.addresses)
        if (!after.count(address) && !keep.count(address) && !HostNetwork::IsLoopback(address))
            changes.remove.push_back(address);
    const std::set<std::string> silentBefore(was.silent.begin(), was.silent.end());
    const std::set<std::string> silentAfter(now.silent.begin(), now.silent.end());
    for (const auto& address : now.silent)
        if (!silentBefore.count(address)) changes.hold.push_back(address);
    for (const auto& address : was.silent)
        if (!silentAfter.count(address)) changes.release.push_back(address);
    changes.restartNameServer = was.listen != now.listen || was.names != now.names;
    changes.writeHosts = was.hosts != now.hosts;
    changes.writeNameFiles = was.saved != now.saved;
    return changes;
}

namespace {

constexpr auto kSafetyPoll = std::chrono::seconds(1);
constexpr const char* kBatch = "/run/kovo-sim/network.batch";
constexpr auto kNameServerStart = std::chrono::seconds(5);
constexpr auto kNameServerStop = std::chrono::seconds(2);

// An address with UDP port 53 as the kernel lists a socket's local end: each 32-bit word of the address
// in the host's byte order, in hexadecimal.
std::string DnsPortEntry(const std::string& address) {
    unsigned char bytes[16] = {};
    const bool v4 = ::inet_pton(AF_INET, address.c_str(), bytes) == 1;
    if (!v4 && ::inet_pton(AF_INET6, address.c_str(), bytes) != 1) return {};
    std::string entry;
    for (int word = 0; word < (v4 ? 1 : 4); ++word) {
        std::uint32_t value;
        std::memcpy(&value, bytes + 4 * word, sizeof value);
        char hex[9];
        std::snprintf(hex, sizeof hex, "%08X", value);
        entry += hex;
    }
    return entry + ":0035";
}

// Whether UDP port 53 of every one of `addresses` is taken in this network namespace. By address: the
// silent name servers' ports are taken too, by the follower.
bool ListensOnDnsPort(const std::vector<std::string>& addresses) {
    std::set<std::string> taken;
    for (const char* table : {"/proc/net/udp", "/proc/net/udp6"}) {
        std::ifstream file(table);
        std::string line;
        std::getline(file, line);  // header
        while (std::getline(file, line)) {
            std::istringstream fields(line);
            std::string slot, local;
            fields >> slot >> local;
            taken.insert(local);
        }
    }
    for (const auto& address : addresses)
        if (!taken.count(DnsPortEntry(address))) return false;
    return true;
}

// Those of `wanted` that `from` holds, moved out of it.
std::vector<std::string> Take(std::vector<std::string>& from, const std::vector<std::string>& wanted) {
    std::vector<std::string> taken;
    for (const auto& address : wanted) {
        const auto at = std::find(from.begin(), from.end(), address);
        if (at == from.end()) continue;
        taken.push_back(address);
        from.erase(at);
    }
    return taken;
}

std::string Join(const std::vector<std::string>& items) {
    std::string text;
    for (const auto& item : items) text += (text.empty() ? "" : ", ") + item;
    return text;
}

int Milliseconds(Clock::duration duration) {
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(duration).count();
    return static_cast<int>(std::clamp<long long>(ms, 0, INT_MAX));
}

class Follower {
  public:
    explicit Follower(json scenario)
        : _scenario(std::move(scenario)), _kept(HostNetwork::Texts(_scenario, Simulation::kAnswering)) {}

    // Watch first, then read: a change made meanwhile is seen by Follow().
    void Watch() {
        _watch = ::inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
        if (_watch >= 0 && ::inotify_add_watch(_watch, "/etc/halvor",
                                               IN_MOVED_TO | IN_CLOSE_WRITE | IN_CREATE | IN_DELETE) < 0) {
            ::close(_watch);
            _watch = -1;
        }
        if (_watch < 0)
            ::syslog(LOG_WARNING, "cannot watch /etc/halvor (%m); looking for changes every second");
    }

    // Everything from the store, as a boot does: addresses, name server, name and resolver files.
    void Boot() {
        ChildProcess::Run({"ip", "addr", "flush", "dev", "lo", "scope", "global"});
        json store;
        if (!Read(store)) return;
        const NetworkState now = NetworkState::Of(store, _scenario);
        NetworkChanges changes = NetworkChanges::Between(NetworkState{}, now, _kept);
        changes.writeHosts = changes.writeNameFiles = true;
        Apply(store, now, changes);
    }

    [[noreturn]] void Follow() {
        for (;;) {
            if (!WaitForChange(Clock::now() + kSafetyPoll) && _store.Generation() == _generation) continue;
            // Let a burst of writes settle, within bounds.
            const auto first = Clock::now();
            auto last = first;
            for (;;) {
                const auto until =
                    std::min(last + NetworkFollower::kQuiet, first + NetworkFollower::kLongestDelay);
                if (Clock::now() >= until) break;
                if (WaitForChange(until)) last = Clock::now();
            }
            Sync();
        }
    }

  private:
    // Waits until the store's file changes or the deadline passes; true for a change.
    bool WaitForChange(Clock::time_point deadline) {
        for (;;) {
            const int timeout = Milliseconds(deadline - Clock::now());
            struct pollfd watch = {_watch, POLLIN, 0};
            if (_watch < 0) {
                std::this_thread::sleep_for(std::chrono::milliseconds(timeout));
                return false;
            }
            const int ready = ::poll(&watch, 1, timeout);
            if (ready < 0 && errno == EINTR) continue;
            if (ready <= 0) return false;
            if (DrainEvents()) return true;
            if (Clock::now() >= deadline) return false;
        }
    }

    // Reads the queued events; true when one concerns the store (or some were lost).
    bool DrainEvents() {
        bool store = false;
        alignas(struct inotify_event) char buffer[4096];
        for (;;) {
            const ssize_t length = ::read(_watch, buffer, sizeof buffer);
            if (length <= 0) return store;
            for (ssize_t at = 0; at < length;) {
                const auto* event = reinterpret_cast<const struct inotify_event*>(buffer + at);
                if ((event->mask & IN_Q_OVERFLOW) ||
                    (event->len > 0 && std::string(event->name) == "host.json"))
                    store = true;
                at += static_cast<ssize_t>(sizeof(struct inotify_event) + event->len);
            }
        }
    }

    bool Read(json& store) {
        try {
            _generation = _store.Generation();
            store = _store.Read();
            _fault.clear();
            return true;
        } catch (const std::exception& e) {
            // Said once: a store that stays unreadable is not worth a line a second.
            if (_fault != e.what()) ::syslog(LOG_ERR, "cannot follow the store: %s", e.what());
            _fault = e.what();
            return false;
        }
    }

    void Sync() {
        json store;
        if (!Read(store)) return;
        const NetworkState now = NetworkState::Of(store, _scenario);
        NetworkChanges changes = NetworkChanges::Between(_applied, now, _kept);
        if (_dnsmasq > 0 && ::waitpid(_dnsmasq, nullptr, WNOHANG) == _dnsmasq) _dnsmasq = -1;
        if (_dnsmasq < 0 && !now.listen.empty()) changes.restartNameServer = true;
        if (changes.Empty()) return;
        Apply(store, now, changes);

        std::vector<std::string> done;
        if (!changes.add.empty()) done.push_back("answering " + Join(changes.add));
        if (!changes.remove.empty()) done.push_back("no longer answering " + Join(changes.remove));
        if (!changes.release.empty()) done.push_back("no longer silent on " + Join(changes.release));
        if (!changes.hold.empty()) done.push_back("silent name server on " + Join(changes.hold));
        if (changes.restartNameServer)
            done.push_back(now.listen.empty() ? "name server stopped" : "name server on " + Join(now.listen));
        if (changes.writeNameFiles)
            done.push_back("name and resolver files rewritten");
        else if (changes.writeHosts)
            done.push_back("/etc/hosts rewritten");
        std::string line;
        for (const auto& part : done) line += (line.empty() ? "" : "; ") + part;
        ::syslog(LOG_INFO, "following the store: %s", line.c_str());
    }

    // Whoever sees the new addresses answer must find the rest already done: the files come first, then
    // the silent ports and the name server (on their new addresses), and last, in one step, every other
    // address comes and goes. A port is let go before the name server may take it, and taken after the
    // name server has let it go.
    void Apply(const json& store, const NetworkState& now, const NetworkChanges& changes) {
        try {
            if (changes.writeNameFiles) {
                std::string name = HostFiles::Hostname(store);
                name.pop_back();  // its newline
                if (::sethostname(name.data(), name.size()) != 0)
                    ::syslog(LOG_ERR, "cannot set the host name %s: %m", name.c_str());
                HostFiles::WriteNameFiles(store);
            } else if (changes.writeHosts) {
                HostFiles::Write("/etc/hosts", now.hosts);
            }
        } catch (const std::exception& e) {
            ::syslog(LOG_ERR, "%s", e.what());
        }
        std::vector<std::string> add = changes.add;
        Release(changes.release);
        if (changes.restartNameServer) StopNameServer();
        std::vector<std::string> first = Take(add, changes.hold);
        if (changes.restartNameServer) {
            const auto listening = Take(add, now.listen);
            first.insert(first.end(), listening.begin(), listening.end());
        }
        Addresses(first, {});
        for (const auto& address : changes.hold) Hold(address);
        if (changes.restartNameServer && !now.listen.empty()) StartNameServer(now);
        Addresses(add, changes.remove);
        _applied = now;
    }

    // Adds and removes addresses on loopback with one run of ip, so the change is as good as at once.
    // An address that is there already is no fault (the scenario's own, say).
    void Addresses(const std::vector<std::string>& add, const std::vector<std::string>& remove) {
        if (add.empty() && remove.empty()) return;
        std::string batch;
        for (const auto& address : remove)
            batch += "addr del " + address + (HostNetwork::IsIpv6(address) ? "/128" : "/32") + " dev lo\n";
        for (const auto& address : add)
            batch += "addr add " + address + (HostNetwork::IsIpv6(address) ? "/128" : "/32") + " dev lo\n";
        try {
            HostFiles::Write(kBatch, batch);
        } catch (const std::exception& e) {
            ::syslog(LOG_ERR, "%s", e.what());
            return;
        }
        ChildProcess::Run({"ip", "-force", "-batch", kBatch});
        ::unlink(kBatch);
    }

    // A hung name server: port 53 of the address, UDP and TCP, taken and never read. Queries pile up
    // unanswered and connections wait in the backlog, so a resolver waits for its timeout. An address that
    // cannot be held is skipped; the follower goes on.
    void Hold(const std::string& address) {
        if (_held.count(address)) return;
        if (!HostNetwork::IsHostAddress(address)) {
            ::syslog(LOG_WARNING, "silent name server %s skipped: not a host address", address.c_str());
            return;
        }
        struct sockaddr_storage where = {};
        socklen_t length;
        if (HostNetwork::IsIpv6(address)) {
            auto* in6 = reinterpret_cast<struct sockaddr_in6*>(&where);
            in6->sin6_family = AF_INET6;
            in6->sin6_port = htons(53);
            ::inet_pton(AF_INET6, address.c_str(), &in6->sin6_addr);
            length = sizeof *in6;
        } else {
            auto* in4 = reinterpret_cast<struct sockaddr_in*>(&where);
            in4->sin_family = AF_INET;
            in4->sin_port = htons(53);
            ::inet_pton(AF_INET, address.c_str(), &in4->sin_addr);
            length = sizeof *in4;
        }
        const int udp = ::socket(where.ss_family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        const int tcp = ::socket(where.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const int on = 1;
        if (tcp >= 0) ::setsockopt(tcp, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        const auto* at = reinterpret_cast<const struct sockaddr*>(&where);
        if (udp < 0 || tcp < 0 || ::bind(udp, at, length) != 0 || ::bind(tcp, at, length) != 0 ||
            ::listen(tcp, 16) != 0) {
            ::syslog(LOG_WARNING, "silent name server %s skipped: cannot hold its port 53: %m",
                     address.c_str());
            if (udp >= 0) ::close(udp);
            if (tcp >= 0) ::close(tcp);
            return;
        }
        _held[address] = {udp, tcp};
    }

    void Release(const std::vector<std::string>& addresses) {
        for (const auto& address : addresses) {
            const auto held = _held.find(address);
            if (held == _held.end()) continue;
            for (const int fd : held->second) ::close(fd);
            _held.erase(held);
        }
    }

    void StopNameServer() {
        if (_dnsmasq <= 0) return;
        ::kill(_dnsmasq, SIGTERM);
        const auto deadline = Clock::now() + kNameServerStop;
        while (::waitpid(_dnsmasq, nullptr, WNOHANG) == 0) {
            if (Clock::now() >= deadline) {
                ::kill(_dnsmasq, SIGKILL);
                ChildProcess::Wait(_dnsmasq);
                break;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        _dnsmasq = -1;
    }

    void StartNameServer(const NetworkState& state) {
        // --no-daemon keeps it in the foreground and, unlike --keep-in-foreground, leaves user and groups
        // alone: in an unprivileged user namespace there is no other group to change to.
        std::vector<std::string> dnsmasq = {"dnsmasq",          "--no-daemon", "--conf-file=/dev/null",
                                            "--no-resolv",      "--no-hosts",  "--no-poll",
                                            "--bind-interfaces"};
        for (const auto& address : state.listen) dnsmasq.push_back("--listen-address=" + address);
        for (const auto& [name, address] : state.names)
            dnsmasq.push_back("--host-record=" + name + "," + address);
        _dnsmasq = ChildProcess::Spawn(dnsmasq, true);
        // The console and the host's programs may resolve names at once: wait until it listens.
        const auto deadline = Clock::now() + kNameServerStart;
        while (!ListensOnDnsPort(state.listen)) {
            if (_dnsmasq < 0 || ::waitpid(_dnsmasq, nullptr, WNOHANG) == _dnsmasq ||
                Clock::now() >= deadline) {
                ::syslog(LOG_ERR, "the name server did not start on %s", Join(state.listen).c_str());
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }

    json _scenario;
    std::vector<std::string> _kept;
    ZenkCtl::Store::HostStore _store{ZenkCtl::Store::HostStore::kHostPath};
    NetworkState _applied;
    std::map<std::string, std::array<int, 2>> _held;  // address: its UDP and TCP sockets
    pid_t _dnsmasq = -1;
    int _watch = -1;
    std::string _generation;
    std::string _fault;
};

// The follower's own process: a daemon of the host, apart from PID 1's terminal, descriptors and
// blocked signals.
[[noreturn]] void RunFollower(const json& scenario, int ready) {
    ::prctl(PR_SET_NAME, NetworkFollower::kName);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::setsid();
    const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int fd = 0; fd < 3; ++fd) ::dup2(null, fd);
    if (ready > 3) ::close_range(3, static_cast<unsigned>(ready) - 1, 0);
    ::close_range(static_cast<unsigned>(ready) + 1, ~0U, 0);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::openlog(NetworkFollower::kName, LOG_PID, LOG_DAEMON);
    try {
        Follower follower(scenario);
        follower.Watch();
        follower.Boot();
        if (::write(ready, "1", 1) < 0) {
        }
        ::close(ready);
        follower.Follow();
    } catch (const std::exception& e) {
        ::syslog(LOG_ERR, "stopped following the store: %s", e.what());
    }
    _exit(1);
}

}  // namespace

pid_t NetworkFollower::Start(const json& scenario) {
    int pipe[2];
    if (::pipe2(pipe, O_CLOEXEC) != 0) return -1;
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::close(pipe[0]);
        RunFollower(scenario, pipe[1]);
    }
    ::close(pipe[1]);
    if (pid > 0) {
        // Ready when it writes, or ended when the pipe closes without a word.
        struct pollfd done = {pipe[0], POLLIN, 0};
        while (::poll(&done, 1, static_cast<int>(kBootWait.count() * 1000)) < 0 && errno == EINTR) {
        }
    }
    ::close(pipe[0]);
    return pid;
}

}  // namespace KovoSim
