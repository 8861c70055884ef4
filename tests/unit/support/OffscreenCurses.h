#pragma once

// ncurses on /dev/null for unit tests: a real 80x25 screen with the program's colours and no terminal,
// to draw into and read cells back from.

#include <curses.h>
#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <cstdio>
#include <cwchar>
#include <memory>
#include <string>
#include <utility>

#include "main/Startup.h"
#include "terminal/Colors.h"
#include "terminal/Window.h"

namespace Kovo::Testing {

class OffscreenCurses : public ::testing::Test {
  public:
    // The attribute word (colour pair included) of a cell of a window.
    static attr_t AttrAt(WINDOW* win, int y, int x) { return mvwinch(win, y, x) & (A_ATTRIBUTES | A_COLOR); }

    static short PairAt(WINDOW* win, int y, int x) { return CellAt(win, y, x).second; }

    // The character of one cell, as UTF-8.
    static std::string Cell(WINDOW* win, int y, int x) {
        char bytes[MB_LEN_MAX];
        std::mbstate_t state{};
        const auto [character, pair] = CellAt(win, y, x);
        const std::size_t n = pair < 0 ? 0 : std::wcrtomb(bytes, character, &state);
        return n == static_cast<std::size_t>(-1) ? std::string() : std::string(bytes, n);
    }

    // The text of one row of a window, as UTF-8.
    static std::string Row(WINDOW* win, int y) {
        std::string text;
        for (int x = 0; x < getmaxx(win); ++x) text += Cell(win, y, x);
        return text;
    }

    // Every row of a window, one line each.
    static std::string Screen(WINDOW* win) {
        std::string text;
        for (int y = 0; y < getmaxy(win); ++y) text += Row(win, y) + "\n";
        return text;
    }

  protected:
    void SetUp() override { OpenScreen(std::fopen("/dev/null", "r")); }
    void TearDown() override {
        rootWindow_.reset();
        if (screen_) {
            endwin();
            delscreen(screen_);
        }
        if (out_) std::fclose(out_);
        if (in_) std::fclose(in_);
        bwColor = false;
    }

    // Starts curses reading keys from `in` and writing to `out` (/dev/null when not given); the fixture
    // then owns both.
    void OpenScreen(FILE* in, FILE* out = nullptr) {
        std::setlocale(LC_ALL, "C.UTF-8");
        in_ = in;
        out_ = out ? out : std::fopen("/dev/null", "w");
        screen_ = newterm("xterm-256color", out_, in_);
        ASSERT_NE(screen_, nullptr);
        set_term(screen_);
        resizeterm(25, 80);
        start_color();
        bwColor = false;
        InitColors();
    }

    // A screen-sized window in the given colours to draw into, removed before the screen.
    Window* Root(int background, int foreground) {
        rootWindow_ = std::make_unique<Window>(0, 0, 80, 25, background, foreground);
        return rootWindow_.get();
    }

    std::unique_ptr<Window> rootWindow_;

  private:
    // The first character and the colour pair of a cell; pair -1 when it cannot be read.
    static std::pair<wchar_t, short> CellAt(WINDOW* win, int y, int x) {
        cchar_t cell;
        wchar_t chars[CCHARW_MAX + 1] = {};
        attr_t attrs;
        short pair = -1;
        if (mvwin_wch(win, y, x, &cell) != ERR) getcchar(&cell, chars, &attrs, &pair, nullptr);
        return {chars[0], pair};
    }

    FILE* out_ = nullptr;
    FILE* in_ = nullptr;
    SCREEN* screen_ = nullptr;
};

// A window's text (by default the whole composed screen), one line per row.
inline std::string ScreenText(WINDOW* win = nullptr) {
    return OffscreenCurses::Screen(win ? win : curscr);
}

}  // namespace Kovo::Testing
