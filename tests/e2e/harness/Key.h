#pragma once

namespace KovoTerm {

// Keys the emulator encodes itself, so that the program's keypad/cursor modes are honoured.
enum class Key {
    Enter,
    Escape,
    Tab,
    Backspace,
    Up,
    Down,
    Left,
    Right,
    Insert,
    Delete,
    Home,
    End,
    PageUp,
    PageDown,
    F1,
    F2,
    F3,
    F4,
    F5,
    F6,
    F7,
    F8,
    F9,
    F10,
    F11,
    F12,
};

// F1 + n - 1, for loops over the function keys. n must be 1..12.
Key FunctionKey(int n);

}  // namespace KovoTerm
