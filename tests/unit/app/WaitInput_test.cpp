#include <curses.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <optional>

#include "app/frames/Frame.h"
#include "app/terminal/KeyReader.h"

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
    static std::optional<timeval> Within(long ms) { return timeval{ms / 1000, (ms % 1000) * 1000}; }

    int keys_[2] = {-1, -1};
    int savedStdin_ = -1;
    FILE* in_ = nullptr;
    FILE* out_ = nullptr;
    SCREEN* screen_ = nullptr;
};

TEST_F(WaitInputTest, KeyCursesReadAheadAfterEscapeIsNotLeftWaiting) {
    Type("\033q");
    EXPECT_EQ(WaitInput(Within(2000)), 27);
    // Nothing more arrives on the descriptor: the q curses already holds must still come out now.
    EXPECT_EQ(WaitInput(Within(0)), 'q');
    EXPECT_EQ(WaitInput(Within(0)), kInputTimedOut);
}

TEST_F(WaitInputTest, SignalBytesBecomeEvents) {
    const char bytes[] = {1, 2, 3, 4, 9};
    ASSERT_EQ(write(Frame::_signalPipe[1], bytes, sizeof bytes), static_cast<ssize_t>(sizeof bytes));
    EXPECT_EQ(WaitInput(Within(1000)), kHostNotification);
    EXPECT_EQ(WaitInput(Within(1000)), kRestartRequest);
    EXPECT_EQ(WaitInput(Within(1000)), kTerminalResized);
    EXPECT_EQ(WaitInput(Within(1000)), kTerminate);
    EXPECT_EQ(WaitInput(Within(1000)), kInputFailed);
}

TEST_F(WaitInputTest, KeyboardIsReadBeforeSignals) {
    const char notify = 1;
    ASSERT_EQ(write(Frame::_signalPipe[1], &notify, 1), 1);
    Type("a");
    EXPECT_EQ(WaitInput(Within(1000)), 'a');
    EXPECT_EQ(WaitInput(Within(1000)), kHostNotification);
}

TEST_F(WaitInputTest, NothingWithinTheLimitTimesOut) {
    EXPECT_EQ(WaitInput(Within(30)), kInputTimedOut);
}

}  // namespace
}  // namespace Kovo
