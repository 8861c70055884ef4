#include "text/InputItem.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "../support/OffscreenCurses.h"
#include "text/ItemList.h"
#include "text/TextArea.h"

namespace Kovo {
namespace {

using Testing::OffscreenCurses;

void Type(InputItem& item, const std::string& keys) {
    for (char c : keys) item.EditKey(static_cast<unsigned char>(c));
}

TEST(InputItemEditing, FreshOrNewlySelectedFieldIsReplacedByTheFirstKey) {
    InputItem field("IP Address", "10.0.0.1", 16);
    EXPECT_EQ(field.Cursor(), 8);
    field.EditKey('a');
    EXPECT_EQ(field.GetValue(), "a");
    EXPECT_EQ(field.Cursor(), 1);
    Type(field, "bc");
    EXPECT_EQ(field.GetValue(), "abc");

    field.SetValue("10.0.0.1");
    field.EditKey(KEY_RIGHT);
    field.EditKey('a');
    EXPECT_EQ(field.GetValue(), "10.0.0.1a");

    // Any key clears a field in replace mode, even one that inserts nothing.
    field.SetValue("10.0.0.1");
    field.EditKey('\t');
    EXPECT_EQ(field.GetValue(), "");
    EXPECT_FALSE(field.ReplaceMode());
    field.SetValue("x");
    field.EditKey(KEY_F(5));
    EXPECT_EQ(field.GetValue(), "");

    // A change of selection arms replace mode again.
    InputItem name("Name", "host", 16);
    name.EditKey(KEY_END);
    EXPECT_FALSE(name.ReplaceMode());
    name.SetSelected(true);
    EXPECT_TRUE(name.ReplaceMode());
    name.EditKey(KEY_HOME);
    name.SetSelected(true);  // no change of state: stays in place editing
    EXPECT_FALSE(name.ReplaceMode());
    name.SetSelected(false);
    EXPECT_TRUE(name.ReplaceMode());
}

TEST(InputItemEditing, MovesAndDeletesInPlace) {
    InputItem field("Name", "abcd", 16);
    field.EditKey(KEY_HOME);
    EXPECT_EQ(field.Cursor(), 0);
    field.EditKey(KEY_LEFT);
    EXPECT_EQ(field.Cursor(), 0);
    field.EditKey(KEY_DC);
    EXPECT_EQ(field.GetValue(), "bcd");
    field.EditKey(KEY_RIGHT);
    field.EditKey('X');
    EXPECT_EQ(field.GetValue(), "bXcd");
    EXPECT_EQ(field.Cursor(), 2);
    field.EditKey(KEY_BACKSPACE);
    field.EditKey(8);
    EXPECT_EQ(field.GetValue(), "cd");
    EXPECT_EQ(field.Cursor(), 0);
    field.EditKey(KEY_BACKSPACE);  // nothing before the cursor
    EXPECT_EQ(field.GetValue(), "cd");
    field.EditKey(KEY_END);
    field.EditKey(KEY_RIGHT);
    field.EditKey(KEY_DC);  // nothing under the cursor
    EXPECT_EQ(field.GetValue(), "cd");
    EXPECT_EQ(field.Cursor(), 2);
    field.EditKey(0xe9);  // not printable here: ignored outside replace mode
    EXPECT_EQ(field.GetValue(), "cd");

    field.SetValue("abc");
    field.EditKey(KEY_DC);  // replace mode: clears
    EXPECT_EQ(field.GetValue(), "");
    field.EditKey(KEY_END);
    EXPECT_EQ(field.Cursor(), 0);
}

// A one-line, 40-column text area to draw fields into.
class InputItemDrawTest : public OffscreenCurses {
  protected:
    void SetUp() override {
        OffscreenCurses::SetUp();
        _area = new TextArea(Root(kBlack, kWhite), 10, 2, 40, 1);
    }
    std::string Line() { return Row(_area->Handle(), 0); }

    TextArea* _area = nullptr;  // owned by the root window
};

TEST_F(InputItemDrawTest, DrawsLabelFieldAndCursorAndMasksASecret) {
    InputItem field("IP Address", "10.0.0.1", 10);
    field.Draw(*_area);
    EXPECT_EQ(Line(), "IP Address                [ 10.0.0.1   ]");

    field.SetSelected(true);
    field.Draw(*_area);
    EXPECT_EQ(Line(), "IP Address                [ 10.0.0.1   ]");
    EXPECT_EQ(PairAt(_area->Handle(), 0, 28), ColorPairNumber(kWhite, kBlack));  // about to be replaced
    EXPECT_EQ(PairAt(_area->Handle(), 0, 36), ColorPairNumber(kBlack, kWhite));
    EXPECT_EQ(Window::_xCursor, 10 + 8 + 40 - 2 - 10);
    EXPECT_EQ(Window::_yCursor, 2);

    field.EditKey(KEY_LEFT);
    field.Draw(*_area);
    EXPECT_EQ(PairAt(_area->Handle(), 0, 28), ColorPairNumber(kBlack, kWhite));
    EXPECT_EQ(Window::_xCursor, 10 + 7 + 40 - 2 - 10);

    // A masked field shows one star per character.
    InputItem password("Password", "secret", 10);
    password.SetMasked(true);
    _area->Erase();
    password.Draw(*_area);
    EXPECT_EQ(Line(), "Password                  [ ******     ]");
}

// What an operator types is data: no variable, colour or alignment tag in it takes effect, selected or
// not.
TEST_F(InputItemDrawTest, TypedTagsAreShownAsTheyWereTyped) {
    std::vector<std::string> typed{"{}",
                                   "{",
                                   "}{",
                                   "{color:red}x",
                                   "{bgcolor:black}",
                                   "{/color}",
                                   "{align:right}",
                                   "{align:padding:2}abc",
                                   "{/align}"};
    for (const auto& [name, value] : TextArea::VariableTable()) typed.push_back("{" + name + "}");
    for (const std::string& text : typed) {
        InputItem field("Name", text, 30);
        for (bool selected : {false, true}) {
            field.SetSelected(selected);
            field.Draw(*_area);
            const std::string shown = text.substr(0, 30);
            EXPECT_EQ(Line(), "Name  [ " + shown + std::string(30 - shown.size(), ' ') + " ]")
                << text << (selected ? " (selected)" : "");
        }
    }
    // The field's own colours (here: about to be replaced) still apply to the typed text, and only to it.
    InputItem field("Name", "{color:red}x", 30);
    field.SetSelected(true);
    field.Draw(*_area);
    EXPECT_EQ(PairAt(_area->Handle(), 0, 8), ColorPairNumber(kWhite, kBlack));
    EXPECT_EQ(PairAt(_area->Handle(), 0, 19), ColorPairNumber(kWhite, kBlack));
    EXPECT_NE(PairAt(_area->Handle(), 0, 20), ColorPairNumber(kWhite, kBlack)) << "past the text";
}

TEST_F(InputItemDrawTest, ScrollsToKeepTheCursorVisible) {
    InputItem field("Name", "abcdefghij", 5);
    field.SetSelected(true);
    field.Draw(*_area);
    EXPECT_EQ(field.Offset(), 5);
    EXPECT_EQ(Line(), "Name                           [ fghij ]");
    EXPECT_EQ(Window::_xCursor, 10 + 5 + 40 - 2 - 5);
    for (int i = 0; i < 5; ++i) field.EditKey(KEY_LEFT);
    EXPECT_EQ(field.Offset(), 5);
    field.EditKey(KEY_LEFT);  // the cursor was at the offset: both move
    EXPECT_EQ(field.Offset(), 4);
    EXPECT_EQ(field.Cursor(), 4);
    field.Draw(*_area);
    EXPECT_EQ(Line(), "Name                           [ efghi ]");
}

TEST_F(InputItemDrawTest, BackspaceOverTheLeftEdgeJumpsToTheEnd) {
    InputItem field("Name", "abcdefghij", 5);
    field.SetSelected(true);
    field.Draw(*_area);
    for (int i = 0; i < 5; ++i) field.EditKey(KEY_LEFT);
    field.EditKey(KEY_BACKSPACE);
    EXPECT_EQ(field.GetValue(), "abcdfghij");
    EXPECT_EQ(field.Offset(), 0);
    EXPECT_EQ(field.Cursor(), 9);
    field.Draw(*_area);
    EXPECT_EQ(field.Offset(), 4);
    EXPECT_EQ(Line(), "Name                           [ fghij ]");
}

TEST_F(InputItemDrawTest, ListDrawsTheSelectedFieldLastWithItsCursor) {
    InputItem first("First", "one", 8);
    InputItem second("Second", "two", 8);
    auto* list = new ItemList(rootWindow_.get(), 0, 10, 41, 3);
    list->SetItems({&first, &second});
    list->Draw();
    EXPECT_EQ(Window::_yCursor, 10);
    list->Down();
    EXPECT_EQ(Window::_yCursor, 11);
    EXPECT_EQ(Window::_xCursor, 3 + 40 - 2 - 8);
    EXPECT_TRUE(second.ReplaceMode());
    EXPECT_EQ(Row(rootWindow_->Handle(), 11).substr(0, 40), "Second                      [ two      ]");
}

}  // namespace
}  // namespace Kovo
