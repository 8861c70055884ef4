#include "network/ApplyChangesDialog.h"

#include <gtest/gtest.h>

#include "../system/RecordingHost.h"
#include "WatchedDialog.h"

namespace Kovo {
namespace {

using namespace Testing;

class ApplyChanges : public NetworkDialogs {};

TEST_F(ApplyChanges, OnlyYNAndEscapeAnswer) {
    // Enter, Space, letters and arrows are no answer; the first Y or N (either case) is.
    auto yes = Run<ApplyChangesDialog>("\n xq" + Keys::kDown + "y", false);
    EXPECT_EQ(yes.result, ApplyChangesDialog::kYes);
    EXPECT_NE(ScreenText(yes->Handle()).find("Apply changes and restart management network?"),
              std::string::npos);
    EXPECT_EQ(Run<ApplyChangesDialog>("\tN", false).result, ApplyChangesDialog::kNo);
    EXPECT_EQ(Run<ApplyChangesDialog>("\tn", false).result, ApplyChangesDialog::kNo);
    EXPECT_EQ(Run<ApplyChangesDialog>("\tY", false).result, ApplyChangesDialog::kYes);
    EXPECT_EQ(Run<ApplyChangesDialog>("\t" + Keys::kEsc, false).result, ApplyChangesDialog::kCancel);
}

TEST_F(ApplyChanges, SwitchingIpv6AsksToRebootTheHost) {
    auto asked = Run<ApplyChangesDialog>("\tn", true);
    const std::string text = ScreenText(asked->Handle());
    EXPECT_NE(text.find("Apply changes and reboot host?"), std::string::npos) << text;
    EXPECT_EQ(text.find("restart management network?"), std::string::npos) << text;
    EXPECT_NE(text.find("Configure Management Network: Confirm"), std::string::npos) << text;
    EXPECT_NE(text.find("<Y> Yes  <N> No"), std::string::npos) << text;
}

}  // namespace
}  // namespace Kovo
