// Console functions that run the host's programs, against the simulated host's own: what ran, as whom, what
// the console made of it, and the hosts file the network test's resolve test takes the host's name out of.
#include <gtest/gtest.h>

#include "ProbeHost.h"

namespace KovoHostTest {
namespace {

// A user the tool accepts runs once: the end-to-end network tests count that run.
TEST(CommandRunnerOnHost, ARejectedUserIsRetriedOnceAsTheConsolesOwnAndAQueryRunsAsIt) {
    ProbeHost host;
    EXPECT_EQ(host.Probe("hcl viewer internalsvc/refresh"), "status=0\n");
    auto runs = LinesWith(host.Commands(), "internalsvc/refresh");
    ASSERT_EQ(runs.size(), 2u) << host.Commands();
    EXPECT_NE(runs[0].find("\"viewer\""), std::string::npos) << runs[0];
    EXPECT_NE(runs[1].find("\"kovo\""), std::string::npos) << runs[1];
    auto logged = LinesWith(
        host.Syslog(),
        "]: Unable to execute command hcl-cmd internalsvc/refresh using user viewer. Using user kovo");
    ASSERT_EQ(logged.size(), 1u) << host.Syslog();
    EXPECT_NE(logged[0].find(" user.info KOVO["), std::string::npos) << logged[0];

    // A query follows the host's answer.
    EXPECT_EQ(host.Probe("query hclsvc/auth/lockdown_is_possible"), "true\n");
    ASSERT_TRUE(host.Set("/services/lockdown/possible", "false"));
    EXPECT_EQ(host.Probe("query hclsvc/auth/lockdown_is_possible"), "false\n");
    runs = LinesWith(host.Commands(), "lockdown_is_possible");
    ASSERT_EQ(runs.size(), 2u) << host.Commands();
    for (const auto& run : runs) EXPECT_NE(run.find("\"kovo\""), std::string::npos) << run;
    EXPECT_EQ(LinesWith(host.Syslog(), "hcl-cmd invocation: get hclsvc/auth/lockdown_is_possible").size(), 2u)
        << host.Syslog();
}

// The hosts file is the same afterwards, also when the test cannot run.
TEST(ResolveTestOnHost, ResolvesThroughTheNameServersAndLeavesTheHostsFileAsItWas) {
    constexpr const char* kResolve = "resolve kovo-host-01.lab.example";
    ProbeHost host;
    EXPECT_EQ(host.Probe(kResolve), "result=0 same=true\n");
    // Another console of the host has its name out: this one must not back up that file.
    EXPECT_EQ(host.Probe(std::string(kResolve) + " locked"), "result=1 same=true\n");
    EXPECT_EQ(
        LinesWith(host.Syslog(), "failed to backup /etc/hosts: another console is testing name resolution")
            .size(),
        1u)
        << host.Syslog();
    // A backup that cannot be written leaves the hosts file untouched.
    ASSERT_EQ(host.Exec("rm -f /etc/hosts.backup && mkdir /etc/hosts.backup"), 0);
    EXPECT_EQ(host.Probe(kResolve), "result=1 same=true\n");
    EXPECT_EQ(LinesWith(host.Syslog(), "failed to backup /etc/hosts: ").size(), 2u) << host.Syslog();
}

}  // namespace
}  // namespace KovoHostTest
