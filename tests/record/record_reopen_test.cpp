// Reopening record files: other maxima, damaged and foreign files, files that can't be had.

#include "record/record_file.h"
#include "tests/record/record_fixture.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

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

// Cuts a file of records of 10 bytes, byte by byte near its end and near the ends of its blocks.
class RecordCut : public RecordReopen {
protected:
    void Make(std::uint64_t maxSize, int records) {
        ASSERT_TRUE(Create(maxSize) && AppendMany(records, 10));
        Close();
        ASSERT_TRUE(Read());
        count = file->RecordCount();
        first = nextId - count;
        file->CloseReader();
        good = ReadWholeFile(path);
    }
    // Every record that is read is the right one; returns how many are, 0 for a refused file.
    std::uint32_t Readable() {
        if (!Read()) return 0;
        EXPECT_EQ(file->RecordCount(), count);
        std::uint32_t readable = 0;
        const FramePtr frame = pool.Acquire();
        for (std::uint32_t k = 0; k < count; ++k) {
            if (!file->SeekTo(k) || !file->ReadRecord(*frame)) continue;
            EXPECT_TRUE(Holds(*frame, {first + k, 10})) << "record " << k;
            ++readable;
        }
        file->CloseReader();
        return readable;
    }
    std::vector<std::uint64_t> Sizes() const {
        std::vector<std::uint64_t> sizes;
        for (std::uint64_t size = good.size(); size > 0;
             size -= size + 120 > good.size() || size < 200 ? 1 : 97) {
            sizes.push_back(size);
        }
        return sizes;
    }

    std::string good;
    std::uint32_t count = 0;
    std::uint32_t first = 0;
};

TEST_F(RecordCut, AFileGivesAllRecordsBeforeTheCutAndGoesOn) {
    for (const int records : {50, 610}) {
        nextId = 0;
        ASSERT_NO_FATAL_FAILURE(Make(kMiB, records));
        const std::uint64_t newest = records > 600 ? 24 + kChunkOf10 : 24;
        const std::uint32_t before = records > 600 ? 600 : 0;
        for (const std::uint64_t size : Sizes()) {
            SCOPED_TRACE(size);
            Restore(good);
            Cut(size);
            const bool usable = size >= newest + kBlock;
            const auto kept =
                static_cast<std::uint32_t>(before + (usable ? (size - newest - kBlock) / 10 : 0));
            ASSERT_EQ(Readable(), usable ? kept : 0);
            ASSERT_EQ(Reopen(kMiB), usable);
            if (!usable) continue;
            nextId = kept;
            ASSERT_TRUE(Append(10));
            Close();
            ASSERT_TRUE(Sound());
            ASSERT_TRUE(HoldsRange(0, kept, 10));
        }
    }
}

TEST_F(RecordCut, AWrappedFileGivesNoWrongRecords) {
    // The ring's end lies within a record in the middle of a chunk, or within the last one of it.
    for (const std::uint64_t spare : {kBlock + 3005, kBlock + 5999}) {
        nextId = 0;
        ASSERT_NO_FATAL_FAILURE(Make(24 + 2 * kChunkOf10 + spare, 2000));
        ASSERT_NE(Header().head, 24U) << "wrapped";
        ASSERT_EQ(Readable(), count);
        for (const std::uint64_t size : Sizes()) {
            SCOPED_TRACE(size);
            Restore(good);
            Cut(size);
            const std::uint32_t readable = Readable();
            if (size == good.size()) continue;
            ASSERT_LT(readable, count);
            if (good.size() - size < 100) {
                ASSERT_GT(readable, count - 15);
            }
        }
    }
}

// Opens a damaged file both ways. Whatever happens, it ends, stays within the ring, and what is
// appended afterwards is read back.
class RecordDamage : public RecordReopen {
protected:
    void UseDamaged(std::uint32_t nearRecord) {
        if (Read()) {
            const FramePtr frame = pool.Acquire();
            const std::uint32_t count = file->RecordCount();
            for (const std::uint32_t index : {0U, nearRecord, 599U, 600U, count - 1}) {
                if (!file->SeekTo(index)) continue;
                if (file->ReadRecord(*frame)) {
                    ASSERT_LE(frame->Length(), frame->Capacity());
                }
                if (file->StepForward()) file->StepBack();
            }
            file->CloseReader();
        }
        if (!Reopen(kMaxSize)) return;
        const std::uint32_t first = nextId;
        if (AppendMany(3, 1000)) {
            Close();
            ASSERT_LE(Size(), kMaxSize);
            ASSERT_TRUE(Reopen(kMaxSize));
            Close();
            if (!Read()) return;  // the oldest chunk is damaged, and still there
            ASSERT_TRUE(file->SeekTo(file->RecordCount() - 1));
            ASSERT_TRUE(Shows(first + 2, 1000));
        }
    }

    // Of the file of 605 records of 4 bytes.
    static bool IsWithoutMeaning(std::uint64_t position) {
        const auto within = [&](std::uint64_t from, std::uint64_t n) {
            return position >= from && position < from + n;
        };
        return within(4, 4) || within(24 + 4, 4) || within(24 + 24, 8) || within(24 + 36, 4) ||
               within(kSecond + 4, 4) || within(kSecond + 36, 4) ||
               within(kSecond + 40 + 5 * 32, 595 * 32);
    }
    // One entry is damaged: that costs its record at most.
    void ExpectOthers(std::uint32_t damaged) {
        ASSERT_TRUE(Read() || damaged == 0);
        if (damaged == 0) return;
        ASSERT_EQ(file->RecordCount(), 605U);
        for (const std::uint32_t id : {0U, damaged - 1, damaged + 1, 599U, 600U, 604U}) {
            if (id == damaged || id > 604) continue;
            ASSERT_TRUE(file->SeekTo(id) && Shows(id, 4)) << id;
        }
        file->CloseReader();
    }

    static constexpr std::uint64_t kMaxSize = 60000;
    static constexpr std::uint64_t kSecond = 24 + kBlock + 2400;
};

TEST_F(RecordDamage, OfEverySingleByteOfHeaderAndBlocksIsSurvived) {
    ASSERT_TRUE(Create(kMaxSize) && AppendMany(605, 4));
    Close();
    const std::string good = ReadWholeFile(path);
    const std::uint64_t second = kSecond;
    const auto damage = [&](std::uint64_t position, std::uint32_t nearRecord) {
        const bool header = position < 64 || (position >= second && position < second + 40);
        for (const unsigned flip : {0x01U, 0xFFU, 0x80U, 0x10U}) {
            std::string bytes = good;
            bytes[position] = static_cast<char>(static_cast<unsigned char>(bytes[position]) ^ flip);
            Restore(bytes);
            if (IsWithoutMeaning(position)) {
                ASSERT_TRUE(HoldsRange(0, 604, 4)) << position;
                ASSERT_TRUE(Reopen(kMaxSize)) << position;
                Close();
            } else if (!header) {
                ASSERT_NO_FATAL_FAILURE(ExpectOthers(nearRecord)) << position;
            }
            ASSERT_NO_FATAL_FAILURE(UseDamaged(nearRecord)) << position << ' ' << flip;
            if (!header) break;
        }
    };
    for (std::uint64_t k = 0; k < 24 + kBlock; ++k) {
        damage(k, static_cast<std::uint32_t>(k < 64 ? 0 : (k - 64) / 32));
    }
    for (std::uint64_t k = 0; k < kBlock; ++k) {
        const std::uint64_t entry = k < 40 ? 0 : (k - 40) / 32;
        damage(second + k, 600 + static_cast<std::uint32_t>(std::min<std::uint64_t>(entry, 4)));
    }
}

TEST_F(RecordDamage, OfAWholeFieldIsSurvived) {
    ASSERT_TRUE(Create(kMaxSize) && AppendMany(605, 4));
    Close();
    const std::string good = ReadWholeFile(path);
    const std::uint64_t second = 24 + kBlock + 2400;
    std::vector<std::uint64_t> fields = {8, 16};
    for (const std::uint64_t chunk : {std::uint64_t{24}, second}) {
        for (const std::uint64_t offset :
             {8U, 16U, 24U, 32U, 40U, 48U, 168U, 176U, 19208U, 19216U}) {
            fields.push_back(chunk + offset);
        }
    }
    for (const std::uint64_t field : fields) {
        for (const std::uint64_t value :
             {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{23}, std::uint64_t{24},
              std::uint64_t{25}, second - 1, second, second + 1, second + kBlock,
              std::uint64_t{good.size()}, std::uint64_t{601}, kMaxSize - 1, kMaxSize, kMaxSize + 1,
              2 * kMaxSize, std::uint64_t{1} << 62, std::uint64_t{1} << 63, ~std::uint64_t{0} - 24,
              ~std::uint64_t{0}}) {
            Restore(good);
            Patch(field, value);
            ASSERT_NO_FATAL_FAILURE(UseDamaged(604)) << field << ' ' << value;
        }
    }
}

TEST_F(RecordDamage, ChainsThatTurnBackAreRefused) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(1300, 4));
    Close();
    const std::string good = ReadWholeFile(path);
    const std::uint64_t second = 24 + kBlock + 2400;
    const std::uint64_t third = second + kBlock + 2400;
    for (const auto& [chunk, next] : {std::pair{third, std::uint64_t{24}},
                                      {third, second},
                                      {third, third},
                                      {second, second},
                                      {second, std::uint64_t{24}}}) {
        Restore(good);
        Patch(chunk + 16, next);
        EXPECT_FALSE(Read()) << chunk << ' ' << next;
        EXPECT_FALSE(Reopen(kMiB));
        EXPECT_FALSE(Sound());
    }
}

}  // namespace
}  // namespace marvolen::test
