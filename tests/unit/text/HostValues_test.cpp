#include <gtest/gtest.h>

#include "text/TextArea.h"

namespace Kovo {
namespace {

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
