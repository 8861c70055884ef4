#include <curses.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <optional>
#include <string>

#include "frames/Frame.h"
#include "terminal/KeyReader.h"

namespace Kovo {
namespace {

// The key reader on a curses screen whose keyboard is a pipe standing in for descriptor 0.
class WaitInputTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(pipe(keys_), 0);
        ASSERT_EQ(pipe(Frame::_signalPipe), 0);
        savedStdin_ = dup(0);
        ASSERT_EQ(dup2(keys_[0], 0), 0);
        in_ = fdopen(dup(0), "r");
        out_ = fopen("/dev/null", "w");
        screen_ = newterm("xterm", out_, in_);
        ASSERT_NE(screen_, nullptr);
        set_term(screen_);
        cbreak();
        noecho();
        keypad(stdscr, TRUE);
        set_escdelay(100);
    }
    void TearDown() override {
        endwin();
        delscreen(screen_);
        fclose(in_);
        fclose(out_);
        dup2(savedStdin_, 0);
        close(savedStdin_);
        for (int fd : {keys_[0], keys_[1], Frame::_signalPipe[0], Frame::_signalPipe[1]}) close(fd);
    }
    void Type(const char* bytes) {
        ASSERT_EQ(write(keys_[1], bytes, strlen(bytes)), static_cast<ssize_t>(strlen(bytes)));
    }
    static void SignalBytes(const std::string& bytes) {
        ASSERT_EQ(write(Frame::_signalPipe[1], bytes.data(), bytes.size()),
                  static_cast<ssize_t>(bytes.size()));
    }
    // The terminal's far end goes away: descriptor 0 reports hang-up and end of input.
    void HangUpKeyboard() {
        close(keys_[1]);
        keys_[1] = -1;
    }
    static std::optional<timeval> Within(long ms) { return timeval{ms / 1000, (ms % 1000) * 1000}; }

    int keys_[2] = {-1, -1};
    int savedStdin_ = -1;
    FILE* in_ = nullptr;
    FILE* out_ = nullptr;
    SCREEN* screen_ = nullptr;
};

// After an Esc, or a sequence the terminal's keys do not explain, curses holds what it read ahead;
// nothing more arrives on the descriptor, and every held byte must still come out now.
TEST_F(WaitInputTest, KeysCursesReadAheadAreNotLeftWaiting) {
    for (const std::string& typed : {std::string("\033q"), std::string("\033[H"), std::string("\033[1;9Z")}) {
        Type(typed.c_str());
        EXPECT_EQ(WaitInput(Within(2000)), 27) << typed.substr(1);
        for (char held : typed.substr(1)) EXPECT_EQ(WaitInput(Within(0)), held) << typed.substr(1);
        EXPECT_EQ(WaitInput(Within(0)), kInputTimedOut) << typed.substr(1);
    }
}

TEST_F(WaitInputTest, QueuedSignalBytesCollapseAndTheUrgentOnesComeFirst) {
    // A storm of notifications with a restart request, a resize, an unknown byte and the termination
    // queued behind it: ending and resizing act at once, the rest once each, however many were queued.
    std::string bytes(5000, '\1');
    bytes += "\2\2\3";
    bytes += std::string(5000, '\1');
    bytes += "\x09\4";
    SignalBytes(bytes);
    EXPECT_EQ(WaitInput(Within(1000)), kTerminate);
    EXPECT_EQ(WaitInput(Within(1000)), kTerminalResized);
    EXPECT_EQ(WaitInput(Within(1000)), kRestartRequest);
    EXPECT_EQ(WaitInput(Within(1000)), kHostNotification);
    EXPECT_EQ(WaitInput(Within(0)), kInputTimedOut);
    // Notifications arriving after the redraw are one more.
    SignalBytes(std::string(300, '\1'));
    EXPECT_EQ(WaitInput(Within(1000)), kHostNotification);
    EXPECT_EQ(WaitInput(Within(0)), kInputTimedOut);
}

TEST_F(WaitInputTest, KeysGoBeforeRedrawsButNotBeforeTermination) {
    SignalBytes("\1");
    Type("a");
    EXPECT_EQ(WaitInput(Within(1000)), 'a');
    EXPECT_EQ(WaitInput(Within(1000)), kHostNotification);
    Type("b");
    SignalBytes("\1\4");
    EXPECT_EQ(WaitInput(Within(1000)), kTerminate);
    EXPECT_EQ(WaitInput(Within(1000)), 'b');
    EXPECT_EQ(WaitInput(Within(1000)), kHostNotification);
}

TEST_F(WaitInputTest, HungUpKeyboardEndsInputAfterWhatWasTypedAndStarvesNoSignal) {
    Type("xy");
    HangUpKeyboard();
    EXPECT_EQ(WaitInput(Within(1000)), 'x');
    EXPECT_EQ(WaitInput(Within(1000)), 'y');
    EXPECT_EQ(WaitInput(Within(1000)), kTerminalGone);
    EXPECT_EQ(WaitInput(Within(1000)), kTerminalGone) << "asked again, still gone";
    // The descriptor reports nothing but hang-up, every time: the termination byte is still read.
    SignalBytes("\4");
    EXPECT_EQ(WaitInput(Within(1000)), kTerminate);
}

TEST_F(WaitInputTest, NothingWithinTheLimitTimesOut) {
    EXPECT_EQ(WaitInput(Within(30)), kInputTimedOut);
}

}  // namespace
}  // namespace Kovo
