// Programs that end in the middle of a write.

#include "tests/record/record_fixture.h"

#include <gtest/gtest.h>

namespace marvolen::test {
namespace {

// Replays what a writer wrote, piece by piece, and looks at the file in between. Only the writes of
// the 24 and 40 bytes of a header are taken for indivisible.
class RecordCrash : public RecordFixture {
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
            file->keepsTrace = true;
            EXPECT_TRUE(file->OpenOrCreateNew(path, maxSize) && AppendMany(records, kLength));
            Close();
            trace.insert(trace.end(), file->trace.begin(), file->trace.end());
        }
        return trace;
    }

    // What was appended is there but for a chunk and the record being written, at most, and the
    // file goes on behind it.
    void ExpectSurvivors(std::uint64_t maxSize, std::uint32_t appended) {
        Crash();
        Restore(image);
        ASSERT_TRUE(Sound() && Read());
        std::vector<TestRecord> taken;
        for (std::uint32_t id = 0; id <= appended; ++id) taken.push_back({id, kLength});
        ASSERT_NO_FATAL_FAILURE(ExpectSurvivorsOf(taken, 601));
        nextId = 100000;
        ASSERT_TRUE(Reopen(maxSize) && AppendMany(3, kLength));
        Close();
        ASSERT_TRUE(Sound() && Read() && file->SeekTo(file->RecordCount() - 1));
        ASSERT_TRUE(Shows({nextId - 1, kLength}));
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
                    if (appended <= 1790 || (piece.bytes.size() == kLength && appended % 97 != 0)) {
                        continue;
                    }
                    ASSERT_NO_FATAL_FAILURE(ExpectSurvivors(maxSize, appended))
                        << appended << ' ' << piece.position << ' ' << from;
                }
            }
        }
    }
}

}  // namespace
}  // namespace marvolen::test
