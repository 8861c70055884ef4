#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "frames/HostAccess.h"

namespace Kovo {

// The outcome of one test of the management network, shared by the screen that waits for it and the
// thread that runs it: -1 while it runs, then 0 for success and anything else for failure. Shared, so a
// thread that outlives an interrupted screen still writes to memory that is there.
using TestResult = std::shared_ptr<std::atomic<int32_t>>;

inline constexpr int32_t kTestRunning = -1;

// The two tests of "Test Management Network", each started on a thread of its own that nobody joins.
class NetworkTest {
  public:
    // What is pinged for `address`: a link-local IPv6 address only means something on one link, so it
    // gets the management interface's name as its zone.
    static std::string PingTarget(const std::string& address, const std::string& interface);
    // "/bin/zenkping -c 3 -I <interface> <target>"; without an interface the host picks the route.
    static std::string PingCommand(const std::string& interface, const std::string& target);
    // Runs the command through the host's command runner; its exit status is the result. The thread uses
    // `host` after the call returns: it must live as long as the process (the console's does).
    static TestResult StartPing(HostAccess& host, const std::string& command);

    // Resolves `name` with the host's own hosts-file entry for it taken out, so the answer must come
    // from the host's name servers; the hosts file is put back byte for byte afterwards.
    static TestResult StartResolve(HostAccess& host, const std::string& name);
    // The resolve test's work, on the calling thread: 0 when the name resolved.
    static int Resolve(HostAccess& host, const std::string& name);
    // At start-up: puts back the hosts file a killed console's resolve test left without the host's
    // name. True when it did.
    static bool PutBackLeftoverHosts();
    // Puts back a hosts file a running resolve test has taken the name out of, and lets no further
    // test start. Runs when the console ends, however it ends (registered with atexit).
    static void RestoreHostsForExit();
};

}  // namespace Kovo
