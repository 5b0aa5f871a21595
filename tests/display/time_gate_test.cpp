#include "display/time_gate.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace marvolen {
namespace {

constexpr int kNone = -1;     // a picture without a stamp
constexpr int kAllZero = -2;  // a stamp of zeros
constexpr int kReopened = -3;

// From milliseconds after half past seven.
SYSTEMTIME Stamp(int time) {
    const auto second = static_cast<std::uint16_t>(time / 1000 % 60);
    const auto minute = static_cast<std::uint16_t>(30 + time / 60'000);
    if (time == kAllZero) return {};
    return {2004, 2, 0, 29, 7, minute, second, static_cast<std::uint16_t>(time % 1000)};
}

TEST(TimeGate, TakesStampsThatExceedTheLastTakenByMoreThanTheInterval) {
    const struct {
        std::uint32_t interval;
        std::vector<int> stamps;
        std::string passes;  // + or - for each
    } cases[] = {
        {0xFFFFFFFF, {5, 9, kReopened, 7}, "+-++"},                 // the first after opening
        {0xFFFFFFFF, {kAllZero, 5}, "++"},                          // even the earliest
        {0, {5, 5, 6}, "+-+"},                                      // every later one
        {1500, {59'700, 61'200, 61'201, 62'701, 62'702}, "+-+-+"},  // in steps
        {60'000, {9000, 8999}, "++"},                               // a clock set back
        {0, {5, kNone, 5, 6}, "++-+"},                              // a picture without
    };
    for (const auto& [interval, stamps, passes] : cases) {
        TimeGate gate;
        gate.Open(interval);
        int shown = kNone;
        for (std::size_t k = 0; k < stamps.size(); ++k) {
            SCOPED_TRACE(std::to_string(interval) + " ms: " + std::to_string(stamps[k]));
            const SYSTEMTIME stamp = Stamp(stamps[k]);
            if (stamps[k] == kReopened) {
                gate.Close();
                EXPECT_EQ(gate.Time(), nullptr);
                gate.Open(interval);
                shown = kNone;
            } else {
                EXPECT_EQ(gate.Pass(stamps[k] == kNone ? nullptr : &stamp), passes[k] == '+');
                if (passes[k] == '+') shown = stamps[k];
            }
            ASSERT_EQ(gate.Time() == nullptr, shown == kNone);
            if (shown != kNone) {
                EXPECT_EQ(*gate.Time(), Stamp(shown));
            }
        }
    }
}

}  // namespace
}  // namespace marvolen
