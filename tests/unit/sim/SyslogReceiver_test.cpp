#include "launcher/SyslogReceiver.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <cstring>
#include <sstream>
#include <system_error>
#include <vector>

#include "helpers/Subprocess.h"

using KovoSim::SyslogReceiver;
using KovoSim::Test::ReadFile;
using KovoSim::Test::TempDir;

namespace {

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
