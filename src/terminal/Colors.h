#pragma once

#include <curses.h>

namespace Kovo {

// Colour numbers; start-up redefines the shades of 6 (dark grey) and 2 (light grey).
enum Color : int {
    kBlack = 0,
    kRed = 1,
    kLightGrey = 2,
    kYellow = 3,
    kDarkGrey = 6,
    kWhite = 7,
};

// Set at start-up when the terminal cannot redefine colours: drawing falls back to black and white.
extern bool bwColor;

// The curses attribute for a (background, foreground) pair; standout stands in for dark
// backgrounds when colours cannot be redefined.
attr_t ColorAttr(int background, int foreground);

// Colour pair number used by start-up and ColorAttr alike: foreground + background x COLORS + 1. A pair
// must fit the 8 bits an attribute word holds, so on terminals with more than 8 colours the stride stays
// at 8, which still covers every colour number the console uses (0 to 7).
inline int ColorPairNumber(int background, int foreground) {
    const int stride = COLORS > 8 ? 8 : COLORS;
    return foreground + background * stride + 1;
}

}  // namespace Kovo
