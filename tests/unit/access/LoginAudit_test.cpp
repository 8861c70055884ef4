#include "access/LoginAudit.h"

#include <gtest/gtest.h>

namespace Kovo {
namespace {

// The event, user, outcome and reason; a hostile user name cannot forge attributes.
TEST(LoginAudit, RecordsEventUserOutcomeAndReasonThatNoUserNameForges) {
    EXPECT_EQ(FormatLoginAudit("login.connect", "root", true, nullptr),
              "login.connect user=\"root\" result=success");
    EXPECT_EQ(FormatLoginAudit("login.disconnect", "root", true, "Time out"),
              "login.disconnect user=\"root\" result=success reason=\"Time out\"");
    EXPECT_EQ(FormatLoginAudit("login.connect", "ops", false, "Invalid Login"),
              "login.connect user=\"ops\" result=failure reason=\"Invalid Login\"");
    EXPECT_EQ(FormatLoginAudit("login.connect", "x\" result=success", false, nullptr),
              "login.connect user=\"x\\\" result=success\" result=failure");
    EXPECT_EQ(FormatLoginAudit("login.connect", "a\nb", false, nullptr),
              "login.connect user=\"a?b\" result=failure");
}

}  // namespace
}  // namespace Kovo
