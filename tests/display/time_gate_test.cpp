#include "display/time_gate.h"

#include <gtest/gtest.h>
#include <vector>

namespace marvolen {
namespace {

constexpr int kNone = -1;     // a picture without a stamp
constexpr int kAllZero = -2;  // a stamp of zeros

// From milliseconds after half past seven.
SYSTEMTIME Stamp(int time) {
    const auto word = [](int value) { return static_cast<std::uint16_t>(value); };
    if (time == kAllZero) return {};
    return {2004, 2, 0, 29, 7, word(30 + time / 60'000), word(time / 1000 % 60), word(time % 1000)};
}

TEST(TimeGate, TakesStampsThatExceedTheLastTakenByMoreThanTheInterval) {
    const struct {
        std::uint32_t interval;
        std::vector<int> stamps;
        const char* passes;  // + or - for each
    } cases[] = {
        {0xFFFFFFFF, {5, 9}, "+-"},                                 // the first after opening
        {0xFFFFFFFF, {kAllZero, 5}, "++"},                          // even the earliest
        {0, {5, 5, 6}, "+-+"},                                      // every later one
        {1500, {59'700, 61'200, 61'201, 62'701, 62'702}, "+-+-+"},  // in steps
        {60'000, {9000, 8999}, "++"},                               // a clock set back
        {0, {5, kNone, 5, 6}, "++-+"},                              // a picture without
    };
    TimeGate gate;
    for (const auto& [interval, stamps, passes] : cases) {
        gate.Open(interval);
        int shown = kNone;
        for (std::size_t k = 0; k < stamps.size(); ++k) {
            SCOPED_TRACE(testing::Message() << interval << " ms: " << stamps[k]);
            EXPECT_TRUE(k > 0 || !gate.Time());
            const SYSTEMTIME stamp = Stamp(stamps[k]);
            ASSERT_EQ(gate.Pass(stamps[k] == kNone ? nullptr : &stamp), passes[k] == '+');
            if (passes[k] == '+') shown = stamps[k];
            ASSERT_EQ(!gate.Time(), shown == kNone);
            EXPECT_EQ(gate.Time() ? *gate.Time() : Stamp(shown), Stamp(shown));
        }
        gate.Close();
        EXPECT_FALSE(gate.Time());
    }
}

}  // namespace
}  // namespace marvolen
