#include "access/LoginDialog.h"

#include <curses.h>
#include <security/pam_appl.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

#include "LoginTestScreen.h"
#include "text/InputItem.h"
#include "text/ItemList.h"

namespace Kovo {
namespace {

using namespace Testing;
using Call = std::pair<std::string, std::string>;

// A host with three kinds of account: "ok" logs in, "deny" has no console access, "expired" must
// change its password first; everything else is an invalid login.
struct FakeHost {
    static inline std::vector<Call> authCalls;
    static inline std::vector<std::string> changes;
    static inline std::string expiredPassword = "Old-Pass1";
    static inline bool expired = true;

    static int Authenticate(const std::string& user, const std::string& password) {
        authCalls.emplace_back(user, password);
        if (user == "deny") return PAM_PERM_DENIED;
        if (user == "expired" && password == expiredPassword)
            return expired ? PAM_NEW_AUTHTOK_REQD : PAM_SUCCESS;
        if (password == "ok" || (user == "ops" && password == "1234") ||
            (user == "empty" && password.empty()))
            return PAM_SUCCESS;
        return PAM_AUTH_ERR;
    }
    static bool Change(const std::string& user, const std::string& oldPassword,
                       const std::string& newPassword) {
        changes.push_back(user + ":" + oldPassword + ">" + newPassword);
        expiredPassword = newPassword;
        expired = false;
        return true;
    }
    static PamOps Ops() { return PamOps{Authenticate, Change}; }
    static void Reset() {
        authCalls.clear();
        changes.clear();
        expiredPassword = "Old-Pass1";
        expired = true;
    }
};

class LoginDialogTest : public ScriptedScreen {
  protected:
    void SetUp() override {
        ScriptedScreen::SetUp();
        FakeHost::Reset();
    }
    // Runs a login dialog over the typed keys and returns its result.
    int Run(const std::string& keys) {
        Type(keys);
        TestRootFrame root;
        dialog_ = std::make_unique<LoginDialog>(&root, FakeHost::Ops());
        const int result = dialog_->RunModal();
        screenAtEnd_ = Screen(curscr);
        name_ = dialog_->NameField().GetValue();
        secret_ = dialog_->SecretField().GetValue();
        focused_ = dialog_->List().GetSelected();
        dialog_.reset();
        return result;
    }
    std::unique_ptr<LoginDialog> dialog_;
    std::string screenAtEnd_, name_, secret_;
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

TEST_F(LoginDialogTest, SuccessfulLoginSetsTheSessionUser) {
    EXPECT_EQ(Run(Keys::kEnter + "ok" + Keys::kEnter), 1);
    ASSERT_EQ(FakeHost::authCalls.size(), 1u);
    EXPECT_EQ(FakeHost::authCalls[0], Call("root", "ok"));
    EXPECT_EQ(Frame::_loginName, "root");
    EXPECT_FALSE(Frame::_isUserPasswordEmpty);
    EXPECT_FALSE(Frame::_isLoggedWithSmartCard);
}

TEST_F(LoginDialogTest, TypingReplacesThePrefilledNameAndAnEmptyPasswordIsRecorded) {
    EXPECT_EQ(Run("empty" + Keys::kTab + Keys::kEnter), 1);
    EXPECT_EQ(FakeHost::authCalls.at(0), Call("empty", ""));
    EXPECT_TRUE(Frame::_isUserPasswordEmpty);
}

TEST_F(LoginDialogTest, EscLeavesWithoutAskingPam) {
    EXPECT_EQ(Run("abc" + Keys::kEsc), 0);
    EXPECT_TRUE(FakeHost::authCalls.empty());
    EXPECT_TRUE(Frame::_loginName.empty());
}

TEST_F(LoginDialogTest, FailuresClearThePasswordAndNeverLockTheDialog) {
    // Three wrong passwords, a user without console access, then the right password: each message is
    // closed with Enter and the next password is typed into a cleared field.
    const std::string keys = Keys::kEnter + "bad1" + Keys::kEnter + Keys::kEnter + "bad2" + Keys::kEnter +
                             Keys::kEnter + "bad3" + Keys::kEnter + Keys::kEnter + "ok" + Keys::kEnter;
    EXPECT_EQ(Run(keys), 1);
    const std::vector<Call> expected = {{"root", "bad1"}, {"root", "bad2"}, {"root", "bad3"}, {"root", "ok"}};
    EXPECT_EQ(FakeHost::authCalls, expected);
    EXPECT_EQ(screenAtEnd_.find("bad"), std::string::npos) << "a password reached the screen";

    FakeHost::Reset();
    EXPECT_EQ(Run(Keys::kEnter + "bad" + Keys::kEnter + Keys::kEnter + Keys::kEsc), 0);
    EXPECT_EQ(secret_, "") << "a refused password stays in the field";
    EXPECT_EQ(name_, "root");
}

TEST_F(LoginDialogTest, PermissionDeniedKeepsNobodyLoggedIn) {
    EXPECT_EQ(Run("deny" + Keys::kEnter + "ok" + Keys::kEnter + Keys::kEnter + Keys::kEsc), 0);
    ASSERT_EQ(FakeHost::authCalls.size(), 1u);
    EXPECT_EQ(FakeHost::authCalls[0], Call("deny", "ok"));
    EXPECT_TRUE(Frame::_loginName.empty());
}

TEST_F(LoginDialogTest, ExpiredPasswordIsChangedThenTheUserLogsInAgain) {
    const std::string keys = "expired" + Keys::kEnter + "Old-Pass1" + Keys::kEnter +    // expired
                             Keys::kEnter +                                             // its message
                             "Old-Pass1" + Keys::kEnter + "New-Pass2" + Keys::kEnter +  // old, new
                             "New-Pass2" + Keys::kEnter +                               // confirm
                             "New-Pass2" + Keys::kEnter;                                // login again
    EXPECT_EQ(Run(keys), 1);
    EXPECT_EQ(FakeHost::changes, std::vector<std::string>{"expired:Old-Pass1>New-Pass2"});
    ASSERT_EQ(FakeHost::authCalls.size(), 3u);
    EXPECT_EQ(FakeHost::authCalls[2], Call("expired", "New-Pass2"));
    EXPECT_EQ(Frame::_loginName, "expired");
}

TEST_F(LoginDialogTest, ExpiredPasswordLeftUnchangedReturnsToTheFields) {
    // Esc in the password dialog: back in the login fields with the password cleared, still nobody in.
    const std::string keys =
        "expired" + Keys::kEnter + "Old-Pass1" + Keys::kEnter + Keys::kEnter + Keys::kEsc + "x" + Keys::kEsc;
    EXPECT_EQ(Run(keys), 0);
    EXPECT_TRUE(FakeHost::changes.empty());
    EXPECT_EQ(FakeHost::authCalls.size(), 1u);
    EXPECT_EQ(focused_, 1) << "focus stays on the password field";
}

TEST_F(LoginDialogTest, SmartCardOpensInPinModeAndF3SwitchesBothWays) {
    Frame::_smartCardLoginId = "ops";
    Type(Keys::kEsc);
    TestRootFrame root;
    LoginDialog dialog(&root, FakeHost::Ops());
    EXPECT_TRUE(dialog.PinMode());
    EXPECT_EQ(dialog.NameField().Label(), "Login Id:");
    EXPECT_EQ(dialog.NameField().GetValue(), "ops");
    EXPECT_EQ(dialog.SecretField().Label(), "PIN:");
    EXPECT_NE(dialog.Footer()->Text().find("<F3>"), std::string::npos);
    dialog.RunModal();
    Frame::_smartCardLoginId.clear();
    TestRootFrame plainRoot;
    LoginDialog plain(&plainRoot, FakeHost::Ops());
    EXPECT_FALSE(plain.PinMode());
    EXPECT_EQ(plain.Footer()->Text().find("<F3>"), std::string::npos);
}

TEST_F(LoginDialogTest, F3ChangesLabelsAndValuesAndPinLoginUsesTheCardId) {
    Frame::_smartCardLoginId = "ops";
    // PIN mode -> password mode (name "root") -> PIN mode again, then the PIN.
    EXPECT_EQ(Run(Keys::kF3 + Keys::kF3 + Keys::kEnter + "1234" + Keys::kEnter), 1);
    ASSERT_EQ(FakeHost::authCalls.size(), 1u);
    EXPECT_EQ(FakeHost::authCalls[0], Call("ops", "1234"));
    EXPECT_EQ(Frame::_loginName, "ops");

    FakeHost::Reset();
    Frame::_smartCardLoginId = "ops";
    EXPECT_EQ(Run(Keys::kF3 + Keys::kEnter + "ok" + Keys::kEnter), 1);
    EXPECT_EQ(FakeHost::authCalls.at(0), Call("root", "ok"));
}

TEST_F(LoginDialogTest, KeyboardItemComesFirstAndTabCyclesThroughAllItems) {
    usingKeyboard = true;
    // Enter and typing on the keyboard item leave the fields alone; Tab, Tab reach the password.
    EXPECT_EQ(Run(Keys::kEnter + "zz" + Keys::kTab + Keys::kTab + "ok" + Keys::kTab + Keys::kTab +
                  Keys::kTab + Keys::kEnter),
              1);
    EXPECT_EQ(FakeHost::authCalls.at(0), Call("root", "ok"));
}

TEST_F(LoginDialogTest, UpAndDownMoveBetweenTheFields) {
    EXPECT_EQ(
        Run(Keys::kDown + Keys::kUp + "ops" + Keys::kDown + "1234" + Keys::kUp + Keys::kDown + Keys::kEnter),
        1);
    // Moving back onto the password field arms replace mode but keeps its text.
    EXPECT_EQ(FakeHost::authCalls.at(0), Call("ops", "1234"));
}

TEST_F(LoginDialogTest, RandomBytesAndHugeInputNeverBreakTheDialog) {
    std::mt19937 random(20261122);
    std::string noise;
    for (int i = 0; i < 6000; ++i) {
        const char byte = static_cast<char>(random() & 0xff);
        // No Esc (it would end the script early) and no Enter (it would submit), with or without the
        // eighth bit, which the keyboard may strip.
        const char low = static_cast<char>(byte & 0x7f);
        if (low != '\033' && low != '\n' && low != '\r') noise += byte;
    }
    const std::string huge(5000, 'n');
    // Whatever the noise did to the focus, Up twice lands on the name field.
    EXPECT_EQ(Run(noise + Keys::kUp + Keys::kUp + Keys::kHome + huge + Keys::kEsc), 0);
    EXPECT_TRUE(FakeHost::authCalls.empty());
    EXPECT_GE(name_.size(), huge.size());
    for (char c : name_) EXPECT_TRUE(isprint(static_cast<unsigned char>(c))) << int(c);
}

}  // namespace
}  // namespace Kovo
