#include "PamAccounts.h"

#include <crypt.h>
#include <security/_pam_types.h>

#include <cstring>

#include "PasswordRule.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/store/HostStore.h"

namespace KovoSim::Pam {
namespace {

using nlohmann::json;

const json* FindUser(const json& document, const std::string& name) {
    const auto users = document.find("users");
    if (users == document.end() || !users->is_array()) return nullptr;
    for (const auto& user : *users)
        if (user.is_object() && user.value("name", std::string()) == name) return &user;
    return nullptr;
}

bool Matches(const std::string& password, const std::string& hash) {
    // "*", "!..." and other non-hashes lock the account.
    if (hash.size() < 13 || hash[0] == '!' || hash[0] == '*') return false;
    struct crypt_data data;
    std::memset(&data, 0, sizeof data);
    // crypt_rn, not crypt_r: sanitizer runtimes intercept crypt_r and fail when libcrypt arrives only
    // with this module, after the program started.
    const char* result = ::crypt_rn(password.c_str(), hash.c_str(), &data, sizeof data);
    return result && result[0] != '*' && hash == result;
}

}  // namespace

PamAccounts::PamAccounts(std::string storePath) : _storePath(std::move(storePath)) {}

std::string PamAccounts::Hash(const std::string& password) {
    char salt[CRYPT_GENSALT_OUTPUT_SIZE];
    if (!::crypt_gensalt_rn("$6$", 0, nullptr, 0, salt, sizeof salt)) return {};
    struct crypt_data data;
    std::memset(&data, 0, sizeof data);
    const char* hash = ::crypt_rn(password.c_str(), salt, &data, sizeof data);
    return hash && hash[0] != '*' ? hash : std::string();
}

int PamAccounts::Authenticate(const std::string& user, const std::string& password) const {
    json document;
    try {
        document = ZenkCtl::Store::HostStore(_storePath).Read();
    } catch (const HostCtl::Lib::HostCtlException&) {
        return PAM_AUTHINFO_UNAVAIL;
    }
    const json* account = FindUser(document, user);
    if (!account) return PAM_USER_UNKNOWN;
    const auto hash = account->find("passwordHash");
    if (hash == account->end() || !hash->is_string()) return PAM_AUTH_ERR;
    return Matches(password, hash->get<std::string>()) ? PAM_SUCCESS : PAM_AUTH_ERR;
}

int PamAccounts::Account(const std::string& user) const {
    json document;
    try {
        document = ZenkCtl::Store::HostStore(_storePath).Read();
    } catch (const HostCtl::Lib::HostCtlException&) {
        return PAM_AUTHINFO_UNAVAIL;
    }
    const json* account = FindUser(document, user);
    if (!account) return PAM_USER_UNKNOWN;
    if (!account->value("consoleAccess", true)) return PAM_PERM_DENIED;
    if (account->value("expired", false)) return PAM_NEW_AUTHTOK_REQD;
    return PAM_SUCCESS;
}

int PamAccounts::ChangePassword(const std::string& user, const std::string& password,
                                std::string* reason) const {
    const std::string broken = PasswordRule::Check(user, password);
    if (!broken.empty()) {
        if (reason) *reason = broken;
        return PAM_AUTHTOK_ERR;
    }
    const std::string hash = Hash(password);
    if (hash.empty()) return PAM_AUTHTOK_ERR;
    int status = PAM_SUCCESS;
    try {
        ZenkCtl::Store::HostStore(_storePath).Update([&](json& document) {
            json* account = const_cast<json*>(FindUser(document, user));
            if (!account) {
                status = PAM_USER_UNKNOWN;
                return;
            }
            (*account)["passwordHash"] = hash;
            (*account)["expired"] = false;
        });
    } catch (const HostCtl::Lib::HostCtlException&) {
        return PAM_AUTHTOK_LOCK_BUSY;
    }
    return status;
}

}  // namespace KovoSim::Pam
