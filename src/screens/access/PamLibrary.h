#pragma once

#include <security/pam_appl.h>

// Linux-PAM, loaded at the first login or password change rather than at start-up: the console's first
// screen does not wait for the library and the ones it brings (audit, capabilities). The calls are
// PAM's own, with its contracts. When the library cannot be loaded, Start answers PAM_ABORT (logged)
// and hands out no handle, so nothing else is ever called.
namespace Kovo::PamLibrary {

int Start(const char* service, const char* user, const pam_conv* conversation, pam_handle_t** handle);
int End(pam_handle_t* handle, int status);
int Authenticate(pam_handle_t* handle, int flags);
int AcctMgmt(pam_handle_t* handle, int flags);
int Chauthtok(pam_handle_t* handle, int flags);
int Setcred(pam_handle_t* handle, int flags);
int SetItem(pam_handle_t* handle, int type, const void* item);

}  // namespace Kovo::PamLibrary
