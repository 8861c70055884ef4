#include "access/Pam.h"

#include <string.h>
#include <unistd.h>

#include <cstdlib>

#include "access/PamLibrary.h"
#include "terminal/Session.h"

namespace Kovo {

int pamConvRespCount = 0;

PamSecrets::~PamSecrets() {
    explicit_bzero(first.data(), first.size());
    explicit_bzero(later.data(), later.size());
}

namespace {

bool IsPrompt(int style) {
    return style == PAM_PROMPT_ECHO_OFF || style == PAM_PROMPT_ECHO_ON;
}

void FreeResponses(pam_response* responses, int count) {
    for (int i = 0; i < count; ++i) {
        if (responses[i].resp) {
            explicit_bzero(responses[i].resp, strlen(responses[i].resp));
            free(responses[i].resp);
        }
    }
    free(responses);
}

// Names the terminal the operator sits at ("tty1", "ttyS0"), as login does: the host's modules log it,
// pam_faillock records it as the source of a failure, and pam_securetty or pam_access decide by it.
void SetTerminal(pam_handle_t* handle) {
    const char* path = ttyname(STDIN_FILENO);
    if (!path) return;
    if (strncmp(path, "/dev/", 5) == 0) path += 5;
    PamLibrary::SetItem(handle, PAM_TTY, path);
}

}  // namespace

int PamAnswerConversation(int count, const pam_message** messages, pam_response** responses, void* appdata) {
    if (count <= 0 || count > PAM_MAX_NUM_MSG || !messages || !responses || !appdata) return PAM_CONV_ERR;
    auto* secrets = static_cast<PamSecrets*>(appdata);
    auto* answers = static_cast<pam_response*>(calloc(static_cast<size_t>(count), sizeof(pam_response)));
    if (!answers) return PAM_BUF_ERR;
    for (int i = 0; i < count; ++i) {
        if (!messages[i]) {
            FreeResponses(answers, count);
            return PAM_CONV_ERR;
        }
        if (!IsPrompt(messages[i]->msg_style)) continue;  // information and errors need no answer
        const std::string* secret = &secrets->first;
        if (secrets->changing) {
            if (pamConvRespCount > 0) secret = &secrets->later;
            ++pamConvRespCount;
        }
        answers[i].resp = strdup(secret->c_str());
        if (!answers[i].resp) {
            FreeResponses(answers, count);
            return PAM_BUF_ERR;
        }
    }
    *responses = answers;
    return PAM_SUCCESS;
}

int PamAuthenticate(const std::string& user, const std::string& password) {
    PamSecrets secrets{password, {}, false};
    const pam_conv conversation{PamAnswerConversation, &secrets};
    pam_handle_t* handle = nullptr;
    int status = PamLibrary::Start(KOVO_APP, user.c_str(), &conversation, &handle);
    if (status == PAM_SUCCESS) {
        SetTerminal(handle);
        status = PamLibrary::Authenticate(handle, PAM_SILENT);
        if (status == PAM_SUCCESS) status = PamLibrary::AcctMgmt(handle, PAM_SILENT);
    }
    if (handle) PamLibrary::End(handle, status);
    return status;
}

bool PamChangePassword(const std::string& user, const std::string& oldPassword,
                       const std::string& newPassword) {
    PamSecrets secrets{oldPassword, newPassword, true};
    pamConvRespCount = 0;
    const pam_conv conversation{PamAnswerConversation, &secrets};
    pam_handle_t* handle = nullptr;
    int status = PamLibrary::Start(KOVO_APP, user.c_str(), &conversation, &handle);
    if (status != PAM_SUCCESS) {
        if (handle) PamLibrary::End(handle, status);
        return false;
    }
    SetTerminal(handle);
    status = PamLibrary::Authenticate(handle, PAM_SILENT);
    // An expired password still proves who the user is: that is exactly when it must be changed.
    if (status == PAM_SUCCESS || status == PAM_NEW_AUTHTOK_REQD)
        status = PamLibrary::AcctMgmt(handle, PAM_SILENT);
    if (status == PAM_SUCCESS || status == PAM_NEW_AUTHTOK_REQD) {
        status = PamLibrary::Chauthtok(handle, PAM_SILENT);
        if (status == PAM_SUCCESS) {
            status = PamLibrary::Setcred(handle, PAM_REFRESH_CRED);
            PamLibrary::End(handle, status);
            return status == PAM_SUCCESS;
        }
    }
    PamLibrary::End(handle, status);
    return false;
}

}  // namespace Kovo
