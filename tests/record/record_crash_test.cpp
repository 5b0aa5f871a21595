// Programs that end in the middle of a write.

#include "tests/record/faulty_record_file.h"

#include <gtest/gtest.h>

namespace marvolen::test {
namespace {

// Replays what a writer wrote, piece by piece, and looks at the file in between. Only the writes of
// the 24 and 40 bytes of a header are taken for indivisible.
class RecordCrash : public RecordFaults {
protected:
    static constexpr std::uint32_t kLength = 45;  // of a record; no other write is as long
    static constexpr std::uint64_t kChunk = kBlock + 600 * kLength;

    // Some sessions that append so many records each, with all that they write.
    std::string image;
    std::vector<FaultyRecordFile::Piece> Trace(std::uint64_t maxSize,
                                               std::initializer_list<int> sessions) {
        std::vector<FaultyRecordFile::Piece> trace;
        std::filesystem::remove(path);
        nextId = 0;
        for (const int records : sessions) {
            Renew();
            disk->keepsTrace = true;
            EXPECT_TRUE(file->OpenOrCreateNew(path, maxSize) && AppendMany(records, kLength));
            Close();
            trace.insert(trace.end(), disk->trace.begin(), disk->trace.end());
        }
        return trace;
    }

    // The records of full chunks are there, and of those that a session closed on; the file goes on
    // behind its newest one.
    void ExpectSurvivors(std::uint64_t maxSize, std::uint32_t atLeast, std::uint32_t appended) {
        Crash();
        Restore(image);
        ASSERT_TRUE(Sound());
        ASSERT_TRUE(Read());
        const std::uint32_t count = file->RecordCount();
        ASSERT_TRUE(file->SeekTo(count - 1));
        std::uint32_t newest = appended;
        while (newest > 0 && !Shows(newest, kLength)) --newest;
        ASSERT_GE(newest + 1, atLeast);
        ASSERT_TRUE(HoldsRange(newest + 1 - count, newest, kLength));
        nextId = newest + 1;
        ASSERT_TRUE(Reopen(maxSize) && AppendMany(3, kLength));
        Close();
        ASSERT_TRUE(Sound());
        ASSERT_TRUE(Read() && file->SeekTo(file->RecordCount() - 1));
        ASSERT_TRUE(Shows(newest + 3, kLength));
    }
};

// A header that lies across the end is linked in two pieces: the fourth chunk's in all rings but
// the first; where it was closed on before, it already counts 600.
TEST_F(RecordCrash, CostsTheNewestChunkAtMostAndNoFile) {
    for (const std::uint64_t beforeEnd : {kChunk / 2, 1UL, 17UL, 24UL, 33UL, 36UL}) {
        const std::uint64_t maxSize = 24 + 3 * kChunk + beforeEnd;
        for (const auto& sessions : {std::initializer_list<int>{3100}, {2400, 700}}) {
            SCOPED_TRACE(::testing::Message() << beforeEnd << ' ' << sessions.size());
            std::uint32_t appended = 0;
            image.clear();
            for (const FaultyRecordFile::Piece& piece : Trace(maxSize, sessions)) {
                image.resize(
                    std::max<std::size_t>(image.size(), piece.position + piece.bytes.size()));
                if (piece.bytes.size() == kLength) ++appended;
                const std::size_t step = piece.bytes.size() < 100 ? 100 : 7001;
                for (std::size_t from = 0; from < piece.bytes.size(); from += step) {
                    image.replace(piece.position + from, std::min(step, piece.bytes.size() - from),
                                  piece.bytes, from, step);
                    if (appended <= 1200 || (piece.bytes.size() == kLength && appended % 97 != 0)) {
                        continue;
                    }
                    const std::uint32_t flushed = (appended - 1) / 600 * 600;
                    ASSERT_NO_FATAL_FAILURE(ExpectSurvivors(maxSize, flushed, appended))
                        << appended << ' ' << piece.position << ' ' << from;
                }
            }
        }
    }
}

}  // namespace
}  // namespace marvolen::test
