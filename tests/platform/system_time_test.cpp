#include "platform/system_time.h"

#include <gtest/gtest.h>

namespace marvolen {
namespace {

TEST(SystemTime, DifferencesCountCalendarDaysAndCarryOver) {
    constexpr std::int64_t kDay = 86400000;
    const SYSTEMTIME before{2004, 2, 0, 28, 23, 59, 59, 900};
    struct {
        SYSTEMTIME later, earlier;
        std::int64_t difference;
    } const cases[] = {
        {{2004, 2, 0, 29, 0, 0, 0, 0}, before, 100},
        {{2004, 3, 6, 1, 0, 0, 0, 0}, before, kDay + 100},
        {before, {2004, 2, 0, 29, 0, 0, 0, 0}, -100},
        {{2001, 1, 0, 1, 0, 0, 0, 0}, {2000, 1, 0, 1, 0, 0, 0, 0}, 366 * kDay},
        {{1901, 1, 0, 1, 0, 0, 0, 0}, {1900, 1, 0, 1, 0, 0, 0, 0}, 365 * kDay},
        {{2004, 13, 0, 1, 0, 0, 0, 0}, {2005, 1, 0, 1, 0, 0, 0, 0}, 0},
        {{2004, 1, 0, 32, 0, 0, 0, 0}, {2004, 2, 0, 1, 0, 0, 0, 0}, 0},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(DifferenceInMilliseconds(each.later, each.earlier), each.difference);
    }
    EXPECT_GT(DifferenceInMilliseconds({65535, 255, 0, 255, 255, 255, 255, 65535}, {}), 0);
}

}  // namespace
}  // namespace marvolen
