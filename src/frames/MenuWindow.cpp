#include "frames/MenuWindow.h"

#include <exception>

#include "frames/MessageDialog.h"
#include "terminal/KeyReader.h"
#include "terminal/Keys.h"
#include "text/ItemList.h"
#include "text/LabelItem.h"
#include "text/StringFactory.h"
#include "text/TextArea.h"

namespace Kovo {

MenuWindow::MenuWindow(Frame* parent, unsigned titleId, const char* listFooter)
    : RootWindow(parent), _titleId(titleId), _listFooter(listFooter) {}

// The list goes with the window tree, after the items here, but draws nothing on the way.
MenuWindow::~MenuWindow() = default;

std::string MenuWindow::String(unsigned id) const {
    return Strings()->GetString(id);
}

const MenuWindow::Row* MenuWindow::Selected() const {
    const Item* selected = List()->GetSelectedItem();
    for (std::size_t i = 0; i < _items.size(); ++i)
        if (_items[i].get() == selected) return &_rows[i];
    return nullptr;
}

void MenuWindow::ShowRows() {
    std::vector<Row> rows = Rows();
    bool same = rows.size() == _rows.size();
    for (std::size_t i = 0; same && i < rows.size(); ++i)
        same = rows[i].id == _rows[i].id && rows[i].selectable == _rows[i].selectable;
    if (same) {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            _items[i]->SetText(rows[i].caption);
            _items[i]->SetEnabled(rows[i].enabled);
        }
        _rows = std::move(rows);
        return;
    }

    // The row to keep selected: the selected one, else the first after it, else the last before it.
    std::vector<unsigned> wanted;
    const Row* selected = _items.empty() ? nullptr : Selected();
    if (selected) {
        const auto at = static_cast<std::size_t>(selected - _rows.data());
        for (std::size_t i = at; i < _rows.size(); ++i) wanted.push_back(_rows[i].id);
        for (std::size_t i = at; i-- > 0;) wanted.push_back(_rows[i].id);
    }
    std::vector<std::unique_ptr<LabelItem>> items;
    std::vector<Item*> listed;
    for (const Row& row : rows) {
        items.push_back(std::make_unique<LabelItem>(row.caption, row.selectable));
        items.back()->SetEnabled(row.enabled);
        listed.push_back(items.back().get());
    }
    List()->SetItems(listed);
    _items = std::move(items);
    _rows = std::move(rows);
    for (unsigned id : wanted) {
        int ordinal = 0;
        for (const Row& row : _rows) {
            if (!row.selectable) continue;
            if (row.id == id) {
                List()->Select(ordinal);
                return;
            }
            ++ordinal;
        }
    }
}

void MenuWindow::UpdateDetails() {
    ShowRows();
    const Row* row = Selected();
    if (!row) return;
    RightTitle()->SetText(row->title);
    Details()->SetText(row->detail ? row->detail() : std::string());
    RightFooter()->SetText(row->footer);
}

void MenuWindow::Open(const Row& row) {
    if (!row.open) return;
    try {
        row.open();
    } catch (const std::exception& e) {
        if (!row.failure) throw;
        // The host refused a step the opened screen does not answer itself: say so and keep the menu.
        ReportFailure(this, *row.failure + e.what(), row.id, e.what());
    }
    // The table is read once, by UpdateDetails, and the list drawn as it left it.
    UpdateDetails();
    List()->Draw();
}

bool MenuWindow::OnKey(int key) {
    if (MoveSelection(key)) return true;
    if (key == kEsc) return !Leave();
    const Row* row = Selected();
    if (!row) return true;
    // A copy: what a row opens may read the table anew, which replaces the row.
    const Row chosen = *row;
    if (IsEnter(key))
        Open(chosen);
    else if (chosen.keys)
        chosen.keys(key);
    return true;
}

int MenuWindow::HandleKey() {
    LeftTitle()->SetText(String(_titleId));
    if (_listFooter) LeftFooter()->SetText(_listFooter);
    if (!Opens()) return 1;
    UpdateDetails();
    List()->Draw();
    while (OnKey(GetKey(this, true))) {
    }
    return 1;
}

}  // namespace Kovo
