#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "frames/RootWindow.h"

namespace Kovo {

class LabelItem;

// A menu read as a table: a screen lists its rows, each with what the detail pane shows for it and what
// Enter opens, and this owns the rest: the key loop, the selection and the detail pane. The table is
// read again from the screen's state whenever the pane is drawn, so rows may change, appear or go.
// Returns 1 when the window closes.
class MenuWindow : public RootWindow {
  public:
    struct Row {
        // Names the row across readings of the table, so the selection stays on it.
        unsigned id = 0;
        std::string caption{};  // as listed, markup included
        std::string title{};    // the detail pane's
        // The detail pane's text, read only while the row is selected.
        std::function<std::string()> detail{};
        std::string footer{};  // the detail pane's key line
        // What Enter does on the row; nothing when unset.
        std::function<void()> open{};
        // Any other key while the row is selected.
        std::function<void(int key)> keys{};
        // When set, a failure of `open` is logged after this prefix and its reason shown, titled by the
        // string the row's id names; the menu stays.
        std::optional<std::string> failure{};
        bool selectable = true;
        bool enabled = true;
    };

    ~MenuWindow() override;

    int HandleKey() override;
    void UpdateDetails() override;

    // The rows as last read.
    const std::vector<Row>& Table() const { return _rows; }
    // The selected row; null when nothing can be selected.
    const Row* Selected() const;

  protected:
    // The list's title and key line are drawn when the loop starts; a null footer leaves the line empty.
    MenuWindow(Frame* parent, unsigned titleId, const char* listFooter);

    // The table as the screen's state is now.
    virtual std::vector<Row> Rows() = 0;
    // Before the first drawing of the list: false closes the window at once.
    virtual bool Opens() { return true; }
    // Esc: true when the window closes.
    virtual bool Leave() { return true; }
    // One key of the loop; false when the window closes.
    virtual bool OnKey(int key);

    // Reads the table and brings the list up to it without drawing. When the rows themselves changed, the
    // selection stays on its row; when that row is gone, it goes to the next row still there, else to the
    // last before it.
    void ShowRows();
    std::string String(unsigned id) const;

  private:
    void Open(const Row& row);

    unsigned _titleId;
    const char* _listFooter;
    std::vector<Row> _rows;
    // The list keeps pointers to these.
    std::vector<std::unique_ptr<LabelItem>> _items;
};

}  // namespace Kovo
