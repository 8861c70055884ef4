#include "access/PamLibrary.h"
#include "frames/Log.h"

#include <dlfcn.h>

#include <algorithm>
#include <iterator>

namespace Kovo::PamLibrary {

namespace {

struct Library {
    bool loaded = false;
    decltype(&pam_start) start = nullptr;
    decltype(&pam_end) end = nullptr;
    decltype(&pam_authenticate) authenticate = nullptr;
    decltype(&pam_acct_mgmt) acctMgmt = nullptr;
    decltype(&pam_chauthtok) chauthtok = nullptr;
    decltype(&pam_setcred) setcred = nullptr;
    decltype(&pam_set_item) setItem = nullptr;
};

template <typename Function>
bool Resolve(void* handle, const char* name, Function& function) {
    function = reinterpret_cast<Function>(::dlsym(handle, name));
    if (!function) LogError(std::string("libpam has no ") + name);
    return function != nullptr;
}

Library Load() {
    Library library;
    // Global and never closed: the PAM modules it loads look its symbols up and live as long as it does.
    void* handle = ::dlopen("libpam.so.0", RTLD_NOW | RTLD_GLOBAL);
    if (!handle) {
        const char* reason = ::dlerror();
        LogError(std::string("libpam cannot be loaded: ") + (reason ? reason : "not found"));
        return library;
    }
    // Every one is looked up, so the log names each that is missing.
    const bool found[] = {
        Resolve(handle, "pam_start", library.start),
        Resolve(handle, "pam_end", library.end),
        Resolve(handle, "pam_authenticate", library.authenticate),
        Resolve(handle, "pam_acct_mgmt", library.acctMgmt),
        Resolve(handle, "pam_chauthtok", library.chauthtok),
        Resolve(handle, "pam_setcred", library.setcred),
        Resolve(handle, "pam_set_item", library.setItem),
    };
    library.loaded = std::all_of(std::begin(found), std::end(found), [](bool each) { return each; });
    return library;
}

const Library& Loaded() {
    static const Library library = Load();
    return library;
}

}  // namespace

int Start(const char* service, const char* user, const pam_conv* conversation, pam_handle_t** handle) {
    *handle = nullptr;
    const Library& library = Loaded();
    return library.loaded ? library.start(service, user, conversation, handle) : PAM_ABORT;
}

// Only reached with a handle Start handed out, so the library is there.
int End(pam_handle_t* handle, int status) {
    return Loaded().end(handle, status);
}
int Authenticate(pam_handle_t* handle, int flags) {
    return Loaded().authenticate(handle, flags);
}
int AcctMgmt(pam_handle_t* handle, int flags) {
    return Loaded().acctMgmt(handle, flags);
}
int Chauthtok(pam_handle_t* handle, int flags) {
    return Loaded().chauthtok(handle, flags);
}
int Setcred(pam_handle_t* handle, int flags) {
    return Loaded().setcred(handle, flags);
}
int SetItem(pam_handle_t* handle, int type, const void* item) {
    return Loaded().setItem(handle, type, item);
}

}  // namespace Kovo::PamLibrary
