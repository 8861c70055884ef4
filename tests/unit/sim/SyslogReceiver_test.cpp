// The host's syslog: the line each datagram becomes, and the receiver that writes them to the log.
#include "launcher/SyslogReceiver.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <sstream>
#include <system_error>
#include <vector>

#include "helpers/Subprocess.h"
#include "launcher/SyslogLine.h"

using KovoSim::SyslogLine;
using KovoSim::SyslogReceiver;
using KovoSim::Test::ReadFile;
using KovoSim::Test::TempDir;

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

void Send(const std::string& socketPath, const std::string& datagram) {
    const int fd = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ASSERT_GE(fd, 0);
    struct sockaddr_un address {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socketPath.c_str(), sizeof address.sun_path - 1);
    const ssize_t sent = ::sendto(fd, datagram.data(), datagram.size(), 0,
                                  reinterpret_cast<sockaddr*>(&address), sizeof address);
    ::close(fd);
    ASSERT_EQ(sent, static_cast<ssize_t>(datagram.size()));
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

// Drops the time stamp and host name.
std::string Tail(const std::string& line) {
    const auto first = line.find(' ');
    return line.substr(line.find(' ', first + 1) + 1);
}

TEST(SyslogReceiverTest, AppendsEveryWaitingDatagramInOrderAsOneLineEach) {
    TempDir dir;
    SyslogReceiver receiver(dir / "log.sock", dir / "syslog.log");
    Send(dir / "log.sock", "<11>Nov 22 16:20:01 KOVO[5]: first");
    Send(dir / "log.sock", "<14>Nov 22 16:20:01 KOVO[5]: second\nwith a newline");
    Send(dir / "log.sock", "<30>Nov 22 16:20:01 agent[9]: " + std::string(20000, 'x'));
    EXPECT_EQ(receiver.Drain(), 3);
    EXPECT_EQ(receiver.Drain(), 0);
    receiver.WriteLocal(LOG_DAEMON | LOG_INFO, "init: own line");

    const auto lines = Lines(ReadFile(dir / "syslog.log"));
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(Tail(lines[0]), "user.err KOVO[5]: first");
    EXPECT_EQ(Tail(lines[1]), "user.info KOVO[5]: second#012with a newline");
    EXPECT_EQ(Tail(lines[2]), "daemon.info agent[9]: " + std::string(20000, 'x'));
    EXPECT_EQ(Tail(lines[3]), "daemon.info init: own line");
}

TEST(SyslogReceiverTest, KeepsLinesAlreadyInTheLogAndReplacesAStaleSocket) {
    TempDir dir;
    {
        SyslogReceiver first(dir / "log.sock", dir / "syslog.log");
        Send(dir / "log.sock", "<14>KOVO[1]: before");
    }  // destruction drains what is waiting
    {
        SyslogReceiver second(dir / "log.sock", dir / "syslog.log");
        Send(dir / "log.sock", "<14>KOVO[2]: after");
        second.Drain();
    }
    const auto lines = Lines(ReadFile(dir / "syslog.log"));
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(Tail(lines[0]), "user.info KOVO[1]: before");
    EXPECT_EQ(Tail(lines[1]), "user.info KOVO[2]: after");
}

TEST(SyslogReceiverTest, UnusablePathsAreErrorsNotCrashes) {
    TempDir dir;
    EXPECT_THROW(SyslogReceiver(dir / std::string(200, 's'), dir / "syslog.log"), std::system_error);
    EXPECT_THROW(SyslogReceiver(dir / "log.sock", dir / "missing/dir/syslog.log"), std::system_error);
    EXPECT_THROW(SyslogReceiver(dir / "missing/log.sock", dir / "syslog.log"), std::system_error);
}

}  // namespace
