#include "platform/system_time.h"

#include <gtest/gtest.h>

namespace marvolen {
namespace {

TEST(SystemTime, DifferenceCountsCalendarDays) {
    const SYSTEMTIME before{2004, 2, 0, 28, 23, 59, 59, 900};
    EXPECT_EQ(DifferenceInMilliseconds({2004, 2, 0, 29, 0, 0, 0, 0}, before), 100);
    EXPECT_EQ(DifferenceInMilliseconds({2004, 3, 0, 1, 0, 0, 0, 0}, before), 86400000 + 100);
    EXPECT_EQ(DifferenceInMilliseconds(before, {2004, 2, 0, 29, 0, 0, 0, 0}), -100);
    EXPECT_EQ(DifferenceInMilliseconds({2001, 1, 0, 1, 0, 0, 0, 0}, {2000, 1, 0, 1, 0, 0, 0, 0}),
              366LL * 86400000);
    EXPECT_EQ(DifferenceInMilliseconds({1901, 1, 0, 1, 0, 0, 0, 0}, {1900, 1, 0, 1, 0, 0, 0, 0}),
              365LL * 86400000);
}

TEST(SystemTime, DayOfWeekHasNoPart) {
    EXPECT_EQ(DifferenceInMilliseconds({2004, 2, 6, 1, 0, 0, 0, 0}, {2004, 2, 0, 1, 0, 0, 0, 0}),
              0);
}

TEST(SystemTime, FieldsOutOfRangeCarryOver) {
    EXPECT_EQ(DifferenceInMilliseconds({2004, 13, 0, 1, 0, 0, 0, 0}, {2005, 1, 0, 1, 0, 0, 0, 0}),
              0);
    EXPECT_EQ(DifferenceInMilliseconds({2004, 1, 0, 32, 0, 0, 0, 0}, {2004, 2, 0, 1, 0, 0, 0, 0}),
              0);
    EXPECT_GT(DifferenceInMilliseconds({1, 0, 0, 0, 0, 0, 0, 0}, {}), 0);
    EXPECT_GT(DifferenceInMilliseconds({65535, 255, 0, 255, 255, 255, 255, 65535}, {}), 0);
}

TEST(SystemTime, FormatsWithLeadingZeros) {
    EXPECT_EQ(FormatTime({2004, 2, 0, 29, 8, 15, 0, 0}), "2004/02/29 08:15:00");
    EXPECT_EQ(FormatTime({}), "0000/00/00 00:00:00");
    EXPECT_EQ(FormatTime({65535, 65535, 0, 65535, 65535, 65535, 65535, 0}),
              "65535/65535/65535 65535:65535:65535");
}

TEST(SystemTime, NowIsAPlausibleDate) {
    const SYSTEMTIME now = LocalTimeNow();
    EXPECT_GE(now.year, 2024);
    EXPECT_TRUE(now.month >= 1 && now.month <= 12 && now.day >= 1 && now.day <= 31);
    EXPECT_TRUE(now.hour < 24 && now.minute < 60 && now.second < 62 && now.milliseconds < 1000);
}

}  // namespace
}  // namespace marvolen
