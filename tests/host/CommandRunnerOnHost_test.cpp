// The host-tool wrappers against the simulated host's own hcl-cmd: what ran, as whom, and what the
// console made of it.
#include <gtest/gtest.h>

#include "ProbeHost.h"

namespace KovoHostTest {
namespace {

TEST(CommandRunnerOnHost, UserTheToolRejectsIsRetriedOnceAsTheConsolesOwnUser) {
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
}

TEST(CommandRunnerOnHost, AcceptedUserRunsOnce) {
    ProbeHost host;
    EXPECT_EQ(host.Probe("hcl root internalsvc/refresh"), "status=0\n");
    EXPECT_EQ(LinesWith(host.Commands(), "internalsvc/refresh").size(), 1u) << host.Commands();
    EXPECT_TRUE(LinesWith(host.Syslog(), "Unable to execute command").empty()) << host.Syslog();
}

TEST(CommandRunnerOnHost, QueryFollowsTheHostsAnswerAndRunsAsTheConsolesUser) {
    ProbeHost host;
    EXPECT_EQ(host.Probe("query hclsvc/auth/lockdown_is_possible"), "true\n");
    ASSERT_TRUE(host.Set("/services/lockdown/possible", "false"));
    EXPECT_EQ(host.Probe("query hclsvc/auth/lockdown_is_possible"), "false\n");
    auto runs = LinesWith(host.Commands(), "lockdown_is_possible");
    ASSERT_EQ(runs.size(), 2u) << host.Commands();
    for (const auto& run : runs) EXPECT_NE(run.find("\"kovo\""), std::string::npos) << run;
    EXPECT_EQ(LinesWith(host.Syslog(), "hcl-cmd invocation: get hclsvc/auth/lockdown_is_possible").size(), 2u)
        << host.Syslog();
}

}  // namespace
}  // namespace KovoHostTest
