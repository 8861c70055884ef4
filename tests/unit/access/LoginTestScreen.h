#pragma once

// The offscreen curses screen with a keyboard that is a pipe: a test writes the bytes a terminal would
// send, then runs a dialog's real key loop over them.

#include <curses.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "../support/OffscreenCurses.h"
#include "frames/Frame.h"

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
}  // namespace Keys

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

    static void ResetSession() {
        Frame::_loginName.clear();
        Frame::_smartCardLoginId.clear();
        Frame::_isLoggedWithSmartCard = false;
        Frame::_isUserPasswordEmpty = false;
        Frame::_loggedIn = false;
        Frame::fgFrame = nullptr;
        usingKeyboard = false;
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

  private:
    int keys_[2] = {-1, -1};
    int savedStdin_ = -1;
};

// A parent for dialogs under test: a full-screen frame that never reads keys itself.
class TestRootFrame : public Frame {
  public:
    TestRootFrame() : Frame(nullptr, 0, 0, COLS, LINES, kBlack, kWhite) {}
    int HandleKey() override { return 0; }
};

}  // namespace Kovo::Testing
