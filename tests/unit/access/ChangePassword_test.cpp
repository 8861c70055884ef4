#include <curses.h>

#include <string>

#include "LoginTestScreen.h"
#include "access/ChangePasswordDialog.h"
#include "text/InputItem.h"
#include "text/ItemList.h"

namespace Kovo {
namespace {

using namespace Testing;

// The end-to-end tests take every refusal and a change through the host's real PAM stack; these cover
// what they cannot see: focus, field contents and the session flag. The session user is "admin".
class ChangePasswordTest : public LoginDialogs {
  protected:
    void SetUp() override {
        LoginDialogs::SetUp();
        Frame::_loginName = "admin";
        Frame::_isUserPasswordEmpty = true;
    }
    int Run(const std::string& keys) {
        Type(keys);
        TestRootFrame root;
        ChangePasswordDialog dialog(&root, FakePam::Ops(), noHost_);
        const int result = dialog.RunModal();
        for (int i = 0; i < 3; ++i) fields_[i] = dialog.Field(i).GetValue();
        focused_ = dialog.List().GetSelected();
        return result;
    }
    std::string fields_[3];
    int focused_ = -1;
};

TEST(NewPasswordChecks, RunInTheOrderTheOperatorIsToldAboutThem) {
    // A mismatch is reported before emptiness, emptiness before sameness.
    EXPECT_EQ(CheckNewPassword("a", "", "x"), NewPasswordCheck::Mismatch);
    EXPECT_EQ(CheckNewPassword("a", "a", "b"), NewPasswordCheck::Mismatch);
    EXPECT_EQ(CheckNewPassword("a", "", ""), NewPasswordCheck::Empty);
    EXPECT_EQ(CheckNewPassword("", "", ""), NewPasswordCheck::Empty);
    EXPECT_EQ(CheckNewPassword("a", "a", "a"), NewPasswordCheck::SameAsOld);
    EXPECT_EQ(CheckNewPassword("a", "b", "b"), NewPasswordCheck::Ready);
    // Passwords are compared exactly, not by a prefix or case-blind.
    EXPECT_EQ(CheckNewPassword("Pass", "pass", "pass"), NewPasswordCheck::Ready);
    EXPECT_EQ(CheckNewPassword("Pass", "Pass ", "Pass"), NewPasswordCheck::Mismatch);
}

TEST(PasswordKeyRouting, TabGoesBackUpFromConfirmAndNeverSkipsTheOldPasswordCheck) {
    EXPECT_EQ(RoutePasswordKey('\t', 2), PasswordKey::Previous);
    EXPECT_EQ(RoutePasswordKey('\t', 1), PasswordKey::Next);
    EXPECT_EQ(RoutePasswordKey('\t', 0), PasswordKey::Ignore);
    EXPECT_EQ(RoutePasswordKey(KEY_DOWN, 0), PasswordKey::Ignore);
    EXPECT_EQ(RoutePasswordKey('\n', 0), PasswordKey::VerifyOld);
    EXPECT_EQ(RoutePasswordKey('\n', 1), PasswordKey::Next);
    EXPECT_EQ(RoutePasswordKey(KEY_ENTER, 2), PasswordKey::Submit);
    EXPECT_EQ(RoutePasswordKey(27, 1), PasswordKey::Cancel);
    for (int key : {int('x'), KEY_BACKSPACE, 8, KEY_DC, KEY_LEFT, KEY_END})
        EXPECT_EQ(RoutePasswordKey(key, 1), PasswordKey::Edit) << key;
}

TEST_F(ChangePasswordTest, AnExpiredOldPasswordStillCountsAsRight) {
    EXPECT_EQ(Run("Expired-1" + Keys::kEnter + Keys::kEsc), 0);
    EXPECT_EQ(focused_, 1);
    EXPECT_EQ(fields_[0], "Expired-1");
}

TEST_F(ChangePasswordTest, OnlyASuccessfulChangeMarksTheSessionPasswordAsSet) {
    const std::string change =
        "Old-Pass1" + Keys::kEnter + "New-Pass2" + Keys::kEnter + "New-Pass2" + Keys::kEnter;
    FakePam::acceptChange = false;
    EXPECT_EQ(Run(change + Keys::kEnter + Keys::kEsc), 0);
    EXPECT_EQ(focused_, 1) << "a refused change goes back to the new password";
    EXPECT_TRUE(Frame::_isUserPasswordEmpty);

    FakePam::acceptChange = true;
    EXPECT_EQ(Run(change), 1);
    EXPECT_EQ(FakePam::changes.back(), "admin:Old-Pass1>New-Pass2");
    EXPECT_FALSE(Frame::_isUserPasswordEmpty);
}

}  // namespace
}  // namespace Kovo
