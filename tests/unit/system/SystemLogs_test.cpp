#include "system/SystemLogs.h"

#include <gtest/gtest.h>

#include "text/StringFactory.h"

namespace Kovo {
namespace {

std::optional<int> Row(int digit, const SystemLogs::Availability& available) {
    return SystemLogs::RowForDigit(digit, available);
}

// A digit counts only the present logs; one that matches none falls back to the row after the last counted.
TEST(SystemLogDigits, CountOnlyThePresentLogsAndFallBackToTheRowAfterTheLastCounted) {
    constexpr SystemLogs::Availability all{true, true, true, true, true, true, true};
    for (int digit = 1; digit <= 7; ++digit) EXPECT_EQ(Row(digit, all), digit - 1) << digit;
    for (int digit : {0, 8, 9, -1, int('1')}) EXPECT_EQ(Row(digit, all), std::nullopt) << digit;
    const SystemLogs::Availability some{true, false, true, false, false, false, true};
    EXPECT_EQ(Row(2, some), 2);
    EXPECT_EQ(Row(3, some), 6);
    const SystemLogs::Availability firstThree{true, true, true, false, false, false, false};
    EXPECT_EQ(Row(5, firstThree), 3);  // the fourth log, although it is not there
    EXPECT_EQ(Row(0, firstThree), 3);
    // 0 matches before anything is counted, so a missing first log is opened by 0.
    EXPECT_EQ(Row(0, SystemLogs::Availability{false, true, true, true, true, true, true}), 0);
    EXPECT_EQ(Row(4, SystemLogs::Availability{}), 0);
}

TEST(SystemLogDetails, ListThePresentLogsNumberedAsTheDigitsCountThem) {
    SystemLogs logs;
    logs.SetAvailable({false, true, false, true, false, false, false});
    const std::string text = logs.Details(*GetStringFactory("en_US"));
    EXPECT_NE(text.find("<1>{/color} ZenKernel\n{color:white}<2>{/color} Management Agent (hagentd)"),
              std::string::npos)
        << text;
    EXPECT_EQ(text.find("Syslog"), std::string::npos) << text;
}

}  // namespace
}  // namespace Kovo
