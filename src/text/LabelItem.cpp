#include "text/LabelItem.h"

#include "text/TextArea.h"

namespace Kovo {

LabelItem::LabelItem(std::string text, bool selectable) : Item(selectable), _text(std::move(text)) {}

void LabelItem::Draw(TextArea& area) {
    area.SetText(_text);
}

}  // namespace Kovo
