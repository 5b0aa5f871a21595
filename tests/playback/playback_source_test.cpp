// Playing record files back: what stands at which position, and how the buttons move there.

#include "playback/playback_source.h"

#include "platform/text_field.h"
#include "playback/playback_positions.h"
#include "tests/record/record_fixture.h"

#include <gtest/gtest.h>

namespace marvolen::test {
namespace {

class PlaybackTest : public RecordFixture {
protected:
    static constexpr std::uint32_t kLength = 10;

    // A file of records 0 to count - 1; wrapped, it has given up 600 before them.
    void Record(std::int32_t count, bool wrapped = false) {
        const auto chunks = static_cast<std::uint64_t>(count) / 600 + 1;
        ASSERT_TRUE(Create(wrapped ? 24 + chunks * (19240 + 600 * kLength) + 50 : 1048576));
        nextId = wrapped ? 0U - 600 : 0;
        ASSERT_TRUE(AppendMany(count + (wrapped ? 600 : 0), kLength));
        Close();
    }
    bool Open() {
        SetFieldText(record.recordPath, path);
        if (!source.Open(record, &pane) || !source.StepForward()) return false;
        positions.Close();
        positions.Open(source.RecordCount());
        return true;
    }
    // Does what a button wants done. Whether that shows something new, and the slider then stands
    // at this position and this record is seen.
    bool Gives(const PlaybackStep& step, bool isNew, std::int32_t position, std::int32_t seen) {
        using Kind = PlaybackStep::Kind;
        const auto wanted = static_cast<std::uint32_t>(step.position);
        const bool done = (step.kind == Kind::kForward && source.StepForward()) ||
                          (step.kind == Kind::kBack && source.StepBack()) ||
                          (step.kind == Kind::kShow && source.ShowPosition(wanted));
        const CapturedFrame& frame = source.Captured();
        const auto id = static_cast<std::uint32_t>(seen);
        return done == isNew && positions.Position() == position && frame.length == kLength &&
               frame.timeText == FormatTime(StampOf(id)) &&
               std::memcmp(frame.data.data(), BytesOf(id), kLength) == 0;
    }

    // Stands for the pane.
    class : public FrameReceiver {
        void Deliver(FramePtr frame) override { Forward(std::move(frame)); }
    } pane;
    ChannelInfo record{};
    PlaybackSource source;
    PlaybackPositions positions;
};

TEST_F(PlaybackTest, ShowsWhatStandsAtEachPosition) {
    for (const auto& [count, wrapped] : {std::pair{2, false},
                                         {599, false},
                                         {600, false},
                                         {601, false},
                                         {5000, false},
                                         {601, true},
                                         {5000, true}}) {
        SCOPED_TRACE(count);
        source.Close();
        Record(count, wrapped);
        ASSERT_TRUE(Open());
        const std::int32_t last = count - 1;
        EXPECT_EQ(positions.Maximum(), last);
        EXPECT_EQ(positions.Selection(), (PlaybackSelection{0, last}));
        // Backwards from the first position: the player goes, the slider doesn't.
        EXPECT_TRUE(Gives(positions.Prev(), true, 0, 0));
        EXPECT_TRUE(Gives(positions.Prev(), false, 0, 0)) << "nothing is older";
        EXPECT_TRUE(Gives(positions.Stop(), true, 0, 1));
        for (std::int32_t p = 1; p < last; ++p) {
            ASSERT_TRUE(Gives(positions.Next(), true, p, p + 1)) << p;
            ASSERT_TRUE(p > 1 || positions.Prev() == PlaybackStep{}) << "at 1";
        }
        EXPECT_TRUE(Gives(positions.Next(), false, last, last)) << "the slider moves only";
        EXPECT_EQ(positions.Next(), PlaybackStep{});
        for (std::int32_t p = 0; p < last; p += count / 37 + 1) {
            ASSERT_TRUE(Gives(positions.Scroll(p), true, p, p + 1)) << p;
            ASSERT_TRUE(p <= 1 || Gives(positions.Prev(), true, p - 1, p)) << p;
        }
        for (const std::int32_t speed : {1, 2, 4, 8, 16}) {
            const auto tick = [&] { return positions.Tick(static_cast<std::uint32_t>(speed)); };
            EXPECT_TRUE(Gives(positions.Stop(), true, 0, 1));
            std::int32_t p = 0;
            while ((p += speed) < last) ASSERT_TRUE(Gives(tick(), true, p, p + 1)) << p;
            EXPECT_TRUE(Gives(tick(), false, last, p - speed + 1));
            EXPECT_TRUE(Gives(tick(), false, last, p - speed + 1)) << "again and again";
        }
        positions.Scroll(count);
        positions.MarkStart();
        positions.Scroll(1);
        positions.MarkEnd();
        EXPECT_EQ(positions.Selection(), (PlaybackSelection{last, 1})) << "in any order";
    }
    positions.Open(0);  // a file whose newest block can't be read any more
    for (const PlaybackStep& step : {positions.Tick(16), positions.Stop(), positions.Scroll(5)}) {
        EXPECT_EQ(step, (PlaybackStep{PlaybackStep::Kind::kShow, 0}));
    }
}

TEST_F(PlaybackTest, OpensOnlyWhatCanBePlayed) {
    EXPECT_FALSE(Open()) << "missing";
    for (const std::int32_t count : {0, 1}) {
        Record(count);
        EXPECT_FALSE(Open()) << count;
        source.Close();
    }
    WriteWholeFile(path, std::string(100000, 'x'));
    EXPECT_FALSE(Open()) << "foreign";
    ASSERT_TRUE(Create(1048576) && AppendMany(3, kLength));
    EXPECT_FALSE(Open()) << "in use";
    Close();
    ASSERT_TRUE(Open());
    RecordFile other;
    EXPECT_FALSE(other.OpenForRead(path)) << "held while it is open";
    source.Close();
    EXPECT_EQ(pane.TakeNext(), nullptr);
    EXPECT_TRUE(other.OpenForRead(path));
    EXPECT_FALSE(source.StepForward() || source.StepBack() || source.ShowPosition(0));
    EXPECT_EQ(source.RecordCount(), 0U);
}

// What can't be read leaves the picture, and the file's current record has moved on.
TEST_F(PlaybackTest, GoesOnBehindARecordThatCannotBeRead) {
    Record(6);
    Patch(24 + 40 + 3 * 32 + 8, std::uint64_t{kFrameCapacity + 1});  // record 3's length
    ASSERT_TRUE(Open());
    EXPECT_TRUE(Gives(positions.Next(), true, 1, 2));
    EXPECT_TRUE(Gives(positions.Next(), false, 2, 2));
    EXPECT_TRUE(Gives(positions.Next(), true, 3, 4));
}

}  // namespace
}  // namespace marvolen::test
