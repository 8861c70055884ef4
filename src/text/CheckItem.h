#pragma once

#include <string>

#include "text/LabelItem.h"

namespace Kovo {

// An on/off choice: "[X] " marks it on. The owning dialog decides which key toggles it.
class CheckItem : public LabelItem {
public:
    CheckItem(std::string caption, bool checked);
    ~CheckItem() override = default;

    void SetChecked(bool checked);
    bool IsChecked() const { return _checked; }
    const std::string& Caption() const { return _caption; }

private:
    bool _checked;
    std::string _caption;
};

}  // namespace Kovo
