// The simulated host's PAM module: accounts from the host's configuration store.
#include <security/pam_ext.h>
#include <security/pam_modules.h>

#include <string>

#include "PamAccounts.h"
#include "platform/store/HostStore.h"

namespace {

// "store=PATH" names another store (tests of the module outside a host).
std::string StorePath(int argc, const char** argv) {
    for (int i = 0; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg.rfind("store=", 0) == 0) return arg.substr(6);
    }
    return ZenkCtl::Store::HostStore::kHostPath;
}

int User(pam_handle_t* pamh, std::string& user) {
    const char* name = nullptr;
    const int status = pam_get_user(pamh, &name, nullptr);
    if (status != PAM_SUCCESS) return status;
    if (!name || !*name) return PAM_USER_UNKNOWN;
    user = name;
    return PAM_SUCCESS;
}

// No exception may leave the module into the C library.
template <typename F>
int Guarded(F body) {
    try {
        return body();
    } catch (...) {
        return PAM_SERVICE_ERR;
    }
}

}  // namespace

extern "C" {

PAM_EXTERN int pam_sm_authenticate(pam_handle_t* pamh, int, int argc, const char** argv) {
    return Guarded([&] {
        std::string user;
        if (const int status = User(pamh, user); status != PAM_SUCCESS) return status;
        const char* password = nullptr;
        if (const int status = pam_get_authtok(pamh, PAM_AUTHTOK, &password, nullptr); status != PAM_SUCCESS)
            return status;
        return KovoSim::Pam::PamAccounts(StorePath(argc, argv)).Authenticate(user, password ? password : "");
    });
}

PAM_EXTERN int pam_sm_setcred(pam_handle_t*, int, int, const char**) {
    return PAM_SUCCESS;
}

PAM_EXTERN int pam_sm_acct_mgmt(pam_handle_t* pamh, int, int argc, const char** argv) {
    return Guarded([&] {
        std::string user;
        if (const int status = User(pamh, user); status != PAM_SUCCESS) return status;
        return KovoSim::Pam::PamAccounts(StorePath(argc, argv)).Account(user);
    });
}

PAM_EXTERN int pam_sm_chauthtok(pam_handle_t* pamh, int flags, int argc, const char** argv) {
    return Guarded([&] {
        if (flags & PAM_PRELIM_CHECK) return PAM_SUCCESS;
        std::string user;
        if (const int status = User(pamh, user); status != PAM_SUCCESS) return status;
        const char* password = nullptr;
        // Prompts for the new password and its retype itself; a mismatch comes back as its status.
        if (const int status = pam_get_authtok(pamh, PAM_AUTHTOK, &password, nullptr); status != PAM_SUCCESS)
            return status;
        std::string reason;
        const int status = KovoSim::Pam::PamAccounts(StorePath(argc, argv))
                               .ChangePassword(user, password ? password : "", &reason);
        if (status == PAM_AUTHTOK_ERR && !reason.empty()) pam_error(pamh, "%s", reason.c_str());
        return status;
    });
}

PAM_EXTERN int pam_sm_open_session(pam_handle_t*, int, int, const char**) {
    return PAM_SUCCESS;
}

PAM_EXTERN int pam_sm_close_session(pam_handle_t*, int, int, const char**) {
    return PAM_SUCCESS;
}

}  // extern "C"
