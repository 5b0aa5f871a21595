// The record file's bytes, the reader's ways through it, and which files are opened and replaced.

#include "tests/record/record_fixture.h"

#include <gtest/gtest.h>
#include <sstream>

namespace marvolen::test {
namespace {

class RecordFileTest : public RecordFixture {
protected:
    // The bytes that the lines "00000010: 1800 0000 ..." of the format's document show.
    static std::vector<std::pair<std::size_t, std::string>> ShownBytes() {
        std::vector<std::pair<std::size_t, std::string>> lines;
        std::istringstream document(ReadWholeFile(MARVOLEN_RECORD_FORMAT_DOCUMENT));
        for (std::string line; std::getline(document, line);) {
            if (line.find(": ") != 8) continue;
            std::string bytes;
            for (std::size_t k = 10; k < 49; k += k % 5 == 2 ? 3 : 2) {
                bytes += static_cast<char>(std::stoi(line.substr(k, 2), nullptr, 16));
            }
            lines.emplace_back(std::stoul(line.substr(0, 8), nullptr, 16), bytes);
        }
        return lines;
    }
    // Appends what the document's example does, up to so many records.
    bool AppendAsShown(std::uint32_t records) {
        for (; nextId < records; ++nextId) {
            const auto second = static_cast<std::uint16_t>(nextId / 25);
            const auto millisecond = static_cast<std::uint16_t>(nextId % 25 * 40);
            const SYSTEMTIME stamp{2004, 2, 0, 29, 8, 15, second, millisecond};
            if (!AppendFrame(TestRecord{}.Bytes(), 1000, stamp)) return false;
        }
        return true;
    }
};

TEST_F(RecordFileTest, LooksAsItsDocumentShows) {
    const auto shown = ShownBytes();
    ASSERT_EQ(shown.size(), 8U + 5U);
    ASSERT_TRUE(Create(kMiB));
    EXPECT_EQ(Size(), 19264U);
    EXPECT_FALSE(Read()) << "no records";
    std::size_t line = 0;
    for (const auto& [records, size, lines] : {std::tuple{2U, 21264U, 8U}, {605U, 643504U, 5U}}) {
        ASSERT_TRUE(Reopen(kMiB) && AppendAsShown(records));
        Close();
        const std::string bytes = ReadWholeFile(path);
        EXPECT_EQ(bytes.size(), size);
        for (std::size_t last = line + lines; line < last; ++line) {
            EXPECT_EQ(bytes.substr(shown[line].first, 16), shown[line].second) << line;
        }
    }
    ASSERT_TRUE(Reopen(kMiB) && AppendAsShown(1010));
    EXPECT_EQ(Size(), 1048504U);
    EXPECT_EQ(Header().head, 24U);
    ASSERT_TRUE(AppendAsShown(1011));
    EXPECT_EQ(Header().head, 619264U) << "in the file before the oldest chunk's bytes are gone";
    Close();
    EXPECT_EQ(Size(), kMiB);
    EXPECT_EQ(Peek<IndexEntry>(619264 + 40 + 410 * 32).pos, 1048504U);
    EXPECT_TRUE(Read());
    EXPECT_EQ(file->RecordCount(), 411U);
}

TEST_F(RecordFileTest, RecordsAreFoundByNumberWithFewReads) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(605, 7));
    EXPECT_FALSE(file->WriteFrame(*pool.Acquire())) << "without a time it is no record";
    EXPECT_EQ(file->Trouble(), RecordTrouble::None);
    Close();
    EXPECT_FALSE(Append(7));
    ASSERT_TRUE(Read());
    EXPECT_EQ(file->RecordCount(), 605U);
    EXPECT_FALSE(file->StepBack());
    EXPECT_TRUE(Shows({0, 7}));
    EXPECT_TRUE(file->StepForward() && file->StepBack() && Shows({0, 7}));
    auto reads = [this, before = file->reads](bool moved, std::uint32_t id) mutable {
        EXPECT_TRUE(moved && Shows({id, 7})) << id;
        return file->reads - std::exchange(before, file->reads);
    };
    EXPECT_EQ(reads(file->SeekTo(599), 599), 1);
    EXPECT_EQ(reads(file->StepForward(), 600), 2) << "its block too";
    EXPECT_EQ(reads(file->StepBack(), 599), 2);
    EXPECT_EQ(reads(file->SeekTo(604), 604), 2);
    for (const std::uint32_t beyond : {605U, 1200U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(file->SeekTo(beyond) || file->StepForward());
    }
    EXPECT_TRUE(Shows({604, 7}));
    file->readsBeforeFailure = 1;
    EXPECT_FALSE(file->ReadRecord(*pool.Acquire()));
    ASSERT_TRUE(file->SeekTo(599));
    Patch(24 + kBlock + 4200 + 8, std::uint64_t{24});  // as if overwritten since
    EXPECT_FALSE(file->StepForward() || file->SeekTo(600));
    EXPECT_TRUE(Shows({599, 7})) << "a failed step stays where it was";
    FramePool small;
    ASSERT_TRUE(small.Init(6, 1));
    EXPECT_FALSE(file->ReadRecord(*small.Acquire())) << "longer than the frame";
    file->CloseReader();
    EXPECT_FALSE(file->StepForward() || file->StepBack() || file->SeekTo(0) || Shows({599, 7}));
    EXPECT_EQ(file->RecordCount(), 0U);
    ASSERT_TRUE(Read() && file->CreateNew("other.dbt", kMiB) && Append(7));
    EXPECT_FALSE(file->ReadRecord(*pool.Acquire())) << "forgets the file it read";
}

TEST_F(RecordFileTest, AHeadThatCannotBeReadLeavesTheNewestChunkOnly) {
    const std::uint64_t chunk = kBlock + 600;
    for (const auto& [position, value] : {std::pair{std::uint64_t{24}, 0U},
                                          {24 + 16, 0U},
                                          {24 + 16, 99U},
                                          {24 + 16, 24U},
                                          {24 + chunk, 0U}}) {
        nextId = 0;
        ASSERT_TRUE(Create(24 + 3 * chunk) && AppendMany(3 * 600, 1));
        Patch(position, value);
        ASSERT_TRUE(AppendMany(100, 1));
        Close();
        EXPECT_TRUE(Sound() && HoldsRange(1200, 1899, 1)) << position << ' ' << value;
    }
}

TEST_F(RecordFileTest, AFrameGivesUpEveryChunkItCovers) {
    ASSERT_TRUE(Create(24 + 8 * (kBlock + 600)) && AppendMany(5 * 600, 1) && Append(50000) &&
                Append(50000));
    Close();
    std::vector<TestRecord> left;
    while (left.size() < 602) left.push_back({static_cast<std::uint32_t>(2400 + left.size()), 1});
    left[600].length = left[601].length = 50000;
    EXPECT_TRUE(Sound() && HoldsExactly(left));
}

// Of a chunk that becomes the newest, and of the newest one whose end was cut off.
TEST_F(RecordFileTest, AShortIndexLeavesNoGap) {
    const std::uint64_t chunk = kBlock + 6000;
    ASSERT_TRUE(Create(kMiB) && AppendMany(3 * 600, 10));
    Close();
    Patch(24 + chunk + 32, std::uint32_t{500});
    Patch(24 + chunk + 40 + 500 * 32, std::uint64_t{0});
    nextId = 1100;
    ASSERT_TRUE(Reopen(24 + 2 * chunk + 100) && Append(10));
    Close();
    EXPECT_TRUE(Sound() && HoldsRange(0, 1100, 10));
    Cut(24 + chunk + kBlock + 3001);
    ASSERT_TRUE(Reopen(kMiB));
    Close();
    EXPECT_TRUE(Sound() && HoldsRange(0, 899, 10));
}

TEST_F(RecordFileTest, OnlyAFileWithoutARecordingIsReplaced) {
    Renew();
    ASSERT_TRUE(file->OpenOrCreateNew(path, kMiB)) << "missing";
    ASSERT_TRUE(AppendMany(1300, 10));
    RecordFile other;
    EXPECT_FALSE(other.OpenForRead(path) || other.OpenAppend(path, kMiB) ||
                 other.OpenOrCreateNew(path, kMiB) || other.CreateNew(path, kMiB));
    EXPECT_EQ(other.Trouble(), RecordTrouble::InUse);
    EXPECT_TRUE(file->CreateNew("other.dbt", kMiB)) << "closes the first one";
    EXPECT_TRUE(file->OpenOrCreateNew(path, kMiB) && Append(10));
    Close();
    for (const std::uint64_t size : {0U, 23U, 24U, 19263U}) {
        EXPECT_FALSE(Reopen(size) || Create(size) || file->OpenOrCreateNew(path, size));
        EXPECT_EQ(file->Trouble(), RecordTrouble::BadMaximum);
    }
    ASSERT_TRUE(HoldsRange(0, 1300, 10));
    const std::string good = ReadWholeFile(path);
    const auto damaged = [&good](std::uint64_t position, std::uint64_t value) {
        return good.substr(0, position) +
               std::string(reinterpret_cast<const char*>(&value), sizeof value) +
               good.substr(position + sizeof value);
    };
    const std::uint64_t second = 24 + kBlock + 6000;
    for (const std::string& bytes :
         {std::string(), std::string("RI"), std::string(50000, 'R'), good.substr(0, 100),
          damaged(24, 1), damaged(second + 16, second), damaged(2 * second - 24, 1)}) {
        WriteWholeFile(path, bytes);
        EXPECT_FALSE(Read() || Reopen(kMiB) || Sound());
        EXPECT_EQ(ReadWholeFile(path), bytes);
        if (bytes.size() > 4) Patch(4, 'Y');  // reserved
        ASSERT_TRUE(file->OpenOrCreateNew(path, kMiB));
        EXPECT_EQ(Header().reserved, 0U);
        EXPECT_EQ(Size(), kSmallestRing);
        nextId = 0;
        ASSERT_TRUE(Append(10));
        Close();
        EXPECT_TRUE(HoldsRange(0, 0, 10));
    }
    EXPECT_TRUE(Create(kSmallestRing) && AppendMany(1900, 0)) << "just a block";
    EXPECT_FALSE(Append(1));
    EXPECT_EQ(file->Trouble(), RecordTrouble::BadMaximum);
    ASSERT_TRUE(Create(24 + kBlock + 1000) && Append(600) && Append(500) && Append(500));
    Close();
    EXPECT_TRUE(Sound()) << "one chunk fills the ring";
    Cut(Size() + 1);
    EXPECT_FALSE(Sound());
    for (const char* name : {"", ".", "missing/file", "/dev/full"}) {
        EXPECT_FALSE(other.OpenAppend(name, kMiB) || other.CreateNew(name, kMiB)) << name;
        EXPECT_EQ(other.Trouble(), RecordTrouble::CannotOpen) << name;
    }
}

}  // namespace
}  // namespace marvolen::test
