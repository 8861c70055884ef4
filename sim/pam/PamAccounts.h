#pragma once

#include <string>

namespace KovoSim::Pam {

// The host's accounts as the PAM module sees them: the members of "/users" in the configuration store
// ({"name", "passwordHash" (crypt(3) form), "expired", "consoleAccess"}). Answers are PAM status codes.
class PamAccounts {
  public:
    explicit PamAccounts(std::string storePath);

    // PAM_SUCCESS, PAM_AUTH_ERR (wrong password, or an account without a usable hash), PAM_USER_UNKNOWN,
    // PAM_AUTHINFO_UNAVAIL (the store cannot be read).
    int Authenticate(const std::string& user, const std::string& password) const;

    // PAM_SUCCESS, PAM_PERM_DENIED (no console access), PAM_NEW_AUTHTOK_REQD (password expired),
    // PAM_USER_UNKNOWN, PAM_AUTHINFO_UNAVAIL.
    int Account(const std::string& user) const;

    // Checks the new password against PasswordRule, then stores its salted hash and clears the expired
    // flag. PAM_SUCCESS, PAM_AUTHTOK_ERR (rule; the reason in *reason), PAM_USER_UNKNOWN,
    // PAM_AUTHTOK_LOCK_BUSY (the store cannot be written).
    int ChangePassword(const std::string& user, const std::string& password, std::string* reason) const;

    static std::string Hash(const std::string& password);

  private:
    std::string _storePath;
};

}  // namespace KovoSim::Pam
