// Reopening record files: other maxima, foreign files, files that can't be had.

#include "record/record_file.h"
#include "tests/record/record_fixture.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace marvolen::test {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kMiB = 1048576;
constexpr std::uint64_t kBlock = 19240;
constexpr std::uint64_t kChunkOf10 = kBlock + 6000;  // 600 records of 10 bytes

class RecordReopen : public RecordFixture {};

TEST_F(RecordReopen, GoesOnBehindTheNewestRecord) {
    ASSERT_TRUE(Create(kMiB));
    Close();
    for (int session = 0; session < 3; ++session) {
        ASSERT_TRUE(Reopen(kMiB) && AppendMany(300, 10));
        Close();
    }
    EXPECT_EQ(Chunk(24).count, 600U);
    EXPECT_EQ(Entry(24, 300).pos, 24 + kBlock + 3000);
    EXPECT_EQ(Chunk(24 + kChunkOf10).count, 300U);
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsRange(0, 899, 10));
}

TEST_F(RecordReopen, AfterACrashTheRecordsOfFullChunksAreThere) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(1300, 10));
    Crash();
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsRange(0, 1199, 10));
    nextId = 1200;
    ASSERT_TRUE(Reopen(kMiB) && Append(10)) << "at the empty chunk's first data byte";
    Close();
    EXPECT_EQ(Entry(24 + 2 * kChunkOf10, 0).pos, 24 + 2 * kChunkOf10 + kBlock);
    EXPECT_TRUE(HoldsRange(0, 1200, 10));
}

TEST_F(RecordReopen, ALargerMaximumLetsAWrappedRingGrowInPlace) {
    const std::uint64_t small = 24 + 3 * kChunkOf10 + 3000;
    ASSERT_TRUE(Create(small) && AppendMany(2000, 10));
    Close();
    ASSERT_EQ(Header().head, 24 + kChunkOf10);
    ASSERT_TRUE(Reopen(kMiB));
    EXPECT_EQ(Header().maxSize, kMiB) << "in the file at once";
    Crash();
    EXPECT_TRUE(HoldsRange(600, 1999, 10)) << "readable though it turns before its maximum";
    // Twice, so that the second time the ring still turns where its file ends.
    ASSERT_TRUE(Reopen(2 * kMiB) && AppendMany(100, 10));
    Close();
    EXPECT_EQ(Size(), small);
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsRange(600, 2099, 10));
    ASSERT_TRUE(Reopen(2 * kMiB) && AppendMany(10000, 10));
    Close();
    EXPECT_GT(Size(), small);
    EXPECT_TRUE(Sound());
    ASSERT_TRUE(Read());
    EXPECT_GT(file->RecordCount(), 9000U);
}

TEST_F(RecordReopen, ASmallerMaximumAboveTheWholeChainKeepsIt) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(1300, 10));
    Close();
    const std::uint64_t end = Size();
    ASSERT_TRUE(Reopen(end)) << "exactly";
    EXPECT_EQ(Header().maxSize, end);
    Close();
    EXPECT_TRUE(HoldsRange(0, 1299, 10));
    ASSERT_TRUE(Reopen(end) && Append(10));
    Close();
    EXPECT_EQ(Size(), end);
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsRange(600, 1300, 10));
}

TEST_F(RecordReopen, ASmallerMaximumKeepsTheNewestChunksBelowIt) {
    // Wrapped: chunks 1 and 2 up there, 3 across the end, 4 and 5 at the start.
    const std::uint64_t large = 24 + 5 * kChunkOf10 + kBlock / 2;
    ASSERT_TRUE(Create(large) && AppendMany(8 * 600 + 300, 10));
    Close();
    ASSERT_TRUE(Sound());
    const std::uint64_t second = Header().head;
    std::uint64_t newest = second;
    while (Chunk(newest).next != 0) newest = Chunk(newest).next;
    const std::uint64_t end = newest + kBlock + 3000;
    ASSERT_LT(end, second) << "wrapped";
    ASSERT_TRUE(Reopen(end + 100));
    Close();
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsRange(3600, 5099, 10)) << "what lay at the start";
    ASSERT_TRUE(Reopen(end + 100) && AppendMany(700, 10));
    Close();
    EXPECT_EQ(Size(), end + 100);
    EXPECT_TRUE(Sound());
}

TEST_F(RecordReopen, ASmallerMaximumBelowTheNewestChunkKeepsTheOnesBefore) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(3 * 600, 10));
    Close();
    ASSERT_TRUE(Reopen(24 + 2 * kChunkOf10 + 100));
    Crash();
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsRange(0, 1199, 10));
    nextId = 1200;
    ASSERT_TRUE(Reopen(24 + 2 * kChunkOf10 + 100) && AppendMany(50, 10));
    Close();
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsRange(600, 1249, 10));
    EXPECT_FALSE(Reopen(24 + kChunkOf10 - 1)) << "nothing lies below";
}

TEST_F(RecordReopen, AShortIndexOfAChunkThatBecomesTheNewestLeavesNoGap) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(3 * 600, 10));
    Close();
    Patch(24 + kChunkOf10 + 32, std::uint32_t{500});
    nextId = 1100;
    ASSERT_TRUE(Reopen(24 + 2 * kChunkOf10 + 100) && Append(10));
    Close();
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsRange(0, 1100, 10));
}

TEST_F(RecordReopen, ARefusedMaximumLeavesTheRecordingUntouched) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(700, 10));
    Close();
    const std::string before = ReadWholeFile(path);
    for (const std::uint64_t size : {0U, 23U, 24U, 19263U}) {
        EXPECT_FALSE(RecordFile::AcceptsMaxSize(size));
        EXPECT_FALSE(Reopen(size));
        EXPECT_FALSE(Create(size));
        EXPECT_FALSE(file->IsOpen());
    }
    EXPECT_EQ(ReadWholeFile(path), before);
    EXPECT_TRUE(Create(kSmallestRing) && AppendMany(1900, 0)) << "just a block";
    EXPECT_FALSE(Append(1));
    Close();
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(Create(0xFFFFFFFFULL * kMiB) && Append(10)) << "a maximum of -1 MiB is a large one";
    Close();
    EXPECT_TRUE(Reopen(0xFFFFFFFFULL * kMiB));
}

TEST_F(RecordReopen, AFileInUseIsLeftAlone) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(700, 10));
    {
        RecordFile other;
        EXPECT_FALSE(other.OpenForRead(path));
        EXPECT_FALSE(other.OpenAppend(path, kMiB));
        EXPECT_FALSE(other.CreateNew(path, kMiB));
        RecordScan scan;
        EXPECT_FALSE(scan.Open(path));
        EXPECT_EQ(scan.OpenError(), FileOpenError::kInUse);
    }
    ASSERT_TRUE(Append(10));
    Close();
    EXPECT_TRUE(HoldsRange(0, 700, 10));
}

TEST_F(RecordReopen, OpeningAnOpenFileClosesItFirst) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(3, 10));
    EXPECT_TRUE(file->CreateNew("other.dbt", kMiB));
    EXPECT_TRUE(file->OpenAppend(path, kMiB) && AppendMany(2, 10));
    EXPECT_TRUE(file->OpenForRead(path));
    EXPECT_EQ(file->RecordCount(), 5U);
    EXPECT_TRUE(file->OpenOrCreateNew(path, kMiB) && Append(10));
    Close();
    EXPECT_TRUE(HoldsRange(0, 5, 10));
}

TEST_F(RecordReopen, OnlyAFileWithoutARecordingIsReplaced) {
    Renew();
    ASSERT_TRUE(file->OpenOrCreateNew(path, kMiB)) << "missing";
    EXPECT_EQ(Size(), kSmallestRing);
    ASSERT_TRUE(AppendMany(700, 10));
    EXPECT_TRUE(file->OpenOrCreateNew(path, kMiB) && Append(10));
    Close();
    ASSERT_TRUE(HoldsRange(0, 700, 10));
    EXPECT_FALSE(file->OpenOrCreateNew(path, 24));
    ASSERT_TRUE(HoldsRange(0, 700, 10));
    const std::string good = ReadWholeFile(path);
    std::string damaged = good;
    damaged[24] = 'X';
    damaged[4] = 'Y';
    for (const std::string& bytes : {std::string(), std::string("RI"), std::string(50000, 'R'),
                                     good.substr(0, 100), damaged}) {
        WriteWholeFile(path, bytes);
        ASSERT_TRUE(file->OpenOrCreateNew(path, kMiB));
        EXPECT_EQ(Header().reserved, 0U);
        EXPECT_EQ(Size(), kSmallestRing);
        nextId = 0;
        ASSERT_TRUE(Append(10));
        Close();
        EXPECT_TRUE(HoldsRange(0, 0, 10));
    }
    WriteWholeFile(path, good);
    EXPECT_TRUE(file->OpenOrCreateNew(path, kSmallestRing)) << "no chunk lies below";
    EXPECT_EQ(Size(), kSmallestRing);
}

TEST_F(RecordReopen, WhatIsNoFileCannotBeOpened) {
    fs::create_directory("folder");
    for (const char* name : {"", "folder", "missing/file", "/dev/full"}) {
        RecordFile other;
        EXPECT_FALSE(other.OpenForRead(name)) << name;
        EXPECT_FALSE(other.OpenAppend(name, kMiB)) << name;
        EXPECT_FALSE(other.CreateNew(name, kMiB)) << name;
        EXPECT_FALSE(other.IsOpen());
    }
    EXPECT_FALSE(Reopen(kMiB)) << "no such file yet";
    EXPECT_FALSE(fs::exists(path));
    EXPECT_TRUE(file->CreateNew(path, kMiB)) << "the same object goes on";
}

TEST_F(RecordReopen, AForeignFileIsReplacedOnlyByCreateNew) {
    const std::string foreign(50000, 'R');
    WriteWholeFile(path, foreign);
    EXPECT_FALSE(Read());
    EXPECT_FALSE(Reopen(kMiB));
    EXPECT_EQ(ReadWholeFile(path), foreign);
    ASSERT_TRUE(file->CreateNew(path, kMiB));
    EXPECT_EQ(Size(), kSmallestRing);
}

}  // namespace
}  // namespace marvolen::test
