#include "text/CheckItem.h"

namespace Kovo {

CheckItem::CheckItem(std::string caption, bool checked)
    : LabelItem({}, true), _checked(checked), _caption(std::move(caption)) {
    SetChecked(checked);
}

void CheckItem::SetChecked(bool checked) {
    _checked = checked;
    SetText((checked ? "[X] " : "[ ] ") + _caption);
}

}  // namespace Kovo
