// Programs that end in the middle of a write.

#include "tests/record/faulty_record_file.h"

#include <gtest/gtest.h>

namespace marvolen::test {
namespace {

constexpr std::uint64_t kMiB = 1048576;
constexpr std::uint64_t kBlock = 19240;

// Replays what a writer wrote, piece by piece, and looks at the file in between. Only the writes of
// the 24 and 40 bytes of a header are taken for indivisible.
class RecordCrash : public RecordFaults {
protected:
    // Calls check(number of records appended so far) for the file as it was within each write of
    // index or header, and now and then within a record.
    template <typename Check>
    void Replay(const std::vector<FaultyRecordFile::Piece>& trace, Check check) {
        std::string image;
        std::uint32_t appended = 0;
        int sinceCheck = 0;
        for (const FaultyRecordFile::Piece& piece : trace) {
            image.resize(std::max<std::size_t>(image.size(), piece.position + piece.bytes.size()));
            const bool record = piece.bytes.size() == length;
            const std::size_t step = record ? length / 2 : piece.bytes.size() < 100 ? 100 : 3001;
            for (std::size_t from = 0; from < piece.bytes.size(); from += step) {
                const std::size_t n = std::min(step, piece.bytes.size() - from);
                image.replace(piece.position + from, n, piece.bytes, from, n);
                if (record && ++sinceCheck % 97 != 0) continue;
                WriteImage(image);
                ASSERT_NO_FATAL_FAILURE(check(appended))
                    << appended << ' ' << piece.position << ' ' << from + n;
            }
            if (record) ++appended;
        }
    }
    void WriteImage(const std::string& image) {
        Crash();
        if (!std::filesystem::exists(path)) WriteWholeFile(path, "");
        Restore(image);
    }

    std::vector<FaultyRecordFile::Piece> Trace(std::uint64_t maxSize, int records) {
        Renew();
        disk->keepsTrace = true;
        EXPECT_TRUE(file->CreateNew(path, maxSize));
        EXPECT_TRUE(AppendMany(records, length));
        Close();
        return disk->trace;
    }

    std::uint32_t length = 5;  // of a record; no other write may be as short or long
};

TEST_F(RecordCrash, CostsTheNewestChunkAtMost) {
    const std::uint64_t chunk = kBlock + 600 * length;
    const std::uint64_t maxSize = 24 + 3 * chunk + chunk / 2 + 1;
    const auto trace = Trace(maxSize, 6 * 600 + 100);
    Replay(trace, [&](std::uint32_t appended) {
        const std::uint32_t flushed = appended == 0 ? 0 : (appended - 1) / 600 * 600;
        if (flushed == 0) return;  // nothing that could be lost yet
        ASSERT_TRUE(Sound());
        ASSERT_TRUE(Read());
        const std::uint32_t count = file->RecordCount();
        ASSERT_TRUE(file->SeekTo(count - 1));
        std::uint32_t newest = flushed - 1;
        if (appended == 3700 && Shows(3699, length)) newest = 3699;  // the closing flush
        if (newest != 3699 && Shows(flushed + 599, length)) newest = flushed + 599;
        ASSERT_GE(count, 600U);
        ASSERT_TRUE(HoldsRange(newest + 1 - count, newest, length));
        nextId = newest + 1;
        ASSERT_TRUE(Reopen(maxSize) && AppendMany(3, length));
        Close();
        ASSERT_TRUE(Sound());
        ASSERT_TRUE(Read() && file->SeekTo(file->RecordCount() - 1));
        ASSERT_TRUE(Shows(newest + 3, length));
    });
}

// The fourth chunk's header lies across the end, so it is linked to the fifth in two pieces; in the
// second round it was full in the file before that.
TEST_F(RecordCrash, WithinALinkInTwoPiecesCostsNoFile) {
    length = 45;
    const std::uint64_t threeChunks = 3 * (kBlock + 600 * length);
    for (std::uint64_t beforeEnd = 1; beforeEnd <= 40; ++beforeEnd) {
        SCOPED_TRACE(beforeEnd);
        const std::uint64_t maxSize = 24 + threeChunks + beforeEnd;
        for (const int session : {2900, 2400}) {
            nextId = 0;
            auto trace = Trace(maxSize, session);
            if (session == 2400) {
                ASSERT_TRUE(Reopen(maxSize));
                disk->keepsTrace = true;
                ASSERT_TRUE(AppendMany(500, length));
                Close();
                trace.insert(trace.end(), disk->trace.begin(), disk->trace.end());
            }
            Replay(trace, [&](std::uint32_t appended) {
                if (appended < 2400) return;
                ASSERT_TRUE(Sound());
                ASSERT_TRUE(Read());
                const std::uint32_t count = file->RecordCount();
                ASSERT_TRUE(file->SeekTo(count - 1));
                std::uint32_t newest = session == 2400 && appended > 2400 ? 2398 : 1799;
                while (newest < 2900 && !Shows(newest, length)) ++newest;
                ASSERT_TRUE(HoldsRange(newest + 1 - count, newest, length));
                nextId = newest + 1;
                ASSERT_TRUE(Reopen(maxSize) && AppendMany(3, length));
                Close();
                ASSERT_TRUE(Sound());
            });
        }
    }
}

TEST_F(RecordCrash, InARingOfLessThanAChunkLeavesAFileToGoOnWith) {
    const std::uint64_t maxSize = 24 + kBlock + 1000;
    const auto trace = Trace(maxSize, 500);
    int readable = 0;
    Replay(trace, [&](std::uint32_t) {
        const bool sound = Sound();
        const bool kept = Reopen(maxSize);
        ASSERT_EQ(kept, sound);
        ASSERT_TRUE(kept || Create(maxSize));
        ASSERT_TRUE(Append(length));
        Close();
        ASSERT_TRUE(Sound());
        readable += kept ? 1 : 0;
    });
    EXPECT_GT(readable, 5);
}

TEST_F(RecordCrash, AFileIsReadableFromItsFirstSecondOn) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(601, 10));
    Crash();
    EXPECT_EQ(Header().maxSize, kMiB);
    EXPECT_TRUE(HoldsRange(0, 599, 10));
}

}  // namespace
}  // namespace marvolen::test
