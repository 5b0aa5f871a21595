// Record files that were cut short or changed.

#include "record/record_file.h"
#include "tests/record/record_fixture.h"

#include <gtest/gtest.h>

namespace marvolen::test {
namespace {

constexpr std::uint64_t kMiB = 1048576;
constexpr std::uint64_t kBlock = 19240;
constexpr std::uint64_t kChunkOf10 = kBlock + 6000;  // 600 records of 10 bytes

// Cuts a file of records of 10 bytes, byte by byte near its end and near the ends of its blocks.
class RecordCut : public RecordFixture {
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
class RecordDamage : public RecordFixture {
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
