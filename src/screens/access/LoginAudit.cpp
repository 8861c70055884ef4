#include "access/LoginAudit.h"

#include "platform/events/HlvAudit.h"

namespace Kovo {

namespace {

// Quotes a value so that a user name with blanks or quotes cannot forge another attribute.
std::string Quoted(const std::string& value) {
    std::string out = "\"";
    for (char c : value) {
        if (c == '"' || c == '\\') out += '\\';
        out += (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) ? '?' : c;
    }
    return out + "\"";
}

}  // namespace

std::string FormatLoginAudit(const char* event, const std::string& user, bool success, const char* reason) {
    std::string record =
        std::string(event) + " user=" + Quoted(user) + " result=" + (success ? "success" : "failure");
    if (reason) record += " reason=" + Quoted(reason);
    return record;
}

void AuditLogin(const char* event, const std::string& user, bool success, const char* reason) {
    HlvAudit_Log("%s", FormatLoginAudit(event, user, success, reason).c_str());
}

}  // namespace Kovo
