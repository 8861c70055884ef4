#pragma once

namespace ZenkCtl::Events {

// Sockets of the host's event daemon and audit daemon (Unix datagram, one text record per datagram).
inline constexpr const char* kEventSocket = "/var/run/halvor/obsd.sock";
inline constexpr const char* kAuditSocket = "/var/run/halvor/auditd.sock";

}  // namespace ZenkCtl::Events
