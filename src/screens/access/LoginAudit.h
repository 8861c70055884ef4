#pragma once

#include <string>

namespace Kovo {

// Writes one audit record of a console session event ("login.connect", "login.disconnect") for a user,
// with its outcome and an optional "reason" attribute, e.g.
//   login.disconnect user="root" result=success reason="Session closed"
void AuditLogin(const char* event, const std::string& user, bool success, const char* reason = nullptr);

// The record's text, as AuditLogin sends it.
std::string FormatLoginAudit(const char* event, const std::string& user, bool success, const char* reason);

}  // namespace Kovo
