#include "text/Item.h"

#include "terminal/Colors.h"

namespace Kovo {

void Item::SetSelected(bool selected) {
    if (selected == _selected) return;
    _selected = selected;
    OnSelect();
}

void Item::SetEnabled(bool enabled) {
    _enabled = enabled;
    _foreground = enabled ? kBlack : kDarkGrey;
}

}  // namespace Kovo
