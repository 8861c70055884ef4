#include "launcher/RestartPolicy.h"

#include <gtest/gtest.h>
#include <signal.h>

using KovoSim::RestartPolicy;
using Action = RestartPolicy::Action;
using namespace std::chrono_literals;

namespace {

constexpr int Exited(int code) {
    return code << 8;
}

TEST(RestartPolicyTest, RestartsAtOnceAfterALongRunAndAfterAPauseWhenQuick) {
    const RestartPolicy policy(false);
    EXPECT_EQ(policy.ConsoleEnded(Exited(0), 5s).action, Action::Restart);
    EXPECT_EQ(policy.ConsoleEnded(SIGSEGV, 1000ms).action, Action::Restart);
    EXPECT_EQ(policy.ConsoleEnded(Exited(1), 999ms).action, Action::RestartLater);
    EXPECT_EQ(policy.ConsoleEnded(Exited(0), 0ms).action, Action::RestartLater);
}

TEST(RestartPolicyTest, StoppingEndsWithZeroAndOnceEndsWithTheConsolesStatus) {
    RestartPolicy stopping(false);
    stopping.Stop();
    EXPECT_EQ(stopping.ConsoleEnded(Exited(3), 5s).action, Action::Stop);
    EXPECT_EQ(stopping.ConsoleEnded(Exited(3), 5s).exitCode, 0);

    const RestartPolicy once(true);
    EXPECT_EQ(once.ConsoleEnded(Exited(7), 10ms).action, Action::Stop);
    EXPECT_EQ(once.ConsoleEnded(Exited(7), 10ms).exitCode, 7);
    EXPECT_EQ(once.ConsoleEnded(SIGKILL, 10s).exitCode, 128 + SIGKILL);
}

}  // namespace
