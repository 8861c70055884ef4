#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <tuple>

#include "../support/OffscreenCurses.h"
#include "frames/Dialog.h"
#include "frames/Frame.h"
#include "frames/MenuWindow.h"
#include "frames/RootWindow.h"
#include "terminal/Colors.h"
#include "text/ItemList.h"
#include "text/LabelItem.h"
#include "text/TextArea.h"

namespace Kovo {
namespace {

// A full-screen frame in the colours a menu uses.
class ScreenFrame : public Frame {
  public:
    ScreenFrame() : Frame(nullptr, 0, 0, COLS, LINES, kYellow, kWhite) {}
    int HandleKey() override { return 0; }
};

// A dialog whose loop runs a probe instead of reading keys.
class ProbeDialog : public Dialog {
  public:
    ProbeDialog(Frame* parent, int w, int h, int t, std::function<void()> probe)
        : Dialog(parent, {w, h, t}), _probe(std::move(probe)) {}
    int HandleKey() override {
        if (_probe) _probe();
        return 42;
    }

  private:
    std::function<void()> _probe;
};

using Frames = Testing::OffscreenCurses;

// A body text never loses its last words to a header too short for it: the dialog grows instead.
TEST_F(Frames, DialogGrowsItsHeaderToShowTheWholeBody) {
    const std::string threeRows(150, 'x');
    const DialogLayout given{72, 20, 6, 0, 0, ""};
    for (const auto& [body, header, height] : {std::tuple{std::string("Fits on one row."), 6, 20},
                                               std::tuple{threeRows.substr(0, 100), 6, 20},  // two rows of 66
                                               std::tuple{threeRows, 7, 21}}) {
        const DialogLayout fitted = Dialog::FitToBody(given, body);
        EXPECT_EQ(fitted.headerHeight, header) << body.size();
        EXPECT_EQ(fitted.height, height) << body.size();
    }
    // No taller than the screen: 25 rows here.
    const DialogLayout tall = Dialog::FitToBody(given, std::string(66 * 30, 'x'));
    EXPECT_EQ(tall.height, LINES);
    EXPECT_EQ(tall.headerHeight, 6 + LINES - 20);

    ScreenFrame root;
    class BodyDialog : public Dialog {
      public:
        BodyDialog(Frame* parent, const std::string& body) : Dialog(parent, {72, 20, 6, 0, 0, ""}, body) {}
        int HandleKey() override { return 0; }
    } dialog(&root, threeRows + " load-balancing.");
    EXPECT_EQ(dialog.Header()->Height(), 7);
    std::string shown;
    for (int row = 3; row < 6; ++row) shown += Row(dialog.Header()->Handle(), row);
    EXPECT_NE(shown.find("load-balancing."), std::string::npos) << shown;
}

// While a modal dialog runs, the whole parent tree is grey and inactive, the dialog is the foreground
// frame and the parent's text cursor is hidden; afterwards each is as it was.
TEST_F(Frames, ModalDialogGreysTheParentTreeTakesTheForegroundAndRestoresBoth) {
    ScreenFrame root;
    Window* pane = root.AddChild(1, 1, 20, 5, kDarkGrey, kWhite);
    Frame::fgFrame = &root;
    Window::SetCursor(true);
    root.MoveCursor(7, 3);
    const attr_t grey = ColorAttr(kBlack, kDarkGrey);
    attr_t rootDuring = 0, paneDuring = 0;
    bool activeDuring = true, cursorDuring = true;
    Frame* foregroundDuring = nullptr;
    ProbeDialog d(&root, 40, 10, 5, [&] {
        rootDuring = AttrAt(root.Handle(), 20, 70);
        paneDuring = AttrAt(pane->Handle(), 2, 2);
        activeDuring = root.IsActive();
        foregroundDuring = Frame::fgFrame;
        cursorDuring = Window::_cursor;
    });
    EXPECT_EQ(d.RunModal(), 42);
    EXPECT_FALSE(activeDuring);
    EXPECT_EQ(rootDuring, grey);
    EXPECT_EQ(paneDuring, grey);
    EXPECT_EQ(foregroundDuring, &d);
    EXPECT_FALSE(cursorDuring);
    EXPECT_TRUE(root.IsActive());
    EXPECT_EQ(AttrAt(root.Handle(), 20, 70), ColorAttr(kYellow, kWhite));
    EXPECT_EQ(AttrAt(pane->Handle(), 2, 2), ColorAttr(kDarkGrey, kWhite));
    EXPECT_EQ(Frame::fgFrame, &root);
    EXPECT_TRUE(Window::_cursor);
    EXPECT_EQ(Window::_xCursor, 7);
    EXPECT_EQ(Window::_yCursor, 3);
    Window::SetCursor(false);
}

// A slow serial line must never show half a screen: each frame reaches the terminal in one write. The
// terminal here is a packet socket, so each write of curses arrives as one packet.
class FramesOnAPacketTerminal : public Testing::OffscreenCurses {
  protected:
    void SetUp() override {
        int ends[2];
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
        terminal_ = ends[1];
        OpenScreen(std::fopen("/dev/null", "r"), fdopen(ends[0], "w"));
        SendScreensWhole();
    }
    void TearDown() override {
        OffscreenCurses::TearDown();
        close(terminal_);
    }
    // How many writes curses made since the last call.
    int Writes() {
        int count = 0;
        char packet[1 << 16];
        while (recv(terminal_, packet, sizeof packet, MSG_DONTWAIT) >= 0) ++count;
        return count;
    }
    int terminal_ = -1;
};

TEST_F(FramesOnAPacketTerminal, AScreenAndAModalDialogsOpeningAndClosingAreOneWriteEach) {
    ScreenFrame root;
    for (int pane = 0; pane < 4; ++pane)
        root.AddChild(2, 1 + 6 * pane, 60, 5, kDarkGrey, kWhite)->Print(1, 1, "pane " + std::to_string(pane));
    Window::SetCursor(false);  // curses sends a change of the cursor's visibility at once
    Writes();
    {
        const PaintBatch oneFrame;
        root.SetActive(true);
    }
    EXPECT_EQ(Writes(), 1) << "a screen built in one batch";

    int opening = 0;
    ProbeDialog dialog(&root, 40, 10, 5, [&] { opening = Writes(); });
    Writes();
    dialog.RunModal();
    EXPECT_EQ(opening, 1) << "the parent greyed and the dialog over it";
    EXPECT_EQ(Writes(), 1) << "the parent back in its colours";
}

TEST_F(Frames, DestroyingAWindowDestroysItsChildren) {
    ScreenFrame root;
    Window* pane = root.AddChild(0, 0, 10, 5);
    pane->AddChild(1, 1, 3, 3);
    EXPECT_EQ(root.Children().size(), 1u);
    delete pane;
    EXPECT_TRUE(root.Children().empty());
}

class TestMenu : public RootWindow {
  public:
    TestMenu() : RootWindow(nullptr) {}
    int HandleKey() override { return 0; }
    void UpdateDetails() override {}
    using RootWindow::List;
};

// Without colours dark backgrounds are standout, and the selection is only standout: greying the menu
// under a dialog and bringing it back must leave the selected line marked and the rest plain.
TEST_F(Frames, BlackAndWhiteUsesStandoutForDarkBackgroundsAndTheMenuSelection) {
    bwColor = true;
    TestMenu menu;
    LabelItem first("first", true), second("second", true);
    menu.List()->SetItems({&first, &second});
    menu.List()->Draw();
    WINDOW* screen = menu.Handle();
    ASSERT_EQ(AttrAt(screen, 4, 3) & A_STANDOUT, A_STANDOUT);

    menu.SetActive(false);
    menu.SetActive(true);
    EXPECT_EQ(AttrAt(screen, 4, 3) & A_STANDOUT, A_STANDOUT) << Row(screen, 4);
    EXPECT_EQ(AttrAt(screen, 4, 20) & A_STANDOUT, A_STANDOUT) << "the whole line, not just its text";
    EXPECT_EQ(AttrAt(screen, 5, 3) & A_STANDOUT, 0u);
    EXPECT_EQ(AttrAt(screen, 10, 1) & A_STANDOUT, 0u) << "the pane itself";
    EXPECT_EQ(ColorAttr(kBlack, kWhite), A_STANDOUT);
    EXPECT_EQ(ColorAttr(kDarkGrey, kWhite), A_STANDOUT);
    EXPECT_EQ(ColorAttr(kYellow, kBlack), A_NORMAL);
    EXPECT_EQ(ColorAttr(kLightGrey, kWhite), A_NORMAL);

    ScreenFrame root;
    ProbeDialog d(&root, 40, 10, 5, nullptr);
    EXPECT_EQ(AttrAt(d.Header()->Handle(), 1, 1) & A_STANDOUT, A_STANDOUT);
    EXPECT_EQ(AttrAt(d.Body()->Handle(), 1, 1) & A_STANDOUT, 0u);
}

// Each field class takes exactly its characters; every dialog's fields are of one of these classes.
TEST(FieldKeysTest, EachClassTakesItsCharactersOnly) {
    const std::string all = "09afAFgzGZ.:/%-, _!~\x7f\xe9";
    const struct {
        FieldKeys keys;
        const char* taken;
    } classes[] = {
        {FieldKeys::Digits, "09"},
        {FieldKeys::Ipv4, "09."},
        {FieldKeys::DnsAddress, "09afAF.:"},
        {FieldKeys::Ipv6, "09afAFgzGZ:/%"},
        {FieldKeys::HostName, "09afAFgzGZ.-"},
        {FieldKeys::Suffixes, "09afAFgzGZ.-, "},
        {FieldKeys::Printable, "09afAFgzGZ.:/%-, _!~"},
    };
    for (const auto& c : classes) {
        std::string taken;
        for (char key : all)
            if (AcceptsKey(c.keys, static_cast<unsigned char>(key))) taken += key;
        EXPECT_EQ(taken, c.taken) << static_cast<int>(c.keys);
        for (int key : {KEY_LEFT, KEY_F(5), -1, 256}) EXPECT_FALSE(AcceptsKey(c.keys, key)) << key;
    }
}

// A menu of numbered rows that the test adds and takes away.
class NumberedMenu : public MenuWindow {
  public:
    NumberedMenu() : MenuWindow(nullptr, 4, nullptr) {}
    void Show(std::vector<unsigned> ids) {
        _ids = std::move(ids);
        ShowRows();
    }
    using MenuWindow::List;

  private:
    std::vector<Row> Rows() override {
        std::vector<Row> rows;
        for (unsigned id : _ids) rows.push_back({.id = id, .caption = std::to_string(id)});
        return rows;
    }
    std::vector<unsigned> _ids;
};

TEST_F(Frames, MenuSelectionStaysOnItsRowOrGoesToTheNextLeft) {
    struct Case {
        std::vector<unsigned> before;
        int downs;
        std::vector<unsigned> after;
        unsigned selected;
    };
    for (const Case& c : std::vector<Case>{
             {{1, 2, 3}, 1, {1, 3}, 3},        // gone: the row that followed it
             {{1, 2, 3}, 2, {1, 2}, 2},        // gone, the last: the one before it
             {{1, 2, 3}, 2, {4, 1, 2, 3}, 3},  // a row added before it: still its own
         }) {
        NumberedMenu menu;
        menu.Show(c.before);
        for (int i = 0; i < c.downs; ++i) menu.List()->Down();
        menu.Show(c.after);
        ASSERT_NE(menu.Selected(), nullptr);
        EXPECT_EQ(menu.Selected()->id, c.selected) << c.downs << " down, " << c.after.size() << " left";
    }
}

}  // namespace
}  // namespace Kovo
