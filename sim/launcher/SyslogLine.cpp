#include "SyslogLine.h"

#include <time.h>

#include <array>
#include <cctype>
#include <cstdio>

namespace KovoSim {
namespace {

constexpr std::array<const char*, 24> kFacilities = {
    "kern",   "user",   "mail",     "daemon", "auth",   "syslog",   "lpr",     "news",
    "uucp",   "cron",   "authpriv", "ftp",    "ntp",    "security", "console", "cron2",
    "local0", "local1", "local2",   "local3", "local4", "local5",   "local6",  "local7"};

constexpr std::array<const char*, 8> kSeverities = {"emerg",   "alert",  "crit", "err",
                                                    "warning", "notice", "info", "debug"};

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// "Nov 22 16:20:01 " (a day below 10 is padded with a space) as the C library writes it.
bool StartsWithClassicStamp(std::string_view s) {
    if (s.size() < 16) return false;
    static constexpr std::string_view kMonths = "JanFebMarAprMayJunJulAugSepOctNovDec";
    bool monthOk = false;
    for (size_t i = 0; i + 3 <= kMonths.size(); i += 3)
        monthOk = monthOk || s.substr(0, 3) == kMonths.substr(i, 3);
    if (!monthOk || s[3] != ' ') return false;
    if (!(s[4] == ' ' || IsDigit(s[4])) || !IsDigit(s[5]) || s[6] != ' ') return false;
    return IsDigit(s[7]) && IsDigit(s[8]) && s[9] == ':' && IsDigit(s[10]) && IsDigit(s[11]) &&
           s[12] == ':' && IsDigit(s[13]) && IsDigit(s[14]) && s[15] == ' ';
}

std::string_view NextField(std::string_view& s) {
    const auto space = s.find(' ');
    std::string_view field = s.substr(0, space);
    s = space == std::string_view::npos ? std::string_view() : s.substr(space + 1);
    return field;
}

// "1 2026-11-22T16:20:01Z host app procid msgid - message": keep "app[procid]: message".
std::string FromStructuredForm(std::string_view s) {
    NextField(s);  // version
    NextField(s);  // time
    NextField(s);  // host
    std::string_view app = NextField(s);
    std::string_view procId = NextField(s);
    NextField(s);  // message id
    if (!s.empty() && s[0] == '-') {
        s.remove_prefix(s.size() > 1 ? 2 : 1);
    } else if (!s.empty() && s[0] == '[') {
        const auto end = s.find("] ");
        s = end == std::string_view::npos ? std::string_view() : s.substr(end + 2);
    }
    if (s.substr(0, 3) == "\xEF\xBB\xBF") s.remove_prefix(3);  // byte-order mark allowed before the text
    std::string out(app == "-" ? "-" : app);
    if (procId != "-" && !procId.empty()) out += "[" + std::string(procId) + "]";
    return out + ": " + std::string(s);
}

}  // namespace

SyslogLine::Parsed SyslogLine::Parse(std::string_view datagram) {
    Parsed parsed;
    std::string_view rest = datagram;
    bool hasPriority = false;
    if (rest.size() >= 3 && rest[0] == '<') {
        size_t i = 1;
        int value = 0;
        while (i < rest.size() && i <= 3 && IsDigit(rest[i])) value = value * 10 + (rest[i++] - '0');
        if (i > 1 && i < rest.size() && rest[i] == '>' && value <= 191) {
            parsed.priority = value;
            hasPriority = true;
            rest.remove_prefix(i + 1);
        }
    }
    if (hasPriority && rest.size() > 2 && rest[0] == '1' && rest[1] == ' ' && IsDigit(rest[2])) {
        parsed.body = FromStructuredForm(rest);
        return parsed;
    }
    if (StartsWithClassicStamp(rest)) rest.remove_prefix(16);
    parsed.body = std::string(rest);
    return parsed;
}

std::string SyslogLine::PriorityName(int priority) {
    const int facility = priority >> 3;
    const int severity = priority & 7;
    std::string name =
        facility < static_cast<int>(kFacilities.size()) ? kFacilities[facility] : std::to_string(facility);
    return name + "." + kSeverities[severity];
}

std::string SyslogLine::Timestamp(std::chrono::system_clock::time_point now) {
    const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(now.time_since_epoch()).count();
    time_t seconds = static_cast<time_t>(micros / 1000000);
    long fraction = static_cast<long>(micros % 1000000);
    if (fraction < 0) {
        fraction += 1000000;
        --seconds;
    }
    struct tm local {};
    localtime_r(&seconds, &local);
    char date[32];
    strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &local);
    const long offset = local.tm_gmtoff;
    const long absOffset = offset < 0 ? -offset : offset;
    char out[64];
    std::snprintf(out, sizeof out, "%s.%06ld%c%02ld:%02ld", date, fraction, offset < 0 ? '-' : '+',
                  absOffset / 3600, (absOffset % 3600) / 60);
    return out;
}

std::string SyslogLine::Clean(std::string_view text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\0')) text.remove_suffix(1);
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        const auto u = static_cast<unsigned char>(c);
        if (u < 0x20 || u == 0x7f) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "#%03o", u);
            out += escaped;
        } else {
            out += c;
        }
    }
    return out;
}

std::string SyslogLine::Format(std::string_view datagram, std::chrono::system_clock::time_point now,
                               std::string_view host) {
    const Parsed parsed = Parse(datagram);
    return Timestamp(now) + " " + std::string(host.empty() ? "-" : host) + " " +
           PriorityName(parsed.priority) + " " + Clean(parsed.body) + "\n";
}

}  // namespace KovoSim
