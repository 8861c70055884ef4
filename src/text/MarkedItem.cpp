#include "text/MarkedItem.h"

namespace Kovo {

MarkedItem::MarkedItem(std::string caption, bool checked, const char* onMark, const char* offMark)
    : LabelItem({}, true),
      _checked(checked),
      _caption(std::move(caption)),
      _onMark(onMark),
      _offMark(offMark) {
    SetChecked(checked);
}

void MarkedItem::SetChecked(bool checked) {
    _checked = checked;
    SetText((checked ? _onMark : _offMark) + _caption);
}

}  // namespace Kovo
