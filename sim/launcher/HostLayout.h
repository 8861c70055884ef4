#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace KovoSim {

// Where a simulated host keeps its persistent disk on this machine.
//
//   DIR/upper/<host path>   what the host wrote over the machine's /etc, /usr/bin, /usr/sbin, /usr/lib,
//                           /var/log (the upper layers of its overlays): DIR/upper/var/log/syslog.log
//                           is the host's "/var/log/syslog.log"
//   DIR/work/<host path>    the overlays' work directories
//   DIR/state/              the launcher's own files: lock, init.pid, console.pid
class HostLayout {
  public:
    static constexpr std::array<const char*, 5> kOverlays = {"/etc", "/usr/bin", "/usr/sbin", "/usr/lib",
                                                             "/var/log"};

    // Makes DIR absolute and checks it can carry overlays; throws std::invalid_argument with a message
    // for the operator otherwise.
    static constexpr std::array<const char*, 10> kOwnDirectories = {
        "/etc/halvor/ssl",   "/etc/init.d",       "/etc/pam.d",
        "/etc/ssh",          "/usr/lib/kovo-sim", "/usr/lib/halvor/openssh/bin",
        "/var/log/kovo-sim", "/usr/bin",          "/usr/sbin",
        "/var/log"};

    explicit HostLayout(const std::string& dir);

    const std::string& Dir() const { return _dir; }
    std::string Upper(std::string_view hostPath) const { return _dir + "/upper" + std::string(hostPath); }
    std::string Work(std::string_view hostPath) const { return _dir + "/work" + std::string(hostPath); }
    std::string State(std::string_view name) const { return _dir + "/state/" + std::string(name); }

    // The machine path of a host file the host has written (its upper layer).
    std::string OnDisk(std::string_view hostPath) const { return Upper(hostPath); }

    // Named logs of the host, as (name, host path) pairs.
    static const std::vector<std::pair<std::string, std::string>>& Logs();

    // Creates every directory of the layout (idempotent).
    void Prepare() const;
    bool Prepared() const;

  private:
    std::string _dir;
};

}  // namespace KovoSim
