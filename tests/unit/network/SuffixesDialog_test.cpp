#include "network/SuffixesDialog.h"

#include <gtest/gtest.h>

#include "WatchedDialog.h"

namespace Kovo {
namespace {

using namespace Testing;

class Suffixes : public NetworkDialogs {};

TEST_F(Suffixes, EnterKeepsTheTextAsTypedWithoutUnderscoresOrSlashes) {
    auto d = Run<SuffixesDialog>("a.example.com, lab_1/b-2.example.org  x\n", std::string("old.example"));
    EXPECT_EQ(d.result, 1);
    EXPECT_EQ(d->Suffixes(), "a.example.com, lab1b-2.example.org  x");
    EXPECT_TRUE(d->moments.at(0).cursor);
    auto cancelled = Run<SuffixesDialog>("new" + Keys::kEsc, std::string("old.example"));
    EXPECT_EQ(cancelled.result, 0);
    EXPECT_EQ(cancelled->Suffixes(), "old.example");
}

}  // namespace
}  // namespace Kovo
