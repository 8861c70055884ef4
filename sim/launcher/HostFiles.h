#pragma once

#include <sys/types.h>

#include <string>

#include <nlohmann/json.hpp>

namespace KovoSim {

// The host's files made from its store: its name files ("/etc/hostname", "/etc/hosts") and resolver
// configuration ("/etc/resolv.conf"). They are written at the first boot, at every boot, and whenever
// the running host follows a change of its store (see NetworkFollower).
class HostFiles {
  public:
    // Replaces a host file. A file of the machine below may be a symbolic link into /run; removing it
    // first keeps the new file on the host's disk. Throws std::system_error when it cannot be written.
    static void Write(const std::string& path, const std::string& text, mode_t mode = 0644);

    // "/etc/hostname": the host name alone ("localhost" without one).
    static std::string Hostname(const nlohmann::json& store);
    // "/etc/hosts": the localhost lines, and the management address with the FQDN and the short name.
    static std::string Hosts(const nlohmann::json& store);
    // "/etc/resolv.conf": the search list, the first three name servers (IPv4 first), short time-outs.
    static std::string ResolvConf(const nlohmann::json& store);

    // Writes "/etc/hostname" and "/etc/resolv.conf" (the names the host was saved with) and "/etc/hosts".
    static void WriteNameFiles(const nlohmann::json& store);
};

}  // namespace KovoSim
