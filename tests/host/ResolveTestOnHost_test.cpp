// The network test's resolve test inside a simulated host: the hosts file it takes the host's name out
// of is the same afterwards, also when the test cannot run.
#include <gtest/gtest.h>

#include "ProbeHost.h"

namespace KovoHostTest {
namespace {

constexpr const char* kFqdn = "kovo-host-01.lab.example";

TEST(ResolveTestOnHost, ResolvesThroughTheNameServersAndLeavesTheHostsFileAsItWas) {
    ProbeHost host;
    EXPECT_EQ(host.Probe(std::string("resolve ") + kFqdn), "result=0 same=true\n");
    // Another console of the host has its name out: this one must not back up that file.
    EXPECT_EQ(host.Probe(std::string("resolve ") + kFqdn + " locked"), "result=1 same=true\n");
    EXPECT_EQ(
        LinesWith(host.Syslog(), "failed to backup /etc/hosts: another console is testing name resolution")
            .size(),
        1u)
        << host.Syslog();
    // A backup that cannot be written leaves the hosts file untouched.
    ASSERT_EQ(host.Exec("rm -f /etc/hosts.backup && mkdir /etc/hosts.backup"), 0);
    EXPECT_EQ(host.Probe(std::string("resolve ") + kFqdn), "result=1 same=true\n");
    EXPECT_EQ(LinesWith(host.Syslog(), "failed to backup /etc/hosts: ").size(), 2u) << host.Syslog();
}

}  // namespace
}  // namespace KovoHostTest
