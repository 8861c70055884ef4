#pragma once

#include <string>
#include <string_view>

#include "DatagramSink.h"

namespace KovoSim {

// The host's syslog daemon: a datagram socket bound at a path (the host's /dev/log) whose messages are
// appended, one SyslogLine each, to a log file (the host's "/var/log/syslog.log"). It does not own a
// thread: the owner polls Fd() and calls Drain().
class SyslogReceiver : public DatagramSink {
  public:
    SyslogReceiver(std::string socketPath, std::string logPath);
    ~SyslogReceiver() override;
    SyslogReceiver(const SyslogReceiver&) = delete;
    SyslogReceiver& operator=(const SyslogReceiver&) = delete;

    int Fd() const override { return _socket; }

    // Writes every datagram waiting on the socket; returns how many.
    int Drain() override;

    // A line of the host's own (the supervisor's), as if received with this priority.
    void WriteLocal(int priority, std::string_view tagAndMessage);

  private:
    void Append(const std::string& line);

    std::string _socketPath;
    std::string _logPath;
    int _socket = -1;
    int _log = -1;
};

}  // namespace KovoSim
