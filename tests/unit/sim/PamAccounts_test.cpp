#include "pam/PamAccounts.h"

#include <gtest/gtest.h>
#include <security/_pam_types.h>

#include "helpers/Subprocess.h"
#include "pam/PasswordRule.h"
#include "platform/store/HostStore.h"

using KovoSim::Pam::PamAccounts;
using KovoSim::Pam::PasswordRule;
using KovoSim::Test::TempDir;
using nlohmann::json;

namespace {

class PamAccountsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ZenkCtl::Store::HostStore(_tmp / "host.json")
            .Replace(
                {{"users",
                  {{{"name", "root"},
                    {"passwordHash", PamAccounts::Hash("Right-Pass1")},
                    {"consoleAccess", true}},
                   {{"name", "late"}, {"passwordHash", PamAccounts::Hash("Right-Pass1")}, {"expired", true}},
                   {{"name", "locked"}, {"passwordHash", "!"}}}}});
    }
    PamAccounts Accounts() const { return PamAccounts(_tmp / "host.json"); }
    TempDir _tmp;
};

TEST_F(PamAccountsTest, AuthenticatesAgainstTheSaltedHash) {
    EXPECT_EQ(Accounts().Authenticate("root", "Right-Pass1"), PAM_SUCCESS);
    EXPECT_EQ(Accounts().Authenticate("root", "right-pass1"), PAM_AUTH_ERR);
    EXPECT_EQ(Accounts().Authenticate("root", ""), PAM_AUTH_ERR);
    EXPECT_EQ(Accounts().Authenticate("locked", "!"), PAM_AUTH_ERR);
    EXPECT_EQ(Accounts().Authenticate("ghost", "Right-Pass1"), PAM_USER_UNKNOWN);
    // Salted: the same password never hashes the same twice.
    EXPECT_NE(PamAccounts::Hash("Right-Pass1"), PamAccounts::Hash("Right-Pass1"));
    EXPECT_EQ(PamAccounts::Hash("Right-Pass1").rfind("$6$", 0), 0u);
}

// Which accounts log in, are denied, or must change their password, and that a change ends the expiry and
// refuses a weak password, the end-to-end login and password tests prove through the real PAM library.
TEST_F(PamAccountsTest, AChangeTouchesOnlyItsAccountAndAnUnknownOneIsRefused) {
    std::string reason;
    EXPECT_EQ(Accounts().ChangePassword("late", "New-Secret9", &reason), PAM_SUCCESS);
    EXPECT_EQ(Accounts().Authenticate("late", "New-Secret9"), PAM_SUCCESS);
    EXPECT_EQ(Accounts().Authenticate("root", "Right-Pass1"), PAM_SUCCESS);
    EXPECT_EQ(Accounts().ChangePassword("ghost", "New-Secret9", &reason), PAM_USER_UNKNOWN);
    EXPECT_EQ(Accounts().Account("ghost"), PAM_USER_UNKNOWN);
}

TEST_F(PamAccountsTest, AMissingOrBrokenStoreIsUnavailableNotACrash) {
    const PamAccounts missing(_tmp / "none.json");
    EXPECT_EQ(missing.Authenticate("root", "x"), PAM_AUTHINFO_UNAVAIL);
    EXPECT_EQ(missing.Account("root"), PAM_AUTHINFO_UNAVAIL);
    EXPECT_EQ(missing.ChangePassword("root", "New-Secret9", nullptr), PAM_AUTHTOK_LOCK_BUSY);
}

TEST(PasswordRuleTest, LengthClassesAndName) {
    EXPECT_EQ(PasswordRule::Check("root", "Abcdef1!"), "");
    EXPECT_EQ(PasswordRule::Check("root", "abcdefg1!"), "");  // lower, digit, other
    EXPECT_EQ(PasswordRule::Check("root", "ABCDEFG1a"), "");  // upper, digit, lower
    EXPECT_NE(PasswordRule::Check("root", "Abcde1!"), "");    // 7 characters
    EXPECT_NE(PasswordRule::Check("root", "abcdefgh1"), "");  // two classes
    EXPECT_NE(PasswordRule::Check("root", "ABCDEFGH!"), "");  // two classes
    EXPECT_NE(PasswordRule::Check("root", "xRoot-123"), "");  // the name, in any case
    EXPECT_NE(PasswordRule::Check("root", ""), "");
    EXPECT_EQ(PasswordRule::Check("", "Abcdef1!"), "");
}

}  // namespace
