#include "platform/events/HlvAudit.h"

#include <syslog.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "platform/events/DatagramChannel.h"
#include "platform/events/EventPaths.h"

namespace {

std::string& SocketPath() {
    static std::string path = ZenkCtl::Events::kAuditSocket;
    return path;
}

}  // namespace

void HlvAudit_SetSocketPath(const char* socketPath) {
    SocketPath() = socketPath != nullptr ? socketPath : ZenkCtl::Events::kAuditSocket;
}

void HlvAudit_VLog(const char* fmt, va_list ap) {
    if (fmt == nullptr) return;
    char buffer[ZenkCtl::Events::DatagramChannel::kMaxRecord];
    const int n = std::vsnprintf(buffer, sizeof buffer, fmt, ap);
    if (n < 0) return;
    // Connect per record: audit records are rare and the daemon may have restarted in between.
    ZenkCtl::Events::DatagramChannel channel;
    int err = channel.Connect(SocketPath());
    if (err == 0) err = channel.Send(buffer);
    if (err != 0) {
        syslog(LOG_ERR, "Audit record not delivered (%s): %s", std::strerror(err), buffer);
    }
}

void HlvAudit_Log(const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    HlvAudit_VLog(fmt, ap);
    va_end(ap);
}
