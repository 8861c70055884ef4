#pragma once

#include <security/pam_appl.h>

#include <string>

namespace Kovo {

// Answers given by the password-change conversation so far: the first prompt gets the old password,
// every later one the new. Shared, so only one PAM transaction may run at a time (the UI thread's).
extern int pamConvRespCount;

// Authenticates and checks the account under the console's PAM service; returns the PAM status
// (PAM_SUCCESS, PAM_PERM_DENIED, PAM_NEW_AUTHTOK_REQD, ...).
int PamAuthenticate(const std::string& user, const std::string& password);

// Verifies the old password and sets the new one; true when the host took the new password.
bool PamChangePassword(const std::string& user, const std::string& oldPassword,
                       const std::string& newPassword);

// The PAM calls the credential dialogs make; the host's PAM unless a caller hands in others.
struct PamOps {
    int (*authenticate)(const std::string& user, const std::string& password) = PamAuthenticate;
    bool (*changePassword)(const std::string& user, const std::string& oldPassword,
                           const std::string& newPassword) = PamChangePassword;
};

// The secrets a conversation answers with. Wiped when it goes out of scope so that no copy of a
// password outlives the transaction.
struct PamSecrets {
    std::string first;  // every prompt when `later` is unused; the first prompt otherwise
    std::string later;  // prompts after the first, counted in pamConvRespCount
    bool changing = false;
    ~PamSecrets();
};

// The conversation functions handed to pam_start; `appdata` is a PamSecrets. Prompts get a secret,
// informational and error messages get no text. PAM_CONV_ERR for a malformed call, PAM_BUF_ERR when
// memory runs out (nothing is leaked either way).
int PamAnswerConversation(int count, const struct pam_message** messages, struct pam_response** responses,
                          void* appdata);

}  // namespace Kovo
