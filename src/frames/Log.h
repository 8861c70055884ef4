#pragma once

#include <syslog.h>

#include <exception>
#include <string>

namespace Kovo {

// The screens' log lines: one string each, built afresh, so a line reads the same in the log whatever
// its text holds ('%' included). A failure the operator must also see goes through ReportFailure
// (frames/MessageDialog.h), which logs with these.
inline void LogInfo(const std::string& line) {
    syslog(LOG_INFO, "%s", line.c_str());
}

inline void LogWarning(const std::string& line) {
    syslog(LOG_WARNING, "%s", line.c_str());
}

inline void LogError(const std::string& line) {
    syslog(LOG_ERR, "%s", line.c_str());
}

inline void LogCritical(const std::string& line) {
    syslog(LOG_CRIT, "%s", line.c_str());
}

// Logins and their failures go to the authentication facility as well, where audits look for them.
inline void LogAuth(int priority, const std::string& line) {
    syslog(LOG_AUTH | priority, "%s", line.c_str());
}

// A failure: what was being done, then the host's reason.
inline void LogFailure(const std::string& prefix, const std::exception& e) {
    LogError(prefix + e.what());
}

}  // namespace Kovo
