#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace KovoSim {

// What the running host's network and name files are for a store: the addresses on loopback, what its
// name server listens on and answers, the silent name servers, "/etc/hosts", and the count of saved DNS
// configurations.
struct NetworkState {
    std::vector<std::string> addresses;
    std::vector<std::string> listen;
    std::vector<std::string> silent;  // whose DNS port the follower holds and never reads
    std::vector<std::pair<std::string, std::string>> names;
    std::string hosts;
    nlohmann::json saved;

    static NetworkState Of(const nlohmann::json& store, const nlohmann::json& scenario);
};

// What it takes to go from one state to the next.
struct NetworkChanges {
    std::vector<std::string> add;
    std::vector<std::string> remove;
    std::vector<std::string> hold;     // silent name servers whose DNS port is to be taken
    std::vector<std::string> release;  // and those whose port is to be let go
    bool restartNameServer = false;    // its addresses or its records changed
    bool writeHosts = false;
    bool writeNameFiles = false;  // the DNS configuration was saved: "/etc/hostname", resolver, UTS name

    bool Empty() const {
        return add.empty() && remove.empty() && hold.empty() && release.empty() && !restartNameServer &&
               !writeHosts && !writeNameFiles;
    }
    // Never removes a loopback address or one of `kept` (the scenario's own answering addresses).
    static NetworkChanges Between(const NetworkState& was, const NetworkState& now,
                                  const std::vector<std::string>& kept);
};

// The running host follows its store without a reboot, as a host's network stack follows what its
// management tools apply. A daemon of the host, forked by PID 1 at every boot, so its work never holds
// up the supervisor: it brings the network up from the store, then watches the store's directory
// (inotify; the store is replaced by rename) and, once a burst of writes has settled, puts new
// addresses on loopback, holds the DNS port of silent name servers (a UDP socket and a listening TCP
// socket it never reads, so a lookup sent there waits for its timeout), restarts the name server when
// what it answers changed, rewrites "/etc/hosts", rewrites the name and resolver files and the UTS name
// when the DNS configuration was saved, and takes away the addresses no longer wanted. Boot-time changes
// ("/boot/pending") still wait for a reboot.
class NetworkFollower {
  public:
    static constexpr const char* kName = "kovo-sim-net";
    // A burst of writes (the console applies a dialog in several operations) is one change: the follower
    // acts once the store has been quiet this long, and never later than kLongestDelay after the first.
    static constexpr std::chrono::milliseconds kQuiet{150};
    static constexpr std::chrono::milliseconds kLongestDelay{1000};
    // How long a boot waits for the network to come up.
    static constexpr std::chrono::seconds kBootWait{10};

    // Forks the follower; returns its pid once the host's network is up as the store describes it (its
    // name server listens), or after kBootWait. -1 when it could not be started.
    static pid_t Start(const nlohmann::json& scenario);
};

}  // namespace KovoSim
