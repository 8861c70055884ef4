#include "access/LoginDialog.h"

#include <curses.h>

#include <string>

#include "LoginTestScreen.h"
#include "text/InputItem.h"
#include "text/ItemList.h"
#include "text/TextArea.h"

namespace Kovo {
namespace {

using namespace Testing;
using Call = FakePam::Call;

// The end-to-end tests cover each outcome through the host's real PAM stack; these cover how the dialog's
// keys and fields reach PAM.
class LoginDialogTest : public LoginDialogs {
  protected:
    // Runs a login dialog over the typed keys and returns its result.
    int Run(const std::string& keys) {
        Type(keys);
        TestRootFrame root;
        dialog_ = std::make_unique<LoginDialog>(&root, FakePam::Ops(), noHost_);
        const int result = dialog_->RunModal();
        name_ = dialog_->NameField().GetValue();
        focused_ = dialog_->List().GetSelected();
        dialog_.reset();
        return result;
    }
    std::unique_ptr<LoginDialog> dialog_;
    std::string name_;
    int focused_ = -1;
};

TEST(LoginKeyRouting, TabWrapsOnTheLastItemWhileEnterSubmitsThere) {
    EXPECT_EQ(RouteLoginKey('\t', 1, 2, false), LoginKey::First);
    EXPECT_EQ(RouteLoginKey('\t', 0, 2, false), LoginKey::Next);
    EXPECT_EQ(RouteLoginKey('\n', 0, 2, false), LoginKey::Next);
    EXPECT_EQ(RouteLoginKey('\n', 1, 2, false), LoginKey::Submit);
    EXPECT_EQ(RouteLoginKey(KEY_ENTER, 2, 3, true), LoginKey::Submit);
    EXPECT_EQ(RouteLoginKey('\t', 2, 3, true), LoginKey::First);
}

TEST(LoginKeyRouting, KeyboardItemOpensOnEnterAndTakesNoTyping) {
    EXPECT_EQ(RouteLoginKey('\n', 0, 3, true), LoginKey::Keyboard);
    EXPECT_EQ(RouteLoginKey('x', 0, 3, true), LoginKey::Ignore);
    EXPECT_EQ(RouteLoginKey(KEY_BACKSPACE, 0, 3, true), LoginKey::Ignore);
    EXPECT_EQ(RouteLoginKey('x', 1, 3, true), LoginKey::Edit);
    // Without the keyboard item the first item is the name field.
    EXPECT_EQ(RouteLoginKey('x', 0, 2, false), LoginKey::Edit);
}

TEST(LoginKeyRouting, EditingKeysGoToTheFieldOthersAreIgnored) {
    for (int key :
         {int('a'), int(' '), int('~'), KEY_BACKSPACE, 8, KEY_DC, KEY_LEFT, KEY_RIGHT, KEY_HOME, KEY_END})
        EXPECT_EQ(RouteLoginKey(key, 1, 2, false), LoginKey::Edit) << key;
    for (int key : {KEY_F(5), KEY_NPAGE, 0x7f + 1, 0xe9, 1, 300})
        EXPECT_EQ(RouteLoginKey(key, 1, 2, false), LoginKey::Ignore) << key;
    EXPECT_EQ(RouteLoginKey(27, 0, 2, false), LoginKey::Cancel);
    EXPECT_EQ(RouteLoginKey(KEY_UP, 1, 2, false), LoginKey::Previous);
    EXPECT_EQ(RouteLoginKey(KEY_DOWN, 0, 2, false), LoginKey::Next);
    EXPECT_EQ(RouteLoginKey(KEY_F(3), 1, 2, false), LoginKey::ToggleMode);
}

TEST_F(LoginDialogTest, TypingReplacesThePrefilledNameAndAnEmptyPasswordIsRecorded) {
    EXPECT_EQ(Run("empty" + Keys::kTab + Keys::kEnter), 1);
    EXPECT_EQ(FakePam::authCalls.at(0), Call("empty", ""));
    EXPECT_TRUE(Frame::_isUserPasswordEmpty);
}

TEST_F(LoginDialogTest, ExpiredPasswordLeftUnchangedReturnsToTheFields) {
    // Esc in the password dialog: back in the login fields with the password cleared, still nobody in.
    const std::string keys =
        "expired" + Keys::kEnter + "Old-Pass1" + Keys::kEnter + Keys::kEnter + Keys::kEsc + "x" + Keys::kEsc;
    EXPECT_EQ(Run(keys), 0);
    EXPECT_TRUE(FakePam::changes.empty());
    EXPECT_EQ(FakePam::authCalls.size(), 1u);
    EXPECT_EQ(focused_, 1) << "focus stays on the password field";
}

TEST_F(LoginDialogTest, F3ChangesLabelsAndValuesAndPinLoginUsesTheCardId) {
    Frame::_smartCardLoginId = "ops";
    // PIN mode -> password mode (name "root") -> PIN mode again, then the PIN.
    EXPECT_EQ(Run(Keys::kF3 + Keys::kF3 + Keys::kEnter + "1234" + Keys::kEnter), 1);
    ASSERT_EQ(FakePam::authCalls.size(), 1u);
    EXPECT_EQ(FakePam::authCalls[0], Call("ops", "1234"));
    EXPECT_EQ(Frame::_loginName, "ops");

    FakePam::authCalls.clear();
    Frame::_smartCardLoginId = "ops";
    EXPECT_EQ(Run(Keys::kF3 + Keys::kEnter + "ok" + Keys::kEnter), 1);
    EXPECT_EQ(FakePam::authCalls.at(0), Call("root", "ok"));
}

}  // namespace
}  // namespace Kovo
