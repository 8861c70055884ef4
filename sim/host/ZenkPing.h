#pragma once

#include <string>

#include "HostContext.h"

namespace KovoSim::Host {

// "zenkping -c COUNT [-I INTERFACE] [-W SECONDS] ... ADDRESS": an address answers when it is up in the host's
// network (the scenario brings its gateway and name servers up there). Echoes go out one a second, so a ping
// takes as long as a real one. An INTERFACE the store does not know, or knows as disabled, stops the
// ping before anything is sent. Exit 0 when every echo came back, 1 when none did, 2 for an address,
// name or interface it cannot use. The last argument that is not an option is the target.
class ZenkPing {
  public:
    static int Run(HostContext& context);
    // Whether a numeric address (IPv4, or IPv6 with an optional "%zone") is up in this network namespace.
    static bool Answers(const std::string& address);
};

}  // namespace KovoSim::Host
