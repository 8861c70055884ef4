#pragma once

// ncurses on /dev/null for unit tests: a real screen of the chosen size with colours, no terminal.

#include <curses.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "app/Colors.h"
#include "app/Startup.h"

namespace Kovo::Testing {

class OffscreenCurses : public ::testing::Test {
protected:
    void SetUp() override {
        out_ = fopen("/dev/null", "w");
        in_ = fopen("/dev/null", "r");
        screen_ = newterm(term_, out_, in_);
        ASSERT_NE(screen_, nullptr);
        set_term(screen_);
        resizeterm(lines_, cols_);
        start_color();
        bwColor = false;
        InitColors();
    }
    void TearDown() override {
        endwin();
        delscreen(screen_);
        fclose(out_);
        fclose(in_);
        bwColor = false;
    }
    // The attribute word (colour pair included) of a cell of a window.
    static attr_t AttrAt(WINDOW* win, int y, int x) { return mvwinch(win, y, x) & (A_ATTRIBUTES | A_COLOR); }
    static char CharAt(WINDOW* win, int y, int x) { return static_cast<char>(mvwinch(win, y, x) & A_CHARTEXT); }
    static std::string RowText(WINDOW* win, int y) {
        std::string row;
        for (int x = 0; x < getmaxx(win); ++x) row += CharAt(win, y, x);
        return row;
    }

    const char* term_ = "xterm-256color";
    int lines_ = 25;
    int cols_ = 80;

private:
    FILE* out_ = nullptr;
    FILE* in_ = nullptr;
    SCREEN* screen_ = nullptr;
};

}  // namespace Kovo::Testing
