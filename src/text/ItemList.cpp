#include "text/ItemList.h"

#include "terminal/Colors.h"
#include "text/Item.h"
#include "text/TextArea.h"

namespace Kovo {

// The windows made here are children of this list and are destroyed with it.
ItemList::ItemList(Window* parent, int x, int y, int width, int height)
    : Window(parent, x, y, width, height, -1, -1),
      _listArea(AddChild(0, 0, width - 1, height)),
      _scrollBar(AddChild(width - 1, 0, 1, height)) {
    for (int r = 0; r < height; ++r) {
        Window* line = _listArea->AddChild(0, r, width - 1, 1);
        _lines.push_back(line);
        _areas.push_back(new TextArea(line, 0, 0, width - 1, 1));
    }
}

void ItemList::SetItems(const std::vector<Item*>& items) {
    _items = items;
    _top = 0;
    int ordinal = 0;
    for (std::size_t i = 0; i < _items.size(); ++i) {
        Item* item = _items[i];
        if (!item->IsSelectable()) continue;
        if (item->IsEnabled()) {
            _row = static_cast<int>(i);
            _ordinal = ordinal;
            return;
        }
        ++ordinal;
    }
}

void ItemList::Select(int ordinal) {
    int seen = 0;
    for (std::size_t i = 0; i < _items.size(); ++i) {
        if (!_items[i]->IsSelectable()) continue;
        if (seen == ordinal) {
            _row = static_cast<int>(i);
            _ordinal = ordinal;
            return;
        }
        ++seen;
    }
}

Item* ItemList::GetSelectedItem() const {
    int index = _top + _row;
    if (index < 0 || index >= static_cast<int>(_items.size())) return nullptr;
    return _items[static_cast<std::size_t>(index)];
}

void ItemList::Up() {
    SelectPrevious();
    Draw();
}

void ItemList::Down() {
    SelectNext();
    Draw();
}

// Walks up to the nearest selectable, enabled item; the selection never wraps around.
void ItemList::SelectPrevious() {
    int ordinal = _ordinal;
    int count = static_cast<int>(_items.size());
    for (int i = _top + _row - 1; i >= 0; --i) {
        if (i >= count || !_items[static_cast<std::size_t>(i)]->IsSelectable()) continue;
        --ordinal;
        if (!_items[static_cast<std::size_t>(i)]->IsEnabled()) continue;
        _ordinal = ordinal;
        if (i < _top) {
            _top = i;
            _row = 0;
        } else {
            _row = i - _top;
        }
        return;
    }
}

void ItemList::SelectNext() {
    int ordinal = _ordinal;
    int count = static_cast<int>(_items.size());
    for (int i = _top + _row + 1; i < count; ++i) {
        if (i < 0 || !_items[static_cast<std::size_t>(i)]->IsSelectable()) continue;
        ++ordinal;
        if (!_items[static_cast<std::size_t>(i)]->IsEnabled()) continue;
        _ordinal = ordinal;
        if (i < _top + Visible()) {
            _row = i - _top;
        } else {
            _top = i - Visible() + 1;
            _row = Visible() - 1;
        }
        return;
    }
}

void ItemList::Draw() {
    _listArea->Erase();
    Item* selected = nullptr;
    TextArea* selectedArea = nullptr;
    int count = static_cast<int>(_items.size());
    for (int r = 0; r < Visible() && _top + r < count; ++r) {
        Item* item = _items[static_cast<std::size_t>(_top + r)];
        item->SetSelected(r == _row);
        if (r == _row) {
            _lines[static_cast<std::size_t>(r)]->SetColors(kBlack, kWhite);
            selected = item;
            selectedArea = _areas[static_cast<std::size_t>(r)];
        } else {
            _lines[static_cast<std::size_t>(r)]->SetColors(item->Background(), item->Foreground());
            item->Draw(*_areas[static_cast<std::size_t>(r)]);
        }
    }
    if (count > Visible()) {
        DrawScrollBar();
    } else {
        // A bar left over from a longer list would claim there is more to see.
        _scrollBar->Erase();
        _scrollBar->Refresh();
    }
    Refresh();
    // Last, so that an input field's cursor placement is the final one.
    if (selected) selected->Draw(*selectedArea);
    refresh();
}

void ItemList::DrawScrollBar() {
    const int visible = Visible();
    const int hidden = static_cast<int>(_items.size()) - visible;
    const int position = hidden > 0 ? _top * 100 / hidden : 0;
    WINDOW* bar = _scrollBar->Handle();
    _scrollBar->Erase();
    if (bar) {
        for (int r = 0; r < visible; ++r) mvwaddnwstr(bar, r, 0, L"\u2593", 1);
        mvwaddnwstr(bar, position * (visible - 1) / 100, 0, L"\u2588", 1);
    }
    _scrollBar->Refresh();
}

}  // namespace Kovo
