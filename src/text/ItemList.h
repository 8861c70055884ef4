#pragma once

#include <vector>

#include "terminal/Window.h"

namespace Kovo {

class Item;
class TextArea;

// A vertically scrolling list of items with a one-column scroll bar on the right. It reads no keys:
// the owning dialog moves the selection and edits or toggles the selected item itself.
class ItemList : public Window {
  public:
    ItemList(Window* parent, int x, int y, int width, int height);
    ~ItemList() override = default;

    // The items stay owned by the caller. Selects the first selectable, enabled item, if any.
    void SetItems(const std::vector<Item*>& items);
    // Selects the ordinal-th selectable item, disabled ones counted; meant for a list scrolled to the top.
    void Select(int ordinal);
    void Up();
    void Down();
    // The number of selectable items before the selected one: what dialogs read as the choice.
    int GetSelected() const { return _ordinal; }
    Item* GetSelectedItem() const;
    void Draw();

    int Top() const { return _top; }
    int Row() const { return _row; }

  private:
    int Visible() const { return static_cast<int>(_lines.size()); }
    void SelectPrevious();
    void SelectNext();
    void DrawScrollBar();

    Window* _listArea;
    Window* _scrollBar;
    std::vector<Item*> _items;
    std::vector<Window*> _lines;
    std::vector<TextArea*> _areas;
    int _row = 0;
    int _top = 0;
    int _ordinal = 0;
};

}  // namespace Kovo
