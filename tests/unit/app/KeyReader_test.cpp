#include "terminal/KeyReader.h"

#include <gtest/gtest.h>

namespace Kovo {
namespace {

timeval At(long sec, long usec = 0) {
    return timeval{sec, usec};
}

TEST(IdleDeadlines, DimsAfterAMinuteAndLogsOutAtTheTimeout) {
    IdleDeadlines d = ComputeIdleDeadlines(At(1000, 250000), 600, true);
    EXPECT_TRUE(d.logoutArmed);
    EXPECT_EQ(d.dimAt.tv_sec, 1060);
    EXPECT_EQ(d.dimAt.tv_usec, 250000);
    EXPECT_EQ(d.logoutAt.tv_sec, 1600);
}

TEST(IdleDeadlines, ShortTimeoutIsRaisedToOneMinute) {
    IdleDeadlines d = ComputeIdleDeadlines(At(1000), 30, true);
    EXPECT_TRUE(d.logoutArmed);
    EXPECT_EQ(d.logoutAt.tv_sec, 1060);
    EXPECT_EQ(d.logoutAt.tv_sec, d.dimAt.tv_sec);
}

TEST(IdleDeadlines, ZeroOrUnusedTimeoutNeverArmsLogout) {
    EXPECT_FALSE(ComputeIdleDeadlines(At(1000), 0, true).logoutArmed);
    EXPECT_FALSE(ComputeIdleDeadlines(At(1000), 600, false).logoutArmed);
}

TEST(IdleDeadlines, TimeReachedComparesSecondsThenMicroseconds) {
    EXPECT_FALSE(TimeReached(At(10, 999999), At(11, 0)));
    EXPECT_TRUE(TimeReached(At(11, 0), At(11, 0)));
    EXPECT_TRUE(TimeReached(At(12, 0), At(11, 500000)));
    EXPECT_FALSE(TimeReached(At(11, 400000), At(11, 500000)));
}

TEST(IdleDeadlines, WaitsUntilDimThenLogoutThenForever) {
    IdleDeadlines armed = ComputeIdleDeadlines(At(1000), 120, true);
    auto beforeDim = NextWaitLimit(At(1010, 500000), armed, false);
    ASSERT_TRUE(beforeDim);
    EXPECT_EQ(beforeDim->tv_sec, 49);
    EXPECT_EQ(beforeDim->tv_usec, 500000);

    auto dimmed = NextWaitLimit(At(1061), armed, true);
    ASSERT_TRUE(dimmed);
    EXPECT_EQ(dimmed->tv_sec, 59);

    IdleDeadlines unarmed = ComputeIdleDeadlines(At(1000), 0, true);
    EXPECT_FALSE(NextWaitLimit(At(1061), unarmed, true).has_value());
}

TEST(IdleDeadlines, PassedMomentWaitsZeroNotNegative) {
    IdleDeadlines d = ComputeIdleDeadlines(At(1000), 600, true);
    auto late = NextWaitLimit(At(2000), d, true);
    ASSERT_TRUE(late);
    EXPECT_EQ(late->tv_sec, 0);
    EXPECT_EQ(late->tv_usec, 0);
}

}  // namespace
}  // namespace Kovo
