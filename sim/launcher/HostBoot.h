#pragma once

#include <memory>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "DatagramSink.h"
#include "HostLayout.h"

namespace KovoSim {

// What a simulated host does when it is first made and each time it boots. Runs in PID 1 of the host,
// on the host's own paths.
class HostBoot {
  public:
    // Machine paths of the programs the host installs (the build's outputs).
    struct Products {
        std::string hostPrograms;  // kovo-sim-host
        std::string pamModule;     // pam_kovo_sim.so
    };

    static constexpr const char* kProgramDir = "/usr/lib/kovo-sim";
    static constexpr const char* kLoginMarker = "/run/halvor/show-kovo-login";

    // First boot: the configuration store from the scenario (StoreOf), the host's name files, resolver
    // files, SSL certificate and SSH host keys.
    static void Provision(const nlohmann::json& scenario);

    // Every boot: boot-time changes pending in the store take effect (IPv6 switch, configuration reset to
    // the scenario; a host in audit mode forgets its configuration at every boot but the first), the host
    // programs and PAM service are installed, /run is filled (markers), the host is named, its network
    // comes up and follows the store from then on (NetworkFollower), and its event and audit daemons
    // start. The daemons' sockets are returned for PID 1 to serve.
    static std::vector<std::unique_ptr<DatagramSink>> Start(const nlohmann::json& scenario,
                                                            const Products& products, bool firstBoot);

    // The store document a scenario describes: the scenario without its "simulation" part, but with the
    // platform faults and silent name servers it carries ("simulation": {"faults": {...},
    // "silentNameServers": [...]}).
    static nlohmann::json StoreOf(const nlohmann::json& scenario);

  private:
    static void ApplyPendingChanges(const nlohmann::json& scenario, bool firstBoot);
    static void InstallPrograms(const Products& products);
    static void FillRun(const nlohmann::json& store);
};

}  // namespace KovoSim
