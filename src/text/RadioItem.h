#pragma once

#include <string>

#include "text/MarkedItem.h"

namespace Kovo {

// One choice of a group: "(o) " marks the chosen one.
class RadioItem : public MarkedItem {
  public:
    RadioItem(std::string caption, bool checked) : MarkedItem(std::move(caption), checked, "(o) ", "( ) ") {}
};

}  // namespace Kovo
