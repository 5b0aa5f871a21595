// Reads and writes that fail.

#include "tests/record/record_fixture.h"

#include <gtest/gtest.h>
#include <random>

namespace marvolen::test {
namespace {

using RecordFaults = RecordFixture;

TEST_F(RecordFaults, AnErrorOnReopeningCostsNoRecording) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(1300, 10));
    Close();
    const std::string good = ReadWholeFile(path);
    // The header, three chunk headers, the newest block, the link to it, the block again, its
    // header.
    int reads = 1;
    for (;; ++reads) {
        Renew();
        file->readsBeforeFailure = reads;
        if (file->OpenOrCreateNew(path, kMiB)) break;
        EXPECT_FALSE(file->IsOpen());
        ASSERT_EQ(ReadWholeFile(path), good) << reads;
    }
    EXPECT_EQ(reads, 9);
    // What lies behind the ring can't be cut off before it grows.
    Crash();
    Cut(kMiB + 5000);
    Renew();
    file->failsSeekTo = kMiB;
    EXPECT_FALSE(file->OpenOrCreateNew(path, 2 * kMiB) || file->IsOpen());
    EXPECT_EQ(Size(), kMiB + 5000);
    file->failsSeekTo = FaultyRecordFile::kEndless;
    EXPECT_TRUE(file->OpenOrCreateNew(path, 2 * kMiB));
    Close();
    EXPECT_EQ(Size(), kMiB);
    EXPECT_TRUE(HoldsRange(0, 1299, 10));
    // Within the new header; in the entries, in the header of a chunk that becomes the newest.
    constexpr std::uint64_t kBelowNewest = 24 + 2 * (kBlock + 6000) + 100;
    for (const auto& [maxSize, room, kept, after] : {std::tuple{2 * kMiB, 10U, 1299U, 1299U},
                                                     {kBelowNewest, 100U, 1299U, 1199U},
                                                     {kBelowNewest, 19200U, 1299U, 1199U},
                                                     {kBelowNewest, 19240U + 4U, 1199U, 1199U}}) {
        Restore(good);
        Renew();
        file->room = room;
        EXPECT_FALSE(file->OpenOrCreateNew(path, maxSize) || file->IsOpen());
        EXPECT_TRUE(Sound() && HoldsRange(0, kept, 10)) << maxSize << ' ' << room;
        ASSERT_TRUE(Reopen(maxSize)) << "the next try";
        Close();
        EXPECT_TRUE(HoldsRange(0, after, 10));
    }
}

TEST_F(RecordFaults, AHalfWrittenBlockOverTheOldOneIsWrittenFirst) {
    for (const bool byFrame : {true, false}) {
        ASSERT_TRUE(Create(24 + kBlock + 1000) && Append(600));
        // The new block's first 400 bytes, the header with the new head, and some bytes from 24 on.
        file->room = 400 + 24 + 10;
        EXPECT_FALSE(Append(500));
        EXPECT_EQ(Header().head, 24 + kBlock + 600);
        EXPECT_FALSE(Append(500)) << "still no room";
        file->room = FaultyRecordFile::kEndless;
        Patch(Header().head, std::uint32_t{0});  // as if the disk had lost the first bytes too
        EXPECT_TRUE(!byFrame || Append(500));
        byFrame ? Crash() : Close();
        EXPECT_TRUE(Sound()) << "no record before its block";
    }
}

// Random failures, at every kind of write: what was taken is there, up to the newest, and nothing
// else is.
TEST_F(RecordFaults, FailedWritesCostTheirFramesOnly) {
    // Within the header, within the first block, within the header with the maximum.
    constexpr std::uint64_t kBeginnings[] = {0, 10, 24 + 100, 24 + 19240 + 10};
    std::mt19937 random(7);
    const auto any = [&](std::uint32_t below) {
        return static_cast<std::uint32_t>(random() % below);
    };
    for (const std::uint64_t maxSize : {20000U, 45000U, 70000U, 300000U}) {
        std::vector<TestRecord> taken;
        ASSERT_TRUE(Create(maxSize));
        for (int operation = 0; operation < 6000; ++operation) {
            if (any(40) == 0) file->room = any(2) == 0 ? any(300) : any(25000);
            const TestRecord record{nextId++, any(100)};
            if (AppendRecord(record)) taken.push_back(record);
            if (any(8) == 0) file->room = FaultyRecordFile::kEndless;
            file->failsHeader = any(10) == 0;
            file->stuck = any(50) == 0;
            if (any(500) != 0) continue;

            file->room = FaultyRecordFile::kEndless;
            file->failsHeader = file->stuck = false;
            taken.push_back({nextId++, 10});
            ASSERT_TRUE(AppendRecord(taken.back())) << "goes on as soon as the disk does";
            const bool crash = any(3) == 0;
            crash ? Crash() : Close();
            ASSERT_TRUE(Sound()) << operation;
            ASSERT_NO_FATAL_FAILURE(ExpectSurvivorsOf(taken, crash ? 600 : 0)) << operation;
            Renew();
            if (crash) {
                taken.clear();
                file->room = kBeginnings[any(4)];
                ASSERT_FALSE(file->CreateNew(path, maxSize) || file->IsOpen()) << operation;
                EXPECT_EQ(file->Trouble(), RecordTrouble::CannotOpen);
                file->room = FaultyRecordFile::kEndless;
            }
            ASSERT_TRUE(file->OpenOrCreateNew(path, maxSize)) << operation;
            EXPECT_EQ(file->Trouble(), RecordTrouble::None);
        }
    }
}

}  // namespace
}  // namespace marvolen::test
