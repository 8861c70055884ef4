#pragma once

#include <string>

#include "text/Item.h"

namespace Kovo {

// A line of plain markup text; selectable when it stands for a choice of a menu.
class LabelItem : public Item {
  public:
    LabelItem(std::string text, bool selectable);
    ~LabelItem() override = default;

    void Draw(TextArea& area) override;

    void SetText(std::string text) { _text = std::move(text); }
    const std::string& Text() const { return _text; }

  private:
    std::string _text;
};

}  // namespace Kovo
