#pragma once

#include <curses.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cwchar>
#include <string>

#include "app/Colors.h"

namespace Kovo::Testing {

// A curses screen on /dev/null (no terminal), with the program's colour pairs, 80x25, to draw into and
// read cells back from.
class CursesScreen : public ::testing::Test {
protected:
    void SetUp() override {
        std::setlocale(LC_ALL, "C.UTF-8");
        _out = std::fopen("/dev/null", "w");
        _in = std::fopen("/dev/null", "r");
        _screen = newterm("xterm", _out, _in);
        ASSERT_NE(_screen, nullptr);
        set_term(_screen);
        resizeterm(25, 80);
        start_color();
        const int colours[] = {7, 0, 3, 2, 6, 1};
        for (int bg : colours)
            for (int fg : colours)
                if (ColorPairNumber(bg, fg) < COLOR_PAIRS) init_pair(ColorPairNumber(bg, fg), fg, bg);
        bwColor = false;
    }

    void TearDown() override {
        bwColor = false;
        if (_screen) {
            endwin();
            delscreen(_screen);
        }
        if (_out) std::fclose(_out);
        if (_in) std::fclose(_in);
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
        std::size_t n = std::wcrtomb(bytes, chars[0], &state);
        return n == static_cast<std::size_t>(-1) ? std::string() : std::string(bytes, n);
    }

    // The text of one row of a window, as UTF-8.
    static std::string Row(WINDOW* win, int y) {
        std::string text;
        for (int x = 0; x < getmaxx(win); ++x) text += Cell(win, y, x);
        return text;
    }

    static short PairAt(WINDOW* win, int y, int x) {
        cchar_t cell;
        wchar_t chars[CCHARW_MAX + 1] = {};
        attr_t attrs;
        short pair = -1;
        if (mvwin_wch(win, y, x, &cell) != ERR) getcchar(&cell, chars, &attrs, &pair, nullptr);
        return pair;
    }

    static attr_t AttrsAt(WINDOW* win, int y, int x) {
        return mvwinch(win, y, x) & (A_ATTRIBUTES & ~A_COLOR);
    }

    static short Pair(int background, int foreground) {
        return static_cast<short>(ColorPairNumber(background, foreground));
    }

private:
    SCREEN* _screen = nullptr;
    FILE* _out = nullptr;
    FILE* _in = nullptr;
};

}  // namespace Kovo::Testing
