#pragma once

#include <cstdarg>

// Audit records: one formatted text per record, sent to the host's audit daemon. A record that cannot be
// delivered is written to the system log instead, so it is never silently lost.
void HlvAudit_VLog(const char* fmt, va_list ap) __attribute__((format(printf, 1, 0)));
void HlvAudit_Log(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

// Only for tests and tools outside the host: send audit records to another socket (nullptr restores
// the host's audit socket).
void HlvAudit_SetSocketPath(const char* socketPath);
