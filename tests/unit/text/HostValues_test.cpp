#include <gtest/gtest.h>

#include "text/TextArea.h"

namespace Kovo {
namespace {

constexpr uint64_t kPage = 4096;
constexpr uint64_t kMiB = 1048576;
constexpr uint64_t kGiB = 1024 * kMiB;

TEST(HostValues, MemoryIsRoundedUpToAQuarterGiBAndTruncatedToTenths) {
    EXPECT_EQ(FormatMemory(8 * kGiB / kPage, kPage), "8 GB");
    EXPECT_EQ(FormatMemory(8 * kGiB / kPage + 1, kPage), "8.2 GB");
    EXPECT_EQ(FormatMemory(900 * kMiB / kPage, kPage), "1 GB");
    EXPECT_EQ(FormatMemory(7 * kGiB / kPage + 3 * kGiB / 4 / kPage, kPage), "7.7 GB");
}

TEST(HostValues, MemoryUnitClimbsToTerabytesAndBelowAGigabyteStaysInMegabytes) {
    EXPECT_EQ(FormatMemory(256 * kMiB / kPage, kPage), "256 MB");
    EXPECT_EQ(FormatMemory(1, kPage), "256 MB");
    EXPECT_EQ(FormatMemory(1536 * kGiB / kPage, kPage), "1.5 TB");
    EXPECT_EQ(FormatMemory(0, kPage), "0 MB");
}

}  // namespace
}  // namespace Kovo
