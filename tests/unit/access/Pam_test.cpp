#include "access/Pam.h"

#include <gtest/gtest.h>
#include <security/pam_appl.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace Kovo {
namespace {

// Runs one conversation call over messages of the given styles; returns the status and the answers
// (nullptr answers as "<none>").
struct Exchange {
    int status;
    std::vector<std::string> answers;
};

Exchange Converse(const std::vector<int>& styles, PamSecrets& secrets) {
    std::vector<pam_message> messages;
    for (int style : styles) messages.push_back({style, "prompt"});
    std::vector<const pam_message*> pointers;
    for (auto& m : messages) pointers.push_back(&m);
    pam_response* responses = nullptr;
    Exchange result{
        PamAnswerConversation(static_cast<int>(styles.size()), pointers.data(), &responses, &secrets), {}};
    if (result.status == PAM_SUCCESS) {
        for (size_t i = 0; i < styles.size(); ++i) {
            result.answers.push_back(responses[i].resp ? responses[i].resp : "<none>");
            free(responses[i].resp);
        }
        free(responses);
    }
    return result;
}

TEST(PamConversation, LoginAnswersEveryPromptWithThePassword) {
    PamSecrets secrets{"s3cret", {}, false};
    pamConvRespCount = 0;
    Exchange first = Converse({PAM_PROMPT_ECHO_OFF}, secrets);
    Exchange second =
        Converse({PAM_PROMPT_ECHO_ON, PAM_TEXT_INFO, PAM_PROMPT_ECHO_OFF, PAM_ERROR_MSG}, secrets);
    ASSERT_EQ(first.status, PAM_SUCCESS);
    ASSERT_EQ(second.status, PAM_SUCCESS);
    EXPECT_EQ(first.answers, std::vector<std::string>{"s3cret"});
    EXPECT_EQ(second.answers, (std::vector<std::string>{"s3cret", "<none>", "s3cret", "<none>"}));
    EXPECT_EQ(pamConvRespCount, 0) << "only a password change counts its answers";
}

TEST(PamConversation, ChangeAnswersTheOldPasswordFirstThenTheNewOne) {
    PamSecrets secrets{"Old-Pass1", "New-Pass2", true};
    pamConvRespCount = 0;
    // The authentication prompt, then the new password and its retype, as separate calls.
    Exchange auth = Converse({PAM_PROMPT_ECHO_OFF}, secrets);
    Exchange info = Converse({PAM_TEXT_INFO}, secrets);
    Exchange change = Converse({PAM_PROMPT_ECHO_OFF}, secrets);
    Exchange retype = Converse({PAM_PROMPT_ECHO_OFF}, secrets);
    EXPECT_EQ(auth.answers, std::vector<std::string>{"Old-Pass1"});
    EXPECT_EQ(info.answers, std::vector<std::string>{"<none>"});
    EXPECT_EQ(change.answers, std::vector<std::string>{"New-Pass2"});
    EXPECT_EQ(retype.answers, std::vector<std::string>{"New-Pass2"});
    EXPECT_EQ(pamConvRespCount, 3);

    // Both prompts in one call still answer old, then new.
    pamConvRespCount = 0;
    Exchange both = Converse({PAM_PROMPT_ECHO_OFF, PAM_PROMPT_ECHO_OFF}, secrets);
    EXPECT_EQ(both.answers, (std::vector<std::string>{"Old-Pass1", "New-Pass2"}));
}

TEST(PamConversation, MalformedCallsAreRefusedWithoutAnswers) {
    PamSecrets secrets{"pw", {}, false};
    pam_response* responses = nullptr;
    const pam_message message{PAM_PROMPT_ECHO_OFF, "Password:"};
    const pam_message* one[] = {&message};
    const pam_message* missing[] = {nullptr};
    EXPECT_EQ(PamAnswerConversation(0, one, &responses, &secrets), PAM_CONV_ERR);
    EXPECT_EQ(PamAnswerConversation(-1, one, &responses, &secrets), PAM_CONV_ERR);
    EXPECT_EQ(PamAnswerConversation(PAM_MAX_NUM_MSG + 1, one, &responses, &secrets), PAM_CONV_ERR);
    EXPECT_EQ(PamAnswerConversation(1, one, nullptr, &secrets), PAM_CONV_ERR);
    EXPECT_EQ(PamAnswerConversation(1, one, &responses, nullptr), PAM_CONV_ERR);
    EXPECT_EQ(PamAnswerConversation(1, missing, &responses, &secrets), PAM_CONV_ERR);
    EXPECT_EQ(responses, nullptr);
}

}  // namespace
}  // namespace Kovo
