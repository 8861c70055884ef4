// Drives the "kovo" PAM service through the real Linux-PAM library, as the console does:
//   sim_pam_client USER PASSWORD [NEW RETYPE]
// prints "authenticate=N", then "account=N" after a successful authentication, then "chauthtok=N" when a
// new password is given, and "message: TEXT" for every message the modules send.
#include <security/pam_appl.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>

namespace {

struct Answers {
    std::deque<std::string> queue;
};

int Converse(int count, const struct pam_message** messages, struct pam_response** responses, void* data) {
    auto* answers = static_cast<Answers*>(data);
    auto* replies = static_cast<pam_response*>(std::calloc(static_cast<size_t>(count), sizeof(pam_response)));
    if (!replies) return PAM_BUF_ERR;
    for (int i = 0; i < count; ++i) {
        const int style = messages[i]->msg_style;
        if (style == PAM_PROMPT_ECHO_OFF || style == PAM_PROMPT_ECHO_ON) {
            const std::string answer = answers->queue.empty() ? std::string() : answers->queue.front();
            if (!answers->queue.empty()) answers->queue.pop_front();
            replies[i].resp = strdup(answer.c_str());
        } else {
            std::printf("message: %s\n", messages[i]->msg);
        }
    }
    *responses = replies;
    return PAM_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3 && argc != 5) {
        std::fprintf(stderr, "usage: sim_pam_client USER PASSWORD [NEW RETYPE]\n");
        return 2;
    }
    Answers answers;
    answers.queue.push_back(argv[2]);
    struct pam_conv conversation = {Converse, &answers};
    pam_handle_t* handle = nullptr;
    int status = pam_start("kovo", argv[1], &conversation, &handle);
    if (status != PAM_SUCCESS) {
        std::printf("start=%d\n", status);
        return 1;
    }
    status = pam_authenticate(handle, 0);
    std::printf("authenticate=%d\n", status);
    if (status == PAM_SUCCESS) {
        const int account = pam_acct_mgmt(handle, 0);
        std::printf("account=%d\n", account);
        if (argc == 5) {
            answers.queue = {argv[3], argv[4]};
            const int change =
                pam_chauthtok(handle, account == PAM_NEW_AUTHTOK_REQD ? PAM_CHANGE_EXPIRED_AUTHTOK : 0);
            std::printf("chauthtok=%d\n", change);
        }
    }
    pam_end(handle, status);
    return 0;
}
