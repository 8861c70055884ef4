#include "text/ItemList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "../support/OffscreenCurses.h"
#include "text/LabelItem.h"

namespace Kovo {
namespace {

using Testing::OffscreenCurses;

// A list of 21x5 (20 columns of items and the scroll bar) inside a yellow window.
class ItemListTest : public OffscreenCurses {
  protected:
    void SetUp() override {
        OffscreenCurses::SetUp();
        _list = new ItemList(Root(kYellow, kBlack), 1, 1, 21, 5);
    }

    // Items named "0", "1", ...; the indices in `disabled` are disabled, those in `labels` unselectable.
    void Make(int count, std::vector<int> disabled = {}, std::vector<int> labels = {}) {
        _items.clear();
        for (int i = 0; i < count; ++i) {
            bool label = std::find(labels.begin(), labels.end(), i) != labels.end();
            _items.push_back(std::make_unique<LabelItem>(std::to_string(i), !label));
            if (std::find(disabled.begin(), disabled.end(), i) != disabled.end())
                _items.back()->SetEnabled(false);
        }
        std::vector<Item*> raw;
        for (auto& item : _items) raw.push_back(item.get());
        _list->SetItems(raw);
        _list->Draw();
    }

    // Absolute index of the selected item.
    int Index() const { return _list->Top() + _list->Row(); }
    WINDOW* Screen() const { return rootWindow_->Handle(); }
    // The scroll bar cell of list row y (screen row y + 1).
    std::string Bar(int y) const { return Cell(Screen(), y + 1, 21); }

    ItemList* _list = nullptr;  // owned by the root window
    std::vector<std::unique_ptr<LabelItem>> _items;
};

// The selection walks over disabled items and labels, never wraps, and counts its ordinal among the
// selectable items, disabled ones included.
TEST_F(ItemListTest, TheSelectionSkipsWhatCannotBeChosenAndNeverWraps) {
    const struct {
        const char* what;
        int count;
        std::vector<int> disabled, labels;
        const char* keys;  // U up, D down, a digit selects that ordinal
        int index, ordinal;
    } walks[] = {
        {"first selection after a label and before a disabled item", 4, {1}, {0}, "", 2, 1},
        {"down counts the disabled item passed", 4, {1}, {0}, "D", 3, 2},
        {"nothing enabled above", 4, {1}, {0}, "DUU", 2, 1},
        {"no wrap at the top", 3, {}, {}, "U", 0, 0},
        {"no wrap at the bottom", 3, {}, {}, "DDD", 2, 2},
        {"both ways over disabled items and a label", 5, {1, 3}, {2}, "D", 4, 3},
        {"and back", 5, {1, 3}, {2}, "DU", 0, 0},
        {"an ordinal counts disabled items", 5, {1}, {0}, "2", 3, 2},
        {"no such ordinal: unchanged", 5, {1}, {0}, "29", 3, 2},
    };
    for (const auto& walk : walks) {
        Make(walk.count, walk.disabled, walk.labels);
        for (const char* key = walk.keys; *key; ++key) {
            if (*key == 'U')
                _list->Up();
            else if (*key == 'D')
                _list->Down();
            else
                _list->Select(*key - '0');
        }
        EXPECT_EQ(Index(), walk.index) << walk.what;
        EXPECT_EQ(_list->GetSelected(), walk.ordinal) << walk.what;
    }
    EXPECT_EQ(_list->GetSelectedItem(), _items[3].get());

    // All disabled: the selection stays where it was.
    Make(4);
    _list->Down();
    Make(4, {0, 1, 2, 3});
    EXPECT_EQ(Index(), 1);
    EXPECT_EQ(_list->GetSelected(), 1);
    _list->Down();
    _list->Up();
    EXPECT_EQ(Index(), 1);
    EXPECT_EQ(_list->GetSelected(), 1);
}

TEST_F(ItemListTest, ScrollsAndMovesTheThumbWhileNotEverythingFits) {
    Make(8);
    EXPECT_EQ(Bar(0), "\u2588");
    for (int y = 1; y < 5; ++y) EXPECT_EQ(Bar(y), "\u2593") << y;
    for (int i = 0; i < 5; ++i) _list->Down();
    EXPECT_EQ(_list->Top(), 1);
    EXPECT_EQ(_list->Row(), 4);
    EXPECT_EQ(Row(Screen(), 1).substr(1, 2), "1 ");
    // Top 1 of 3 hidden rows is 33 percent: the thumb sits on row 33 * 4 / 100 = 1.
    EXPECT_EQ(Bar(1), "\u2588");
    _list->Down();
    _list->Down();
    EXPECT_EQ(_list->Top(), 3);
    EXPECT_EQ(Bar(4), "\u2588");
    EXPECT_EQ(Bar(0), "\u2593");
    for (int i = 0; i < 5; ++i) _list->Up();
    EXPECT_EQ(_list->Top(), 2);  // the item above the view becomes the top line
    EXPECT_EQ(_list->Row(), 0);
    // No scroll bar once everything fits.
    Make(5);
    for (int y = 0; y < 5; ++y) EXPECT_EQ(Bar(y), " ") << y;
}

TEST_F(ItemListTest, DrawsSelectedWhiteOnBlackAndDisabledDarkGrey) {
    Make(3, {2});
    EXPECT_EQ(Row(Screen(), 1).substr(1, 3), "0  ");
    EXPECT_EQ(PairAt(Screen(), 1, 1), ColorPairNumber(kBlack, kWhite));
    EXPECT_EQ(PairAt(Screen(), 1, 15), ColorPairNumber(kBlack, kWhite));  // the whole line
    EXPECT_EQ(PairAt(Screen(), 2, 1), ColorPairNumber(kYellow, kBlack));
    EXPECT_EQ(PairAt(Screen(), 3, 1), ColorPairNumber(kYellow, kDarkGrey));
    EXPECT_TRUE(_items[0]->IsSelected());
    _list->Down();
    EXPECT_FALSE(_items[0]->IsSelected());
    EXPECT_EQ(PairAt(Screen(), 1, 1), ColorPairNumber(kYellow, kBlack));
    EXPECT_EQ(PairAt(Screen(), 2, 1), ColorPairNumber(kBlack, kWhite));
}

}  // namespace
}  // namespace Kovo
