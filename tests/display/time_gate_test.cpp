#include "display/time_gate.h"

#include <gtest/gtest.h>

namespace marvolen {
namespace {

SYSTEMTIME At(int hour, int minute, int second, int milliseconds) {
    const auto word = [](int value) { return static_cast<std::uint16_t>(value); };
    return {2004, 2, 0, 29, word(hour), word(minute), word(second), word(milliseconds)};
}

TEST(TimeGate, TakesTheFirstStampAfterOpenWhateverItIs) {
    TimeGate gate;
    EXPECT_EQ(gate.Time(), nullptr);
    gate.Open(0xFFFFFFFF);
    // The difference to an all-zero time would be 0 here.
    const SYSTEMTIME early{};
    EXPECT_TRUE(gate.Pass(&early));
    gate.Open(0xFFFFFFFF);
    const SYSTEMTIME noon = At(12, 0, 0, 0);
    EXPECT_TRUE(gate.Pass(&noon));
    ASSERT_NE(gate.Time(), nullptr);
    EXPECT_EQ(*gate.Time(), noon);
}

TEST(TimeGate, WithoutAnIntervalTakesEveryLaterStampAndNoEqualOne) {
    TimeGate gate;
    gate.Open(0);
    const SYSTEMTIME first = At(8, 15, 0, 0);
    const SYSTEMTIME next = At(8, 15, 0, 1);
    EXPECT_TRUE(gate.Pass(&first));
    EXPECT_FALSE(gate.Pass(&first));
    EXPECT_EQ(*gate.Time(), first);
    EXPECT_TRUE(gate.Pass(&next));
    EXPECT_EQ(*gate.Time(), next);
}

TEST(TimeGate, MustExceedTheIntervalSinceTheLastStampTaken) {
    TimeGate gate;
    gate.Open(1500);
    const SYSTEMTIME first = At(8, 59, 59, 700);
    const SYSTEMTIME tooEarly = At(9, 0, 1, 200);  // exactly 1500 ms later
    const SYSTEMTIME lateEnough = At(9, 0, 1, 201);
    EXPECT_TRUE(gate.Pass(&first));
    EXPECT_FALSE(gate.Pass(&tooEarly));
    EXPECT_EQ(*gate.Time(), first);
    EXPECT_TRUE(gate.Pass(&lateEnough));
    EXPECT_EQ(*gate.Time(), lateEnough);
}

TEST(TimeGate, FollowsAClockSetBackAtOnce) {
    TimeGate gate;
    gate.Open(60000);
    const SYSTEMTIME before = At(8, 15, 0, 0);
    const SYSTEMTIME setBack = At(8, 14, 59, 999);
    EXPECT_TRUE(gate.Pass(&before));
    EXPECT_TRUE(gate.Pass(&setBack));
    EXPECT_EQ(*gate.Time(), setBack);
}

TEST(TimeGate, APictureWithoutStampTakesTheTimeAwayUntilTheNextAcceptedStamp) {
    TimeGate gate;
    gate.Open(0);
    const SYSTEMTIME first = At(8, 15, 0, 0);
    const SYSTEMTIME next = At(8, 15, 1, 0);
    EXPECT_TRUE(gate.Pass(&first));
    EXPECT_TRUE(gate.Pass(nullptr));
    EXPECT_EQ(gate.Time(), nullptr);
    EXPECT_FALSE(gate.Pass(&first));  // equal to the stamp last taken: changes nothing
    EXPECT_EQ(gate.Time(), nullptr);
    EXPECT_TRUE(gate.Pass(&next));
    EXPECT_NE(gate.Time(), nullptr);
}

TEST(TimeGate, CloseAndOpenForgetTheTime) {
    TimeGate gate;
    gate.Open(0);
    const SYSTEMTIME stamp = At(8, 15, 0, 0);
    EXPECT_TRUE(gate.Pass(&stamp));
    gate.Close();
    EXPECT_EQ(gate.Time(), nullptr);
    gate.Open(0);
    EXPECT_EQ(gate.Time(), nullptr);
    EXPECT_TRUE(gate.Pass(&stamp));
}

}  // namespace
}  // namespace marvolen
