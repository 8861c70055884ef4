#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace KovoSim {

// One datagram received on the host's /dev/log, turned into one line of "/var/log/syslog.log":
//
//   2026-11-22T16:20:01.123456+00:00 myhost user.err KOVO[123]: message
//
// The time is the receiver's (local time with its offset, microseconds), because the sender's stamp has
// neither year nor sub-second precision. Facility and severity come from the sender's <PRI> as
// "facility.severity" names so tests and operators can grep for them. The sender's own stamp is
// dropped; its tag ("KOVO[123]:") and message are kept as sent. Control characters are written as
// "#" and three octal digits (a newline is "#012") so one datagram is always one line.
class SyslogLine {
  public:
    static constexpr int kDefaultPriority = 13;  // user.notice, for a datagram without <PRI>

    // Priority and body of a datagram; a missing or malformed <PRI> yields kDefaultPriority and the
    // whole datagram as the body.
    struct Parsed {
        int priority = kDefaultPriority;
        std::string body;  // tag and message, the sender's time stamp removed
    };
    static Parsed Parse(std::string_view datagram);

    static std::string Format(std::string_view datagram, std::chrono::system_clock::time_point now,
                              std::string_view host);

    // "user.info", "daemon.err", "local3.debug", ... ; an unknown facility is written as its number.
    static std::string PriorityName(int priority);

    static std::string Timestamp(std::chrono::system_clock::time_point now);

    // Escapes control characters and drops trailing newlines and NULs.
    static std::string Clean(std::string_view text);
};

}  // namespace KovoSim
