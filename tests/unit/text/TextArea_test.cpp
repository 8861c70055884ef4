#include "text/TextArea.h"

#include <gtest/gtest.h>

#include "../support/OffscreenCurses.h"
#include "text/MarkupDraw.h"

namespace Kovo {
namespace {

using Testing::OffscreenCurses;

// An area of 20x3 in yellow with black text, inside a screen-sized window.
class TextAreaTest : public OffscreenCurses {
  protected:
    void SetUp() override {
        OffscreenCurses::SetUp();
        _area = new TextArea(Root(kYellow, kBlack), 2, 1, 20, 3);
    }
    WINDOW* Area() { return _area->Handle(); }

    TextArea* _area = nullptr;  // owned by the root window
};

TEST_F(TextAreaTest, PaintsColourRunsAndRestoresBothDefaults) {
    _area->SetText("{color:red}ab{/color}cd{bgcolor:black}{color:white}ef{/color}gh");
    EXPECT_EQ(Row(Area(), 0), "abcdefgh            ");
    EXPECT_EQ(PairAt(Area(), 0, 0), ColorPairNumber(kYellow, kRed));
    EXPECT_EQ(PairAt(Area(), 0, 1), ColorPairNumber(kYellow, kRed));
    EXPECT_EQ(PairAt(Area(), 0, 2), ColorPairNumber(kYellow, kBlack));
    EXPECT_EQ(PairAt(Area(), 0, 4), ColorPairNumber(kBlack, kWhite));
    // "/color" puts back the background as well, although it only closes a foreground.
    EXPECT_EQ(PairAt(Area(), 0, 6), ColorPairNumber(kYellow, kBlack));
    EXPECT_EQ(PairAt(Area(), 0, 8), ColorPairNumber(kYellow, kBlack));
    // Every render starts in the default colours, whatever the last one left open.
    _area->SetText("{color:red}ab");
    _area->SetText("cd");
    EXPECT_EQ(PairAt(Area(), 0, 0), ColorPairNumber(kYellow, kBlack));
}

TEST_F(TextAreaTest, IgnoresUnknownColoursAndTagsAndUnmatchedClosers) {
    _area->SetText("{color:red}a{color:purple}b{/color}c\n{bgcolor:black}d{/color}e{/bgcolor}f");
    EXPECT_EQ(PairAt(Area(), 0, 1), ColorPairNumber(kYellow, kRed));  // unknown name: still red
    EXPECT_EQ(PairAt(Area(), 0, 2), ColorPairNumber(kYellow, kBlack));
    // No "color" tag is open, so "/color" leaves the black background on.
    EXPECT_EQ(PairAt(Area(), 1, 1), ColorPairNumber(kBlack, kBlack));
    EXPECT_EQ(PairAt(Area(), 1, 2), ColorPairNumber(kYellow, kBlack));
    EXPECT_EQ(Row(Area(), 1), "def                 ");
    // Unknown tags and variables show nothing.
    _area->SetText("a{nosuch}b{supportStart}c{supportstart}");
    EXPECT_EQ(Row(Area(), 0), "abcN/A              ");
}

TEST_F(TextAreaTest, InactiveAreaShowsTextWithoutColourTagsAndActivationRepaints) {
    _area->SetText("{color:red}ab{/color}{bgcolor:white}cd");
    _area->SetActive(false);
    EXPECT_EQ(Row(Area(), 0), "abcd                ");
    for (int x : {0, 2, 10}) EXPECT_EQ(PairAt(Area(), 0, x), ColorPairNumber(kBlack, kDarkGrey)) << x;
    _area->SetActive(true);
    EXPECT_EQ(PairAt(Area(), 0, 0), ColorPairNumber(kYellow, kRed));
    EXPECT_EQ(PairAt(Area(), 0, 2), ColorPairNumber(kWhite, kBlack));
    // Activation repaints the text.
    _area->SetText("{color:red}{supportperiod}");
    _area->Erase();
    _area->SetActive(true);
    EXPECT_EQ(Row(Area(), 0), "N/A                 ");
    EXPECT_EQ(PairAt(Area(), 0, 0), ColorPairNumber(kYellow, kRed));
}

TEST_F(TextAreaTest, CutsRowsBeyondTheHeightAndClearsOnEmptyText) {
    rootWindow_->Print(2, 4, "untouched");
    _area->SetText("one\ntwo\nthree\nfour\nfive");
    EXPECT_EQ(Row(Area(), 2), "three               ");
    EXPECT_EQ(Row(rootWindow_->Handle(), 4).substr(2, 9), "untouched");
    _area->SetText("");
    for (int y = 0; y < 3; ++y) EXPECT_EQ(Row(Area(), y), std::string(20, ' ')) << y;
}

TEST_F(TextAreaTest, AppendBuildsOnTheKeptText) {
    _area->SetText("{color:red}IP: ");
    _area->AppendText(std::string("{CPLDversion}"));
    _area->AppendText("\nnext");
    EXPECT_EQ(_area->Text(), "{color:red}IP: {CPLDversion}\nnext");
    EXPECT_EQ(Row(Area(), 0), "IP: N/A             ");
    EXPECT_EQ(PairAt(Area(), 0, 5), ColorPairNumber(kYellow, kRed));
    EXPECT_EQ(Row(Area(), 1), "next                ");
    _area->SetText(static_cast<const char*>(nullptr));
    EXPECT_EQ(_area->Text(), "");
}

// The draw pass alone, on text no layout would produce: nothing may spill past the width or height.
TEST_F(TextAreaTest, DrawNeverWritesOutsideTheCanvas) {
    rootWindow_->Print(0, 3, "zzzzzzzzzzzzzzzzzzzzzzzz");
    MarkupCanvas canvas{_area->Handle(), 20, 2, kYellow, kBlack, true};
    DrawMarkup(canvas, "0123456789012345678901234{color:red}\n\tx{ab\nrow3\nrow4", _area->Colors());
    EXPECT_EQ(Row(Area(), 0), "01234567890123456789");
    EXPECT_EQ(Row(Area(), 1), " x                  ");
    EXPECT_EQ(Row(rootWindow_->Handle(), 3).substr(0, 24), "zzzzzzzzzzzzzzzzzzzzzzzz");
}

constexpr uint64_t kPage = 4096;
constexpr uint64_t kMiB = 1048576;
constexpr uint64_t kGiB = 1024 * kMiB;

// Rounded up to a quarter GiB and cut to tenths; below a gigabyte in megabytes, above a thousand in
// terabytes.
TEST(HostValues, MemoryIsRoundedUpToAQuarterGiBAndShownInItsUnit) {
    const std::pair<uint64_t, const char*> cases[] = {
        {8 * kGiB, "8 GB"},      {8 * kGiB + kPage, "8.2 GB"},
        {900 * kMiB, "1 GB"},    {7 * kGiB + 3 * kGiB / 4, "7.7 GB"},
        {256 * kMiB, "256 MB"},  {kPage, "256 MB"},
        {1536 * kGiB, "1.5 TB"}, {0, "0 MB"},
    };
    for (const auto& [bytes, shown] : cases) EXPECT_EQ(FormatMemory(bytes / kPage, kPage), shown) << bytes;
}

}  // namespace
}  // namespace Kovo
