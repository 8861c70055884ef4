#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Kovo {

class StringFactory;

// View Support Information: the host values support staff ask for, a few to a page. Values are read
// each time a page is composed, so a page always shows the host as it is now.
class SupportPages {
  public:
    struct Value {
        std::string label;
        std::function<std::string()> read;
    };
    using Page = std::vector<Value>;

    // The host's own values.
    SupportPages();
    explicit SupportPages(std::vector<Page> pages);

    unsigned Count() const { return static_cast<unsigned>(_pages.size()); }

    // The page as detail-pane markup: each label with its value below it. A value the host cannot tell
    // (empty, or a failed host call) shows as "Unknown". An index past the end composes nothing.
    std::string Compose(unsigned index, const StringFactory& strings) const;
    // "Page 2 of 3" with the keys that turn pages.
    std::string Footer(unsigned index) const;
    // Page Down and Page Up: move `index` to the next or the previous page; false when there is none.
    bool Turn(unsigned& index, int key) const;

  private:
    std::vector<Page> _pages;
};

}  // namespace Kovo
