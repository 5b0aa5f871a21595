// Programs that end in the middle of a write.

#include "tests/record/record_fixture.h"

#include <gtest/gtest.h>

namespace marvolen::test {
namespace {

// Replays what a writer wrote, piece by piece, and looks at the file in between: behind every write
// and, within it, at every page, which is where the system may leave off.
class RecordCrash : public RecordFixture {
protected:
    static constexpr std::uint32_t kLength = 45;
    static constexpr std::uint64_t kChunk = kBlock + 600 * kLength;
    using Pieces = std::vector<FaultyRecordFile::Piece>;

    // Some sessions that append so many records each. Whenever a record is acknowledged, a piece of
    // nothing says so.
    Pieces Trace(std::initializer_list<int> sessions) {
        Pieces trace;
        std::filesystem::remove(path);
        nextId = 0;
        for (const int records : sessions) {
            Renew();
            file->keepsTrace = true;
            EXPECT_TRUE(file->OpenOrCreateNew(path, maxSize));
            for (int i = 0; i < records; ++i) {
                EXPECT_TRUE(Append(kLength));
                file->trace.push_back({});
            }
            Close();
            trace.insert(trace.end(), file->trace.begin(), file->trace.end());
        }
        Crash();
        return trace;
    }

    // Puts the piece into the file, page by page, and calls look(whether all of it is there).
    template <class Look>
    void Replay(const FaultyRecordFile::Piece& piece, Look look) {
        for (std::size_t from = 0; from < piece.bytes.size();) {
            const std::size_t page = 4096 - (piece.position + from) % 4096;
            const std::size_t part = std::min(page, piece.bytes.size() - from);
            Patch(piece.position + from, piece.bytes.data() + from, part);
            from += part;
            ASSERT_NO_FATAL_FAILURE(look(from == piece.bytes.size()))
                << acknowledged << " at " << piece.position << " + " << from;
        }
    }

    // The newest record is the last acknowledged one, or the one being written.
    void ExpectNewest() {
        ASSERT_TRUE(Read() && file->SeekTo(file->RecordCount() - 1));
        ASSERT_TRUE(Shows({acknowledged - 1, kLength}) || Shows({acknowledged, kLength}));
        Crash();
    }

    // The program that comes next ends in the middle of its opening, too; then the next one goes
    // on.
    void ExpectRecovery() {
        const std::string image = ReadWholeFile(path);
        std::vector<TestRecord> taken;
        for (std::uint32_t id = 0; id <= acknowledged; ++id) taken.push_back({id, kLength});
        ASSERT_TRUE(Sound());
        ASSERT_NO_FATAL_FAILURE(ExpectSurvivorsOf(taken, 1));
        Renew();
        file->keepsTrace = true;
        ASSERT_TRUE(file->OpenOrCreateNew(path, maxSize));
        const Pieces opening = std::move(file->trace);
        Crash();
        Restore(image);
        for (const FaultyRecordFile::Piece& piece : opening) {
            ASSERT_NO_FATAL_FAILURE(Replay(piece, [&](bool) { ExpectNewest(); }));
        }
        nextId = 100000;
        ASSERT_TRUE(Reopen(maxSize) && AppendMany(3, kLength));
        Crash();
        ASSERT_TRUE(Sound() && Read() && file->SeekTo(file->RecordCount() - 1));
        ASSERT_TRUE(Shows({nextId - 1, kLength}));
        Crash();
        Restore(image);
    }

    std::uint64_t maxSize = 0;
    std::uint32_t acknowledged = 0;
};

// A header that lies across the end is linked in two pieces: the fourth chunk's in all rings but
// the first; where it was closed on before, it already counts 600.
TEST_F(RecordCrash, LosesNothingThatWasAcknowledged) {
    for (const std::uint64_t beforeEnd : {kChunk / 2, 1UL, 17UL, 24UL, 33UL, 36UL}) {
        maxSize = 24 + 3 * kChunk + beforeEnd;
        for (const auto& sessions : {std::initializer_list<int>{3100}, {2400, 700}}) {
            SCOPED_TRACE(::testing::Message() << beforeEnd << ' ' << sessions.size());
            const Pieces trace = Trace(sessions);
            WriteWholeFile(path, "");
            acknowledged = 0;
            for (const FaultyRecordFile::Piece& piece : trace) {
                acknowledged += piece.bytes.empty();
                const bool ofRecord = piece.bytes.size() <= kLength && piece.position != 0;
                ASSERT_NO_FATAL_FAILURE(Replay(piece, [&](bool whole) {
                    if (acknowledged == 0) return;
                    ASSERT_NO_FATAL_FAILURE(ExpectNewest());
                    const bool looksCloser = !ofRecord || (!whole && acknowledged > 1790);
                    if (looksCloser || acknowledged % 501 == 0) ExpectRecovery();
                }));
            }
        }
    }
}

}  // namespace
}  // namespace marvolen::test
