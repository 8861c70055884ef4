#pragma once

#include <string>

#include "text/LabelItem.h"

namespace Kovo {

// One choice of a group: "(o) " marks the chosen one. The owning dialog decides which key toggles it.
class RadioItem : public LabelItem {
public:
    RadioItem(std::string caption, bool checked);
    ~RadioItem() override = default;

    void SetChecked(bool checked);
    bool IsChecked() const { return _checked; }
    const std::string& Caption() const { return _caption; }

private:
    bool _checked;
    std::string _caption;
};

}  // namespace Kovo
