#pragma once

// The offscreen curses screen with a keyboard that is a pipe: a test writes the bytes a terminal would
// send, then runs a dialog's real key loop over them.

#include <curses.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <security/pam_appl.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "../support/OffscreenCurses.h"
#include "access/Pam.h"
#include "frames/Frame.h"
#include "frames/HostAccess.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/HalvorHostFactory.h"

namespace Kovo::Testing {

// Key sequences of an xterm-256color keyboard in application mode.
namespace Keys {
// A bare ESC makes curses wait for a sequence and swallow the key typed after it; a person's keys come
// apart in time, a script's do not. The scripted Esc is therefore a sequence of its own that reads as Esc.
inline const std::string kEsc = "\033[999~";
inline const std::string kEnter = "\n";
inline const std::string kTab = "\t";
inline const std::string kUp = "\033OA";
inline const std::string kDown = "\033OB";
inline const std::string kRight = "\033OC";
inline const std::string kLeft = "\033OD";
inline const std::string kHome = "\033OH";
inline const std::string kEnd = "\033OF";
inline const std::string kF3 = "\033OR";
inline const std::string kBackspace = "\177";
inline const std::string kDelete = "\033[3~";
// `key` typed n times.
inline std::string Times(int n, const std::string& key) {
    std::string keys;
    for (int i = 0; i < n; ++i) keys += key;
    return keys;
}
}  // namespace Keys

// No one logged in, no card seen, no frame in front.
inline void ResetSession() {
    Frame::_loginName.clear();
    Frame::_smartCardLoginId.clear();
    Frame::_isLoggedWithSmartCard = false;
    Frame::_isUserPasswordEmpty = false;
    Frame::_loggedIn = false;
    Frame::fgFrame = nullptr;
    usingKeyboard = false;
}

// A parent for dialogs under test: a full-screen frame that never reads keys itself.
class TestRootFrame : public Frame {
  public:
    TestRootFrame() : Frame(nullptr, 0, 0, COLS, LINES, kBlack, kWhite) {}
    int HandleKey() override { return 0; }
};

class ScriptedScreen : public OffscreenCurses {
  protected:
    void SetUp() override {
        // A loop that waits for a key the script never sends must fail the run, not hang it.
        alarm(20);
        ASSERT_EQ(pipe(keys_), 0);
        savedStdin_ = dup(0);
        ASSERT_EQ(dup2(keys_[0], 0), 0);
        OpenScreen(fdopen(dup(keys_[0]), "r"));
        keypad(stdscr, TRUE);
        set_escdelay(25);
        define_key(Keys::kEsc.c_str(), 27);
        ResetSession();
    }

    void TearDown() override {
        OffscreenCurses::TearDown();
        dup2(savedStdin_, 0);
        close(savedStdin_);
        close(keys_[0]);
        close(keys_[1]);
        ResetSession();
        alarm(0);
    }

    // Queues the bytes of keys for the dialog's loop to read.
    void Type(const std::string& bytes) {
        size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t n = write(keys_[1], bytes.data() + done, bytes.size() - done);
            ASSERT_GT(n, 0);
            done += static_cast<size_t>(n);
        }
    }
    // Runs a D made over `host` on the typed keys, hands it to `check` and returns its result.
    template <typename D, typename Host>
    int RunOn(Host& host, const std::string& keys, const std::function<void(D&)>& check = nullptr) {
        Type(keys);
        TestRootFrame root;
        D dialog(&root, host);
        const int result = dialog.RunModal();
        if (check) check(dialog);
        return result;
    }

  private:
    int keys_[2] = {-1, -1};
    int savedStdin_ = -1;
};

// PAM for the login dialogs: "ok" logs anyone in, "ops" also with "1234" and "empty" with nothing;
// "Old-Pass1" is right ("expired"'s right but expired) and "Expired-1" right but expired for anyone;
// everything else is an invalid login. A password change is taken while `acceptChange` says so.
struct FakePam {
    using Call = std::pair<std::string, std::string>;
    static inline std::vector<Call> authCalls;
    static inline std::vector<std::string> changes;
    static inline bool acceptChange = true;

    static int Authenticate(const std::string& user, const std::string& password) {
        authCalls.emplace_back(user, password);
        if (password == "Expired-1" || (user == "expired" && password == "Old-Pass1"))
            return PAM_NEW_AUTHTOK_REQD;
        if (password == "ok" || password == "Old-Pass1" || (user == "ops" && password == "1234") ||
            (user == "empty" && password.empty()))
            return PAM_SUCCESS;
        return PAM_AUTH_ERR;
    }
    static bool Change(const std::string& user, const std::string& oldPassword,
                       const std::string& newPassword) {
        changes.push_back(user + ":" + oldPassword + ">" + newPassword);
        return acceptChange;
    }
    static PamOps Ops() { return PamOps{Authenticate, Change}; }
};

// The login dialogs' screen: the fake PAM, and a host whose store cannot be read, so that a dialog works
// from PAM alone.
class LoginDialogs : public ScriptedScreen {
  protected:
    void SetUp() override {
        ScriptedScreen::SetUp();
        FakePam::authCalls.clear();
        FakePam::changes.clear();
        FakePam::acceptChange = true;
    }

    HostAccess noHost_{std::make_unique<ZenkCtl::HalvorHostFactory>(
        std::make_shared<ZenkCtl::Store::HostStore>("/nonexistent/kovo/host.json"))};
};

}  // namespace Kovo::Testing
