// The record file's bytes, its ring, and the reader's ways through it.

#include "record/record_file.h"

#include "tests/record/record_fixture.h"

#include <gtest/gtest.h>

namespace marvolen::test {
namespace {

constexpr std::uint64_t kMiB = 1048576;
constexpr std::uint64_t kBlock = 19240;
constexpr std::uint64_t kFirstData = 24 + kBlock;

class RecordFileTest : public RecordFixture {
protected:
    std::string Bytes(std::uint64_t position, std::size_t length) {
        return ReadWholeFile(path).substr(position, length);
    }
    static std::string Picture(std::uint32_t id, std::uint32_t length) {
        return {reinterpret_cast<const char*>(BytesOf(id)), length};
    }
};

TEST_F(RecordFileTest, NewIsAHeaderAndAnEmptyBlock) {
    ASSERT_TRUE(Create(kMiB));
    EXPECT_EQ(Size(), kFirstData);
    Crash();
    using namespace std::string_literals;
    EXPECT_EQ(Bytes(0, 24), "RING\0\0\0\0\x18\0\0\0\0\0\0\0\0\0\x10\0\0\0\0\0"s);
    EXPECT_EQ(Bytes(24, 40), "CHUN\0\0\0\0\x18\0\0\0\0\0\0\0"s + std::string(24, '\0'));
    EXPECT_FALSE(Read()) << "no records";
    EXPECT_TRUE(Sound());
}

TEST_F(RecordFileTest, RecordsLieBackToBackBehindTheirIndex) {
    ASSERT_TRUE(Create(kMiB) && Append(1000) && Append(5) && Append(0));
    Close();
    EXPECT_EQ(Size(), kFirstData + 1005);
    EXPECT_EQ(Chunk(24).count, 3U);
    EXPECT_EQ(Entry(24, 0).pos, 19264U);
    EXPECT_EQ(Entry(24, 1).pos, 20264U);
    EXPECT_EQ(Entry(24, 1).length, 5U);
    EXPECT_EQ(Entry(24, 2).pos, 20269U);
    EXPECT_EQ(Entry(24, 2).length, 0U);
    const SYSTEMTIME stamp = StampOf(1);
    EXPECT_EQ(Bytes(24 + 40 + 32 + 16, 16), std::string(reinterpret_cast<const char*>(&stamp), 16));
    EXPECT_EQ(Bytes(19264, 1005), Picture(0, 1000) + Picture(1, 5));
    EXPECT_TRUE(HoldsExactly({{0, 1000}, {1, 5}, {2, 0}}));
}

TEST_F(RecordFileTest, The601stRecordBeginsAChunk) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(600, 10));
    EXPECT_EQ(Chunk(24).count, 0U) << "flushed when full or closed";
    ASSERT_TRUE(Append(10));
    const std::uint64_t second = kFirstData + 6000;
    EXPECT_EQ(Chunk(24).count, 600U);
    EXPECT_EQ(Chunk(24).next, second);
    EXPECT_EQ(Chunk(second).self, second);
    EXPECT_EQ(Chunk(second).prev, 24U);
    EXPECT_EQ(Chunk(second).next, 0U);
    EXPECT_EQ(Chunk(second).count, 0U);
    ASSERT_TRUE(AppendMany(4, 10));
    Close();
    EXPECT_EQ(Chunk(second).count, 5U);
    EXPECT_EQ(Entry(second, 0).pos, second + kBlock);
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsRange(0, 604, 10));
}

TEST_F(RecordFileTest, FrameAcrossTheEndLiesInTwoPieces) {
    const std::uint64_t second = 24 + kBlock + 600;
    const std::uint64_t maxSize = second + kBlock + 5000;
    ASSERT_TRUE(Create(maxSize) && AppendMany(600, 1) && Append(4000) && Append(3000));
    Close();
    EXPECT_EQ(Size(), maxSize);
    EXPECT_EQ(Header().head, second);
    EXPECT_EQ(Entry(second, 1).pos, maxSize - 1000);
    EXPECT_EQ(Bytes(maxSize - 1000, 1000) + Bytes(24, 2000), Picture(601, 3000));
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsExactly({{600, 4000}, {601, 3000}}));
}

TEST_F(RecordFileTest, BlockAcrossTheEndLiesInTwoPieces) {
    const std::uint64_t second = 24 + kBlock + 6000;
    const std::uint64_t maxSize = second + kBlock - 100;
    ASSERT_TRUE(Create(maxSize) && AppendMany(602, 10));
    Close();
    EXPECT_EQ(Header().head, second);
    EXPECT_EQ(Chunk(second).count, 2U);
    EXPECT_EQ(Entry(second, 1).pos, 24 + 100 + 10);
    EXPECT_EQ(Bytes(24 + 100, 20), Picture(600, 10) + Picture(601, 10));
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsRange(600, 601, 10));
    ASSERT_TRUE(Reopen(2 * maxSize) && Append(10)) << "its block still turns at the old maximum";
    Close();
    EXPECT_EQ(Size(), maxSize);
    EXPECT_TRUE(HoldsRange(600, 602, 10));
}

TEST_F(RecordFileTest, WhatEndsAtTheMaximumIsFollowedAtTheStart) {
    // Two chunks of empty records leave 20 bytes, which the third fills exactly.
    ASSERT_TRUE(Create(24 + 2 * kBlock + 20) && AppendMany(1201, 0));
    Close();
    ASSERT_EQ(Header().head, 24 + kBlock)
        << "the block that didn't fit took the oldest chunk's place";
    EXPECT_TRUE(Sound());

    ASSERT_TRUE(Create(kFirstData + 1000) && Append(600) && Append(400));
    Close();
    EXPECT_EQ(Size(), kFirstData + 1000);
    ASSERT_TRUE(Reopen(kFirstData + 1000) && Append(1));
    Close();
    EXPECT_EQ(Header().head, kFirstData + 1000) << "the maximum stands for the ring's start";
    EXPECT_EQ(Peek<ChunkHeader>(24).self, kFirstData + 1000);
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsExactly({{nextId - 1, 1}}));
}

TEST_F(RecordFileTest, AChunkAtTheMaximumIsGivenUpLikeAnyOther) {
    // The fourth chunk begins at the ring's very end, which is its start.
    const std::uint64_t maxSize = 24 + 3 * (kBlock + 600);
    ASSERT_TRUE(Create(maxSize) && AppendMany(1801, 1));
    EXPECT_EQ(Header().head, 24 + (kBlock + 600));
    EXPECT_EQ(Chunk(24).self, maxSize);
    ASSERT_TRUE(AppendMany(1200, 1));
    EXPECT_EQ(Header().head, maxSize);
    ASSERT_TRUE(AppendMany(600, 1));
    EXPECT_EQ(Header().head, 24 + (kBlock + 600));
    Close();
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsRange(2400, 3600, 1));
}

TEST_F(RecordFileTest, OldestChunkIsGivenUpAsAWhole) {
    // Room for two chunks of 600 records and some.
    ASSERT_TRUE(Create(24 + 2 * (kBlock + 6000) + 5000) && AppendMany(1200, 10));
    EXPECT_EQ(Header().head, 24U);
    ASSERT_TRUE(Append(10));
    const std::uint64_t second = 24 + kBlock + 6000;
    EXPECT_EQ(Header().head, second) << "in the file before the oldest chunk's bytes are gone";
    Close();
    EXPECT_EQ(Size(), 24 + 2 * (kBlock + 6000) + 5000);
    EXPECT_EQ(Chunk(second).prev, 24U);
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsRange(600, 1200, 10));
}

TEST_F(RecordFileTest, OneFrameGivesUpEveryChunkItCovers) {
    // Ten chunks of empty records side by side; a long frame behind them covers several.
    ASSERT_TRUE(Create(24 + 12 * kBlock) && AppendMany(12 * 600, 0));
    ASSERT_TRUE(Append(0)) << "the thirteenth chunk takes the first one's place";
    EXPECT_EQ(Header().head, 24 + kBlock);
    ASSERT_TRUE(Append(3 * kBlock + 1));
    EXPECT_EQ(Header().head, 24 + 5 * kBlock);
    Close();
    EXPECT_TRUE(Sound());
    ASSERT_TRUE(Read());
    EXPECT_EQ(file->RecordCount(), 7 * 600U + 2);
}

TEST_F(RecordFileTest, FrameTooLargeForTheRingHarmsNothing) {
    ASSERT_TRUE(Create(kFirstData + 1000) && Append(300));
    EXPECT_FALSE(Append(1001));
    ASSERT_TRUE(Append(700));
    Close();
    EXPECT_TRUE(HoldsExactly({{0, 300}, {2, 700}}));
    ASSERT_TRUE(Reopen(kFirstData + 1000) && Append(1000)) << "the largest that fits";
    Close();
    EXPECT_TRUE(HoldsExactly({{3, 1000}}));
}

TEST_F(RecordFileTest, FrameWithoutATimeIsNoRecord) {
    ASSERT_TRUE(Create(kMiB));
    const FramePtr frame = pool.Acquire();
    frame->SetLength(10);
    EXPECT_FALSE(file->WriteFrame(*frame));
    Close();
    EXPECT_FALSE(file->WriteFrame(*frame));
    EXPECT_EQ(Chunk(24).count, 0U);
}

TEST_F(RecordFileTest, AHeadThatCannotBeReadLeavesTheNewestChunkOnly) {
    const std::uint64_t second = 24 + kBlock + 600;
    for (const auto& [position, value] : {std::pair{std::uint64_t{24}, 0U},
                                          {24 + 16, 0U},
                                          {24 + 16, 99U},
                                          {24 + 16, 24U},
                                          {second, 0U}}) {
        nextId = 0;
        ASSERT_TRUE(Create(24 + 3 * (kBlock + 600)) && AppendMany(3 * 600, 1));
        Patch(position, value);
        ASSERT_TRUE(AppendMany(100, 1));
        Close();
        EXPECT_EQ(Header().head, 24 + 2 * (kBlock + 600)) << position;
        EXPECT_TRUE(Sound());
        EXPECT_TRUE(HoldsRange(1200, 1899, 1));
    }
}

TEST_F(RecordFileTest, RecordsAreFoundByNumber) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(605, 7));
    Close();
    ASSERT_TRUE(Read());
    EXPECT_EQ(file->RecordCount(), 605U);
    EXPECT_TRUE(Shows(0, 7));
    EXPECT_FALSE(file->StepBack());
    ASSERT_TRUE(file->SeekTo(600));
    EXPECT_TRUE(Shows(600, 7));
    ASSERT_TRUE(file->StepBack());
    EXPECT_TRUE(Shows(599, 7));
    ASSERT_TRUE(file->StepForward() && file->StepForward());
    EXPECT_TRUE(Shows(601, 7));
    ASSERT_TRUE(file->SeekTo(604));
    EXPECT_FALSE(file->StepForward());
    EXPECT_FALSE(file->SeekTo(605));
    EXPECT_FALSE(file->SeekTo(1200));
    EXPECT_FALSE(file->SeekTo(0xFFFFFFFF));
    EXPECT_TRUE(Shows(604, 7));
    file->CloseReader();
    EXPECT_EQ(file->RecordCount(), 0U);
    EXPECT_FALSE(file->SeekTo(0));
    EXPECT_FALSE(Shows(604, 7));
}

TEST_F(RecordFileTest, AFailedStepStaysWhereItWas) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(1200, 7) && Append(7));
    Crash();
    ASSERT_TRUE(Read());
    EXPECT_EQ(file->RecordCount(), 1200U) << "the third chunk was never flushed with records";
    ASSERT_TRUE(file->SeekTo(1199));
    EXPECT_FALSE(file->StepForward());
    EXPECT_TRUE(Shows(1199, 7));
    // The second chunk is overwritten after the chain was walked.
    ASSERT_TRUE(file->SeekTo(599));
    Patch(24 + kBlock + 4200 + 8, std::uint64_t{24});
    EXPECT_FALSE(file->StepForward());
    EXPECT_FALSE(file->SeekTo(700));
    EXPECT_TRUE(Shows(599, 7));
}

TEST_F(RecordFileTest, AClosedFileHasNoRecordsToStepTo) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(700, 10));
    Close();
    ASSERT_TRUE(Read() && file->SeekTo(300));
    file->CloseReader();
    EXPECT_FALSE(file->StepForward() || file->StepBack() || file->SeekTo(0));
    ASSERT_TRUE(file->OpenForRead(path) && file->SeekTo(300));
    EXPECT_FALSE(file->OpenForRead("none"));
    EXPECT_FALSE(file->StepForward() || file->StepBack() || file->SeekTo(0));
}

TEST_F(RecordFileTest, ARecordLongerThanTheFrameIsLeftOut) {
    ASSERT_TRUE(Create(kMiB) && Append(1000) && Append(1001) && Append(500));
    Close();
    FramePool small;
    ASSERT_TRUE(small.Init(1000, 1) && Read());
    const FramePtr frame = small.Acquire();
    EXPECT_TRUE(file->ReadRecord(*frame));
    EXPECT_TRUE(file->StepForward());
    EXPECT_FALSE(file->ReadRecord(*frame));
    EXPECT_TRUE(file->StepForward() && file->ReadRecord(*frame));
    EXPECT_TRUE(Holds(*frame, {2, 500}));
}

class CountingRecordFile : public RecordFile {
public:
    bool Read(void* buf, std::uint32_t n, std::uint32_t* got) override {
        ++reads;
        bytes += n;
        return RecordFile::Read(buf, n, got);
    }
    int reads = 0;
    std::uint64_t bytes = 0;
};

class RecordReadCost : public RecordFileTest {
protected:
    std::unique_ptr<RecordFile> NewFile() override {
        auto made = std::make_unique<CountingRecordFile>();
        counts = made.get();
        return made;
    }
    // The reads and bytes that making a record current and reading it has cost.
    std::pair<int, std::uint64_t> CostOf(bool moved) {
        EXPECT_TRUE(moved);
        const FramePtr frame = pool.Acquire();
        EXPECT_TRUE(file->ReadRecord(*frame));
        const std::pair cost{counts->reads, counts->bytes};
        counts->reads = 0;
        counts->bytes = 0;
        return cost;
    }
    CountingRecordFile* counts = nullptr;
};

TEST_F(RecordReadCost, IsTheRecordAndAtMostOneBlock) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(1500, 100));
    Close();
    ASSERT_TRUE(Read());
    EXPECT_EQ(counts->reads, 5) << "ring header, three chunk headers, one block";
    counts->reads = 0;
    counts->bytes = 0;
    const std::pair record{1, std::uint64_t{100}};
    const std::pair recordAndBlock{2, 100 + kBlock};
    EXPECT_EQ(CostOf(file->StepForward()), record);
    EXPECT_EQ(CostOf(file->SeekTo(599)), record);
    EXPECT_EQ(CostOf(file->StepForward()), recordAndBlock);
    EXPECT_EQ(CostOf(file->StepBack()), recordAndBlock);
    EXPECT_EQ(CostOf(file->StepBack()), record);
    EXPECT_EQ(CostOf(file->SeekTo(1499)), recordAndBlock);
    EXPECT_EQ(CostOf(file->SeekTo(1200)), record);
}

}  // namespace
}  // namespace marvolen::test
