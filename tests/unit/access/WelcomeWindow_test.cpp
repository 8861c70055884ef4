#include "session/WelcomeWindow.h"

#include <gtest/gtest.h>

namespace Kovo {
namespace {

constexpr uint64_t kMiB = 1048576;
constexpr uint64_t kGiB = 1024 * kMiB;

TEST(WelcomeMemoryLine, WholeUnitsPrintWithoutDecimals) {
    EXPECT_EQ(WelcomeWindow::MemoryLine(16 * kGiB), "16 GiB Memory");
    EXPECT_EQ(WelcomeWindow::MemoryLine(512 * kMiB), "512 MiB Memory");
    EXPECT_EQ(WelcomeWindow::MemoryLine(2 * 1024 * kGiB), "2 TiB Memory");
}

TEST(WelcomeMemoryLine, FractionsAreTruncatedToTenthsNotRounded) {
    EXPECT_EQ(WelcomeWindow::MemoryLine(7 * kGiB + 3 * kGiB / 4), "7.7 GiB Memory");
    EXPECT_EQ(WelcomeWindow::MemoryLine(8 * kGiB + 4096), "8 GiB Memory");
    EXPECT_EQ(WelcomeWindow::MemoryLine(1023 * kMiB), "1023 MiB Memory");
}

}  // namespace
}  // namespace Kovo
