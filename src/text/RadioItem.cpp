#include "text/RadioItem.h"

namespace Kovo {

RadioItem::RadioItem(std::string caption, bool checked)
    : LabelItem({}, true), _checked(checked), _caption(std::move(caption)) {
    SetChecked(checked);
}

void RadioItem::SetChecked(bool checked) {
    _checked = checked;
    SetText((checked ? "(o) " : "( ) ") + _caption);
}

}  // namespace Kovo
