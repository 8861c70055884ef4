#include "network/ApplyChangesDialog.h"

#include <gtest/gtest.h>

#include "WatchedDialog.h"

namespace Kovo {
namespace {

using namespace Testing;

class ApplyChanges : public NetworkDialogs {};

TEST_F(ApplyChanges, OnlyYNAndEscapeAnswer) {
    // Enter, Space, letters and arrows are no answer; the first Y or N (either case) is.
    auto yes = Run<ApplyChangesDialog>("\n xq" + Keys::kDown + "y", false);
    EXPECT_EQ(yes.result, ApplyChangesDialog::kYes);
    const std::pair<std::string, int> answers[] = {
        {"\tN", ApplyChangesDialog::kNo},
        {"\tn", ApplyChangesDialog::kNo},
        {"\tY", ApplyChangesDialog::kYes},
        {"\t" + Keys::kEsc, ApplyChangesDialog::kCancel},
    };
    for (const auto& [keys, result] : answers) EXPECT_EQ(Run<ApplyChangesDialog>(keys, false).result, result);
}

}  // namespace
}  // namespace Kovo
