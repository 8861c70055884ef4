#include "system/GeneralWindow.h"

#include <gtest/gtest.h>

#include "../support/OffscreenCurses.h"
#include "app/Colors.h"
#include "system/MenuCodes.h"
#include "text/ItemList.h"
#include "text/StringFactory.h"
#include "text/TextArea.h"

namespace Kovo {
namespace {

// The menu for a described host, its keys fed directly and its panes in reach.
class Menu : public GeneralWindow {
  public:
    explicit Menu(const MenuFacts& facts) : GeneralWindow(nullptr, facts) {}
    using GeneralWindow::OnKey;
    using GeneralWindow::SelectedCode;
    void Press(int key, int times = 1) {
        for (int i = 0; i < times; ++i) ASSERT_TRUE(OnKey(key));
    }
    std::string DetailText() const { return Details()->Text(); }
    std::string DetailFooter() const { return RightFooter()->Text(); }
    std::string DetailTitle() const { return RightTitle()->Text(); }
    // An entry line as drawn, without trailing blanks, and its colours.
    std::string Line(int row) const {
        std::string text;
        for (int x = 0; x < List()->Width() - 1; ++x)
            text += static_cast<char>(mvwinch(List()->Handle(), row, x) & A_CHARTEXT);
        return text.substr(0, text.find_last_not_of(' ') + 1);
    }
    attr_t LineColor(int row) const { return mvwinch(List()->Handle(), row, 0) & A_COLOR; }
};

MenuFacts WorkingHost() {
    MenuFacts facts;
    facts.lockdownPossible = true;
    facts.managementInterface = true;
    facts.keyboard = true;
    return facts;
}

class GeneralWindowTest : public Testing::OffscreenCurses {
  protected:
    void TearDown() override {
        Frame::_isUserPasswordEmpty = false;
        OffscreenCurses::TearDown();
    }
};

TEST_F(GeneralWindowTest, WorkingHostListsEveryEntryAndTheSelectionWalksThemWithoutWrapping) {
    Menu menu(WorkingHost());
    const char* lines[] = {"Configure Password",
                           "Configure Lockdown Mode",
                           "",
                           "Configure Management Network",
                           "Restart Management Network",
                           "Test Management Network",
                           "Network Restore Options",
                           "",
                           "Configure Keyboard",
                           "Troubleshooting Options",
                           "",
                           "View System Logs",
                           "",
                           "View Support Information",
                           "",
                           "Reset System Configuration"};
    for (int row = 0; row < 16; ++row) EXPECT_EQ(menu.Line(row), lines[row]) << row;
    EXPECT_EQ(menu.SelectedCode(), kConfigurePassword);
    for (unsigned code : {kConfigureLockdown, kConfigureNetwork, kRestartNetwork, kTestNetwork,
                          kNetworkRestore, kConfigureKeyboard, kTroubleshooting, kViewSystemLogs,
                          kViewSupportInfo, kResetConfiguration, kResetConfiguration}) {
        menu.Press(KEY_DOWN);
        EXPECT_EQ(menu.SelectedCode(), code);
        EXPECT_EQ(menu.DetailTitle(), menu.Strings()->GetString(code));
    }
    menu.Press(KEY_UP, 20);
    EXPECT_EQ(menu.SelectedCode(), kConfigurePassword);
    EXPECT_FALSE(menu.OnKey(27));  // Esc leaves
}

TEST_F(GeneralWindowTest, EntriesTheHostCannotOfferAreGreyAndSkipped) {
    MenuFacts facts = WorkingHost();
    facts.managementInterface = false;
    facts.lockdownPossible = false;
    facts.pxeBoot = true;
    facts.keyboard = false;
    Menu menu(facts);
    EXPECT_EQ(menu.LineColor(6), ColorAttr(kYellow, kBlack) & A_COLOR);
    for (int row : {1, 3, 4, 5, 14})
        EXPECT_EQ(menu.LineColor(row), ColorAttr(kYellow, kDarkGrey) & A_COLOR) << row;
    // Over a remote terminal the keyboard line goes; the blank line before it stays.
    EXPECT_EQ(menu.Line(7), "");
    EXPECT_EQ(menu.Line(8), "Troubleshooting Options");
    EXPECT_EQ(menu.Line(14), "Reset System Configuration");
    menu.Press(KEY_DOWN);
    EXPECT_EQ(menu.SelectedCode(), kNetworkRestore);
    menu.Press(KEY_DOWN, 10);
    EXPECT_EQ(menu.SelectedCode(), kViewSupportInfo);

    // A host already in lockdown must let the operator leave it, even when entering it is impossible.
    facts.lockdownEnabled = true;
    Menu locked(facts);
    locked.Press(KEY_DOWN);
    EXPECT_EQ(locked.SelectedCode(), kConfigureLockdown);
    EXPECT_EQ(locked.DetailText().rfind("{color:white}Enabled{/color}", 0), 0u) << locked.DetailText();
}

TEST_F(GeneralWindowTest, SupportPagesTurnWithinTheirBoundsAndStartOverOnEveryMove) {
    MenuFacts facts = WorkingHost();
    facts.pxeBoot = true;  // Support is the last choosable entry
    Menu menu(facts);
    menu.Press(KEY_DOWN, 9);
    ASSERT_EQ(menu.SelectedCode(), kViewSupportInfo);
    const std::string first = menu.DetailText();
    EXPECT_NE(first.find("Serial Number"), std::string::npos) << first;
    menu.Press(KEY_PPAGE);
    EXPECT_EQ(menu.DetailText(), first);
    EXPECT_NE(menu.DetailFooter().find("Page 1 of 3"), std::string::npos);
    menu.Press(KEY_NPAGE, 5);
    EXPECT_NE(menu.DetailText().find("BIOS Version"), std::string::npos);
    menu.Press(KEY_PPAGE);
    EXPECT_NE(menu.DetailFooter().find("Page 2 of 3"), std::string::npos);
    // Down on the last entry moves nothing but still starts the pages over.
    menu.Press(KEY_DOWN);
    EXPECT_EQ(menu.DetailText(), first);
    // Page keys elsewhere change nothing.
    menu.Press(KEY_UP);
    const std::string logs = menu.DetailText();
    for (int key : {KEY_NPAGE, KEY_PPAGE, int('x'), KEY_F(5)}) menu.Press(key);
    EXPECT_EQ(menu.SelectedCode(), kViewSystemLogs);
    EXPECT_EQ(menu.DetailText(), logs);
}

TEST_F(GeneralWindowTest, PasswordDetailsAskForAPasswordWhileItIsEmpty) {
    Frame::_isUserPasswordEmpty = true;
    EXPECT_EQ(Menu(WorkingHost()).DetailText(), "Change default password to prevent unauthorized access");
    Frame::_isUserPasswordEmpty = false;
    EXPECT_EQ(Menu(WorkingHost()).DetailText(),
              "To prevent unauthorized access to this system, set the password for the user.");
}

}  // namespace
}  // namespace Kovo
