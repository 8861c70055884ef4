#pragma once

#include <string>

#include "text/MarkedItem.h"

namespace Kovo {

// An on/off choice: "[X] " marks it on.
class CheckItem : public MarkedItem {
  public:
    CheckItem(std::string caption, bool checked) : MarkedItem(std::move(caption), checked, "[X] ", "[ ] ") {}
};

}  // namespace Kovo
