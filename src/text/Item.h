#pragma once

namespace Kovo {

class TextArea;

// One line of an ItemList. The list draws each visible item into its own one-line text area.
class Item {
  public:
    // Called whenever the selected state changes.
    virtual void OnSelect() {}
    virtual ~Item() = default;
    virtual void Draw(TextArea& area) = 0;
    virtual void SetSelected(bool selected);

    // A disabled item is drawn dark grey and the selection skips it.
    void SetEnabled(bool enabled);

    bool IsSelectable() const { return _selectable; }
    bool IsSelected() const { return _selected; }
    bool IsEnabled() const { return _enabled; }
    int Background() const { return _background; }
    int Foreground() const { return _foreground; }

  protected:
    explicit Item(bool selectable) : _selectable(selectable) {}
    Item(const Item&) = default;
    Item& operator=(const Item&) = default;

  private:
    bool _selectable;
    bool _selected = false;
    bool _enabled = true;
    int _background = 3;
    int _foreground = 0;
};

}  // namespace Kovo
