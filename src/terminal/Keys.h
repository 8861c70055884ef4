#pragma once

#include <curses.h>

#include <initializer_list>

namespace Kovo {

// Key codes as GetKey returns them, beyond curses' own KEY_* names.
inline constexpr int kCtrlH = 8;
inline constexpr int kTab = 9;
inline constexpr int kEnter = 10;
inline constexpr int kEsc = 27;
inline constexpr int kSpace = ' ';
inline constexpr int kDel = 127;

inline bool IsOneOf(int key, std::initializer_list<int> keys) {
    for (int k : keys)
        if (k == key) return true;
    return false;
}

// Enter as the terminal sends it: a line feed, or the keypad's Enter.
inline bool IsEnter(int key) {
    return key == kEnter || key == KEY_ENTER;
}

}  // namespace Kovo
