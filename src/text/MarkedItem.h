#pragma once

#include <string>

#include "text/LabelItem.h"

namespace Kovo {

// A choice drawn as its mark and caption. The owning dialog decides which key toggles it.
class MarkedItem : public LabelItem {
  public:
    void SetChecked(bool checked);
    bool IsChecked() const { return _checked; }

  protected:
    MarkedItem(std::string caption, bool checked, const char* onMark, const char* offMark);

  private:
    bool _checked;
    std::string _caption;
    const char* _onMark;
    const char* _offMark;
};

}  // namespace Kovo
