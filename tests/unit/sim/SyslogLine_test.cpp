#include "launcher/SyslogLine.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

using KovoSim::SyslogLine;

namespace {

// 2026-11-22T16:20:01.000123Z
const auto kTime = std::chrono::system_clock::time_point(std::chrono::microseconds(1795364401000123LL));

class SyslogLineTest : public ::testing::Test {
  protected:
    void SetUp() override { UseZone("UTC0"); }
    void TearDown() override { UseZone("UTC0"); }
    static void UseZone(const char* zone) {
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
};

TEST_F(SyslogLineTest, CLibraryDatagramKeepsTagAndMessageAndNamesFacilityAndSeverity) {
    EXPECT_EQ(
        SyslogLine::Format("<11>Nov 22 16:20:01 KOVO[123]: Invalid VT specified for KOVO: abc", kTime, "h1"),
        "2026-11-22T16:20:01.000123+00:00 h1 user.err KOVO[123]: Invalid VT specified for KOVO: abc\n");
    const std::pair<const char*, const char*> bodies[] = {
        // A day below 10 is padded with a space, and the sender's stamp still goes.
        {"<14>Nov  2 06:00:09 KOVO[7]: Starting KOVO", "KOVO[7]: Starting KOVO"},
        // Text that only looks a little like a stamp is message text.
        {"<14>Nov 22 xx:00:09 rest", "Nov 22 xx:00:09 rest"},
        // The structured form becomes tag and message.
        {"<14>1 2026-11-22T16:20:01Z host app 99 ID1 - hello there", "app[99]: hello there"},
        {"<14>1 2026-11-22T16:20:01Z host app - - [x@1 a=\"b\"] msg", "app: msg"},
    };
    for (const auto& [datagram, body] : bodies) EXPECT_EQ(SyslogLine::Parse(datagram).body, body) << datagram;
    const std::pair<int, const char*> names[] = {
        {0, "kern.emerg"},        {8 + 1, "user.alert"},          {3 * 8 + 4, "daemon.warning"},
        {4 * 8 + 2, "auth.crit"}, {10 * 8 + 7, "authpriv.debug"}, {16 * 8 + 5, "local0.notice"},
        {191, "local7.debug"}};
    for (const auto& [priority, name] : names)
        EXPECT_EQ(SyslogLine::PriorityName(priority), name) << priority;
}

TEST_F(SyslogLineTest, MissingOrMalformedPriorityFallsBackToUserNoticeAndKeepsTheText) {
    EXPECT_EQ(SyslogLine::Format("plain text", kTime, "h"),
              "2026-11-22T16:20:01.000123+00:00 h user.notice plain text\n");
    for (const char* datagram :
         {"<192>too big", "<abc>letters", "<5 unclosed", "<>empty", "<1234>long", "<", ""}) {
        const auto parsed = SyslogLine::Parse(datagram);
        EXPECT_EQ(parsed.priority, SyslogLine::kDefaultPriority) << datagram;
        EXPECT_EQ(parsed.body, datagram);
    }
}

TEST_F(SyslogLineTest, OneDatagramIsAlwaysOneLine) {
    EXPECT_EQ(SyslogLine::Clean("first\nsecond\tthird\x7f\n\n"), "first#012second#011third#177");
    EXPECT_EQ(SyslogLine::Clean(std::string("tail\0\n", 6)), "tail");
    const std::string line = SyslogLine::Format("<13>a\nb\r\n", kTime, "");
    EXPECT_EQ(line, "2026-11-22T16:20:01.000123+00:00 - user.notice a#012b#015\n");
    // UTF-8 passes untouched.
    EXPECT_EQ(SyslogLine::Clean("Ger\xC3\xA4t"), "Ger\xC3\xA4t");
}

TEST_F(SyslogLineTest, TimestampUsesLocalTimeWithItsOffset) {
    UseZone("XST-5:30");
    EXPECT_EQ(SyslogLine::Timestamp(kTime), "2026-11-22T21:50:01.000123+05:30");
    UseZone("YST8");
    EXPECT_EQ(SyslogLine::Timestamp(kTime), "2026-11-22T08:20:01.000123-08:00");
    UseZone("UTC0");
    EXPECT_EQ(SyslogLine::Timestamp(kTime + std::chrono::microseconds(999876)),
              "2026-11-22T16:20:01.999999+00:00");
}

}  // namespace
