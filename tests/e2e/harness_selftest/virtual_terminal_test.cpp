// The emulator wrapper on its own: fed bytes, read back cells; keys encoded per terminal mode.
#include <gtest/gtest.h>

#include <string>

#include "VirtualTerminal.h"

using KovoTerm::Key;
using KovoTerm::VirtualTerminal;

namespace {

struct Recorder {
    std::string sent;
    VirtualTerminal::Sink Sink() {
        return [this](std::string_view bytes) { sent.append(bytes); };
    }
};

}  // namespace

TEST(VirtualTerminal, ReadsTextPerRowWithTrailingBlanksTrimmedAndFindsCells) {
    VirtualTerminal vt(5, 20, nullptr);
    vt.Feed("hello   \r\n\x1b[3;5Hmiddle");
    EXPECT_EQ(vt.RowText(0), "hello");
    EXPECT_EQ(vt.RowText(1), "");
    EXPECT_EQ(vt.RowText(2), "    middle");
    int row = -1, column = -1;
    ASSERT_TRUE(vt.Find("middle", row, column));
    EXPECT_EQ(row, 2);
    EXPECT_EQ(column, 4);
    EXPECT_FALSE(vt.Contains("absent"));
    // Columns count cells, not bytes: two box-drawing characters, then x.
    vt.Feed("\x1b[4;1H\xe2\x94\x80\xe2\x94\x80x");
    ASSERT_TRUE(vt.Find("x", row, column));
    EXPECT_EQ(row, 3);
    EXPECT_EQ(column, 2);
    EXPECT_EQ(vt.CellAt(3, 0).text, "\xe2\x94\x80");
}

TEST(VirtualTerminal, AppliesPaletteSetsToCellsAlreadyDrawnAndLater) {
    VirtualTerminal vt(3, 20, nullptr);
    vt.Feed("\x1b[33mY");
    auto before = vt.CellAt(0, 0).fg;
    ASSERT_TRUE(before.IsIndex(3));
    EXPECT_FALSE(before.IsRgb(0xff, 0xcc, 0x00));

    // Two slots in one sequence, components as 2 and 4 hex digits, ST and BEL terminators.
    vt.Feed("\x1b]4;3;rgb:FF/CC/00;6;rgb:5555/5555/5555\x1b\\");
    vt.Feed("\x1b]4;1;rgb:ff/00/00\x07");
    EXPECT_EQ(vt.PaletteSets(), 3);
    auto after = vt.CellAt(0, 0).fg;
    EXPECT_TRUE(after.IsIndex(3));
    EXPECT_TRUE(after.IsRgb(0xff, 0xcc, 0x00)) << after.Describe();
    EXPECT_TRUE(vt.PaletteColor(6).IsRgb(0x55, 0x55, 0x55)) << vt.PaletteColor(6).Describe();
    EXPECT_TRUE(vt.PaletteColor(1).IsRgb(0xff, 0x00, 0x00));
}

TEST(VirtualTerminal, CursorKeysFollowApplicationCursorMode) {
    Recorder out;
    VirtualTerminal vt(3, 20, out.Sink());
    vt.PressKey(Key::Up);
    EXPECT_EQ(out.sent, "\x1b[A");
    out.sent.clear();
    vt.Feed("\x1b[?1h");  // what a program in keypad mode switches on
    vt.PressKey(Key::Up);
    vt.PressKey(Key::Left);
    EXPECT_EQ(out.sent,
              "\x1b"
              "OA"
              "\x1b"
              "OD");
}

TEST(VirtualTerminal, EncodesEditingAndFunctionKeys) {
    Recorder out;
    VirtualTerminal vt(3, 20, out.Sink());
    struct Case {
        Key key;
        const char* bytes;
    } cases[] = {
        {Key::Enter, "\r"},       {Key::Escape, "\x1b"},    {Key::Backspace, "\x7f"},
        {Key::Tab, "\t"},         {Key::F1, "\x1bOP"},      {Key::F4, "\x1bOS"},
        {Key::F5, "\x1b[15~"},    {Key::F10, "\x1b[21~"},   {Key::F11, "\x1b[23~"},
        {Key::F12, "\x1b[24~"},   {Key::PageUp, "\x1b[5~"}, {Key::PageDown, "\x1b[6~"},
        {Key::Insert, "\x1b[2~"}, {Key::Delete, "\x1b[3~"},
    };
    for (const auto& c : cases) {
        out.sent.clear();
        vt.PressKey(c.key);
        EXPECT_EQ(out.sent, c.bytes) << "key " << int(c.key);
    }
    out.sent.clear();
    vt.TypeText("a\xc3\xa9\n");
    EXPECT_EQ(out.sent, "a\xc3\xa9\r");
    EXPECT_THROW(KovoTerm::FunctionKey(13), std::out_of_range);
    EXPECT_EQ(KovoTerm::FunctionKey(12), Key::F12);
}
