#pragma once

#include <string>

#include "text/Item.h"

namespace Kovo {

// A labelled, editable text field. Moving onto it arms replace mode, so typing replaces the whole
// value, while moving the cursor first edits in place.
class InputItem : public Item {
  public:
    // A field width of -1 takes half the line's width minus one.
    InputItem(std::string label, std::string text, int fieldWidth);
    // A masked field's value is a secret: its memory is wiped whenever the value is cleared, replaced,
    // moved to a larger buffer or destroyed.
    ~InputItem() override;

    void OnSelect() override;
    void Draw(TextArea& area) override;

    // Applies one curses key code to the value.
    void EditKey(int key);

    void SetValue(std::string text);
    const std::string& GetValue() const { return _text; }
    void SetMasked(bool masked);
    const std::string& Label() const { return _label; }

    int Cursor() const { return _cursor; }
    int Offset() const { return _offset; }
    bool ReplaceMode() const { return _replace; }

  private:
    void Clear();
    // Overwrites the value's whole buffer when the field is masked.
    void Wipe();
    // Room for one more character without a reallocation that would leave a copy of a secret behind.
    void MakeRoom();

    std::string _label;
    std::string _text;
    int _fieldWidth;
    bool _masked = false;
    int _cursor;
    int _offset = 0;
    bool _replace = true;
};

}  // namespace Kovo
