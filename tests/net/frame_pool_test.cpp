#include "net/frame_pool.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace marvolen {
namespace {

TEST(FramePoolTest, FreshFrameIsEmptyWhateverItsSlotHeldBefore) {
    FramePool pool;
    ASSERT_TRUE(pool.Init(100, 1));
    for (int use = 0; use < 2; ++use) {
        const FramePtr frame = pool.Acquire();
        ASSERT_TRUE(frame);
        EXPECT_TRUE(frame->Width() == -1 && frame->Height() == -1 && frame->Length() == 0 &&
                    frame->Capacity() == 100 && frame->Time() == nullptr);
        EXPECT_EQ(frame->Data(), reinterpret_cast<std::uint8_t*>(frame.get()) + sizeof(VideoFrame))
            << "the bytes follow the record";

        std::memset(frame->Data(), 0xFF, frame->Capacity());
        frame->SetLength(100);
        frame->SetWidth(352);
        frame->SetHeight(240);
        const SYSTEMTIME time{2003, 1, 0, 15, 12, 30, 45, 500};
        frame->SetTime(time);
        EXPECT_TRUE(frame->Time() && *frame->Time() == time);
        EXPECT_EQ(frame->Picture().size(), 100U);
    }
}

TEST(FramePoolTest, SlotsComeLowestFirstThenInTheOrderOfTheirReturn) {
    FramePool pool;
    ASSERT_TRUE(pool.Init(8, 4));
    std::vector<FramePtr> frames(4);
    std::vector<const VideoFrame*> slots;
    for (FramePtr& frame : frames) slots.push_back((frame = pool.Acquire()).get());
    EXPECT_TRUE(slots[0] && std::is_sorted(slots.begin(), slots.end()));
    EXPECT_EQ(pool.Acquire(), nullptr) << "every slot is out";
    for (const std::size_t i : {2U, 0U, 3U, 1U}) frames[i].reset();
    for (const std::size_t i : {2U, 0U, 3U, 1U}) {
        frames[i] = pool.Acquire();
        EXPECT_EQ(frames[i].get(), slots[i]);
    }
    frames[3].reset();
    EXPECT_EQ(pool.Acquire().get(), slots[3]) << "the only free slot";
    EXPECT_FALSE(pool.Init(8, 1)) << "twice";
    FramePool tooLarge;
    EXPECT_FALSE(tooLarge.Init(0xFFFFFFFF, 0xFFFFFFFF));
    EXPECT_EQ(tooLarge.Acquire(), nullptr);
}

}  // namespace
}  // namespace marvolen
