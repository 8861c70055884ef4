#pragma once

// ncurses on /dev/null for unit tests: a real 80x25 screen with the program's colours and no terminal,
// to draw into and read cells back from.

#include <curses.h>
#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <cstdio>
#include <cwchar>
#include <string>

#include "main/Startup.h"
#include "terminal/Colors.h"

namespace Kovo::Testing {

class OffscreenCurses : public ::testing::Test {
  protected:
    void SetUp() override { OpenScreen(std::fopen("/dev/null", "r")); }
    void TearDown() override {
        if (screen_) {
            endwin();
            delscreen(screen_);
        }
        if (out_) std::fclose(out_);
        if (in_) std::fclose(in_);
        bwColor = false;
    }

    // Starts curses reading keys from `in`, which the fixture then owns.
    void OpenScreen(FILE* in) {
        std::setlocale(LC_ALL, "C.UTF-8");
        in_ = in;
        out_ = std::fopen("/dev/null", "w");
        screen_ = newterm("xterm-256color", out_, in_);
        ASSERT_NE(screen_, nullptr);
        set_term(screen_);
        resizeterm(25, 80);
        start_color();
        bwColor = false;
        InitColors();
    }

    // The attribute word (colour pair included) of a cell of a window.
    static attr_t AttrAt(WINDOW* win, int y, int x) { return mvwinch(win, y, x) & (A_ATTRIBUTES | A_COLOR); }

    static short PairAt(WINDOW* win, int y, int x) {
        cchar_t cell;
        wchar_t chars[CCHARW_MAX + 1] = {};
        attr_t attrs;
        short pair = -1;
        if (mvwin_wch(win, y, x, &cell) != ERR) getcchar(&cell, chars, &attrs, &pair, nullptr);
        return pair;
    }

    // The character of one cell, as UTF-8.
    static std::string Cell(WINDOW* win, int y, int x) {
        cchar_t cell;
        wchar_t chars[CCHARW_MAX + 1] = {};
        attr_t attrs;
        short pair;
        if (mvwin_wch(win, y, x, &cell) == ERR) return {};
        getcchar(&cell, chars, &attrs, &pair, nullptr);
        char bytes[MB_LEN_MAX];
        std::mbstate_t state{};
        const std::size_t n = std::wcrtomb(bytes, chars[0], &state);
        return n == static_cast<std::size_t>(-1) ? std::string() : std::string(bytes, n);
    }

    // The text of one row of a window, as UTF-8.
    static std::string Row(WINDOW* win, int y) {
        std::string text;
        for (int x = 0; x < getmaxx(win); ++x) text += Cell(win, y, x);
        return text;
    }

    // Every row of a window, joined by newlines.
    static std::string Screen(WINDOW* win) {
        std::string text;
        for (int y = 0; y < getmaxy(win); ++y) text += Row(win, y) + "\n";
        return text;
    }

  private:
    FILE* out_ = nullptr;
    FILE* in_ = nullptr;
    SCREEN* screen_ = nullptr;
};

}  // namespace Kovo::Testing
