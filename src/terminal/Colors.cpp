#include "terminal/Colors.h"

namespace Kovo {

bool bwColor = false;

attr_t ColorAttr(int background, int foreground) {
    if (bwColor) return (background == kBlack || background == kDarkGrey) ? A_STANDOUT : A_NORMAL;
    return COLOR_PAIR(ColorPairNumber(background, foreground));
}

}  // namespace Kovo
