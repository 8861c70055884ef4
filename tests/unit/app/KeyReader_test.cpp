#include "terminal/KeyReader.h"

#include <gtest/gtest.h>

namespace Kovo {
namespace {

timeval At(long sec, long usec = 0) {
    return timeval{sec, usec};
}

// The screen dims a minute after the start; the logout comes at the time-out, raised to one minute, and
// never when the time-out is 0 or unused.
TEST(IdleDeadlines, DimsAfterAMinuteAndLogsOutAtTheTimeout) {
    const struct {
        uint32_t timeout;
        bool used, armed;
        long logoutAt;
    } cases[] = {
        {600, true, true, 1600}, {30, true, true, 1060}, {0, true, false, 0}, {600, false, false, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.timeout << (c.used ? "" : " unused"));
        const IdleDeadlines d = ComputeIdleDeadlines(At(1000, 250000), c.timeout, c.used);
        EXPECT_EQ(d.logoutArmed, c.armed);
        if (!c.armed) continue;
        EXPECT_EQ(d.dimAt.tv_sec, 1060);
        EXPECT_EQ(d.dimAt.tv_usec, 250000);
        EXPECT_EQ(d.logoutAt.tv_sec, c.logoutAt);
    }
}

TEST(IdleDeadlines, TimeReachedComparesSecondsThenMicroseconds) {
    EXPECT_FALSE(TimeReached(At(10, 999999), At(11, 0)));
    EXPECT_TRUE(TimeReached(At(11, 0), At(11, 0)));
    EXPECT_TRUE(TimeReached(At(12, 0), At(11, 500000)));
    EXPECT_FALSE(TimeReached(At(11, 400000), At(11, 500000)));
}

// Until the dim moment, then until the logout, then forever; a moment passed waits zero, not less.
TEST(IdleDeadlines, WaitsUntilDimThenLogoutThenForever) {
    const struct {
        uint32_t timeout;
        timeval now;
        bool dimmed;
        std::optional<timeval> limit;
    } cases[] = {
        {120, At(1010, 500000), false, At(49, 500000)},
        {120, At(1061), true, At(59)},
        {0, At(1061), true, std::nullopt},
        {600, At(2000), true, At(0)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.timeout << " at " << c.now.tv_sec);
        const auto limit = NextWaitLimit(c.now, ComputeIdleDeadlines(At(1000), c.timeout, true), c.dimmed);
        ASSERT_EQ(limit.has_value(), c.limit.has_value());
        if (!limit) continue;
        EXPECT_EQ(limit->tv_sec, c.limit->tv_sec);
        EXPECT_EQ(limit->tv_usec, c.limit->tv_usec);
    }
}

}  // namespace
}  // namespace Kovo
