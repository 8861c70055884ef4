#include "session/WelcomeWindow.h"

#include <gtest/gtest.h>

namespace Kovo {
namespace {

constexpr uint64_t kMiB = 1048576;
constexpr uint64_t kGiB = 1024 * kMiB;

// Whole units print without decimals; fractions are truncated to tenths, not rounded.
TEST(WelcomeMemoryLine, WholeUnitsWithoutDecimalsAndFractionsTruncatedToTenths) {
    const std::pair<uint64_t, const char*> cases[] = {
        {16 * kGiB, "16 GiB Memory"},      {512 * kMiB, "512 MiB Memory"},
        {2 * 1024 * kGiB, "2 TiB Memory"}, {7 * kGiB + 3 * kGiB / 4, "7.7 GiB Memory"},
        {8 * kGiB + 4096, "8 GiB Memory"}, {1023 * kMiB, "1023 MiB Memory"},
    };
    for (const auto& [bytes, line] : cases) EXPECT_EQ(WelcomeWindow::MemoryLine(bytes), line) << bytes;
}

}  // namespace
}  // namespace Kovo
