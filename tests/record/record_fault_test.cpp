// Writes that fail, and programs that end in the middle of one.

#include "record/record_file.h"
#include "tests/record/record_fixture.h"

#include <csignal>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <sys/resource.h>

namespace marvolen::test {
namespace {

constexpr std::uint64_t kMiB = 1048576;
constexpr std::uint64_t kBlock = 19240;

// A disk with room for so many more bytes, which notes what is written to it.
class FaultyRecordFile : public RecordFile {
public:
    struct Piece {
        std::uint64_t position;
        std::string bytes;
    };

    bool Write(const void* buf, std::uint32_t n, std::uint32_t* put) override {
        if (stuck) return MovesNothing(put);
        if ((failsHeader && Tell() == 0) || Tell() + n > fullAt) {
            *put = 0;
            return false;
        }
        const auto allowed = static_cast<std::uint32_t>(std::min<std::uint64_t>(n, room));
        const std::uint64_t position = Tell();
        std::uint32_t written = 0;
        const bool taken = RecordFile::Write(buf, allowed, &written);
        // Moving the head writes too, within the call above.
        if (room != kEndless) room -= std::min<std::uint64_t>(room, written);
        if (keepsTrace && written > 0) {
            trace.push_back({position, {static_cast<const char*>(buf), written}});
        }
        *put = written;
        // The turn at the ring's end may have come before the end of the room.
        return taken && (allowed == n || written < allowed);
    }

    bool Read(void* buf, std::uint32_t n, std::uint32_t* got) override {
        if (readsBeforeFailure > 0 && --readsBeforeFailure == 0) return false;
        return stuck ? MovesNothing(got) : RecordFile::Read(buf, n, got);
    }

    static constexpr std::uint64_t kEndless = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t room = kEndless;
    bool stuck = false;
    bool failsHeader = false;
    std::uint64_t fullAt = kEndless;  // no byte is taken from this position on
    int readsBeforeFailure = 0;       // 0: reading never fails
    bool keepsTrace = false;
    std::vector<Piece> trace;

private:
    static bool MovesNothing(std::uint32_t* moved) {
        *moved = 0;
        return true;
    }
};

class RecordFaults : public RecordFixture {
protected:
    std::unique_ptr<RecordFile> NewFile() override {
        auto made = std::make_unique<FaultyRecordFile>();
        disk = made.get();
        return made;
    }
    // After a crash the file holds taken but for its oldest ones and, at most, the newest chunk's.
    void ExpectSurvivorsOf(std::vector<TestRecord> taken) {
        if (!Read()) return;  // the newest chunk was the only one, and never flushed
        const std::uint32_t count = file->RecordCount();
        ASSERT_TRUE(file->SeekTo(count - 1));
        std::size_t lost = 0;
        while (!taken.empty() && !Shows(taken.back().id, taken.back().length)) {
            taken.pop_back();
            ++lost;
        }
        ASSERT_LE(lost, 600U);
        ASSERT_LE(count, taken.size());
        taken.erase(taken.begin(), taken.end() - count);
        ASSERT_TRUE(HoldsExactly(taken));
    }

    FaultyRecordFile* disk = nullptr;
};

TEST_F(RecordFaults, AFullDiskCostsTheFramesThatDoNotFit) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto signalBefore = std::signal(SIGXFSZ, SIG_IGN);
    // Full within the 6th record of 700 bytes; then in the second chunk's index block.
    for (const auto& [full, length, fits] :
         {std::tuple{24 + kBlock + 4000, 700U, 5}, {24 + kBlock + 6000 + 500, 10U, 600}}) {
        nextId = 0;
        ASSERT_TRUE(Create(kMiB));
        const rlimit limit{full, before.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
        int taken = 0;
        std::vector<TestRecord> records;
        for (std::uint32_t id = 0; id < 605; ++id) {
            if (!AppendRecord({id, length})) continue;
            records.push_back({id, length});
            ++taken;
        }
        EXPECT_EQ(taken, fits);
        Close();
        EXPECT_TRUE(Sound());
        EXPECT_TRUE(HoldsExactly(records));
        ASSERT_TRUE(Reopen(kMiB));
        EXPECT_FALSE(AppendRecord({1000, length}));
        setrlimit(RLIMIT_FSIZE, &before);
        ASSERT_TRUE(AppendRecord({1001, length})) << "there is room again";
        records.push_back({1001, length});
        Close();
        EXPECT_TRUE(Sound());
        EXPECT_TRUE(HoldsExactly(records));
    }
    std::signal(SIGXFSZ, signalBefore);
}

TEST_F(RecordFaults, AFullChunkIsInTheFileWhileTheNextHasNoRoom) {
    ASSERT_TRUE(Create(kMiB) && AppendMany(600, 10));
    disk->fullAt = Size() + 6000 + 500;
    for (int k = 0; k < 3; ++k) EXPECT_FALSE(Append(10));
    Crash();
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsRange(0, 599, 10));
}

TEST_F(RecordFaults, ChunksThatTheHeaderStillNamesAreNotOverwritten) {
    const std::uint64_t maxSize = 24 + 2 * (kBlock + 6000) + kBlock + 100;
    ASSERT_TRUE(Create(maxSize) && AppendMany(1210, 10));
    ASSERT_EQ(Header().head, 24U);
    disk->failsHeader = true;
    for (int k = 0; k < 3; ++k) EXPECT_FALSE(Append(10));
    EXPECT_EQ(Chunk(24).magic, kChunkMagic);
    disk->failsHeader = false;
    ASSERT_TRUE(Append(10)) << "as soon as the header can be written";
    EXPECT_NE(Header().head, 24U);
    Crash();
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsRange(600, 1199, 10));

    ASSERT_TRUE(Create(24 + kBlock + 1000) && Append(600));
    Close();
    ASSERT_TRUE(Reopen(24 + kBlock + 1000));
    disk->failsHeader = true;
    EXPECT_FALSE(Append(500)) << "would take the place of its own chunk";
    EXPECT_EQ(Chunk(24).magic, kChunkMagic);
    Crash();
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsExactly({{nextId - 2, 600}}));
}

TEST_F(RecordFaults, AChunkThatFillsTheRingIsGivenUpForABlockOnly) {
    const std::uint64_t maxSize = 24 + kBlock + 1000;
    ASSERT_TRUE(Create(maxSize) && Append(600));
    ASSERT_TRUE(Append(500) && Append(500)) << "a new chunk, filled to where it begins";
    disk->room = 0;
    EXPECT_FALSE(Append(1));
    disk->room = FaultyRecordFile::kEndless;
    Close();
    EXPECT_TRUE(Sound());
    EXPECT_TRUE(HoldsRange(1, 2, 500));
}

TEST_F(RecordFaults, AWriteThatMovesNothingFailsInTheEnd) {
    ASSERT_TRUE(Create(kMiB));
    disk->stuck = true;
    EXPECT_FALSE(Append(10));
    disk->stuck = false;
    EXPECT_TRUE(Append(10));
    Close();
    ASSERT_TRUE(Read());
    disk->stuck = true;
    EXPECT_FALSE(Shows(1, 10));
    disk->stuck = false;
    EXPECT_TRUE(Shows(1, 10));
}

TEST_F(RecordFaults, AnErrorOnReopeningCostsNoRecording) {
    constexpr std::uint64_t kChunkOf10 = kBlock + 6000;
    const std::uint64_t belowNewest = 24 + 2 * kChunkOf10 + 100;
    ASSERT_TRUE(Create(kMiB) && AppendMany(1300, 10));
    Close();
    const std::string good = ReadWholeFile(path);
    // The header, three chunk headers, and the newest block.
    int reads = 1;
    for (;; ++reads) {
        Renew();
        disk->readsBeforeFailure = reads;
        if (file->OpenOrCreateNew(path, kMiB)) break;
        EXPECT_FALSE(file->IsOpen());
        ASSERT_EQ(ReadWholeFile(path), good) << reads;
    }
    EXPECT_EQ(reads, 6);
    // Within the new header; in the entries, in the header of a chunk that becomes the newest.
    for (const auto& [maxSize, room, kept] : {std::tuple{2 * kMiB, 10U, 1299U},
                                              {belowNewest, 100U, 1299U},
                                              {belowNewest, 19200U, 1299U},
                                              {belowNewest, 19240U + 4U, 1199U}}) {
        Crash();
        Restore(good);
        Renew();
        disk->room = room;
        EXPECT_FALSE(file->OpenOrCreateNew(path, maxSize));
        EXPECT_FALSE(file->IsOpen());
        EXPECT_TRUE(Sound());
        EXPECT_TRUE(HoldsRange(0, kept, 10)) << maxSize << ' ' << room;
        ASSERT_TRUE(Reopen(maxSize)) << "the next try";
        Close();
        EXPECT_TRUE(HoldsRange(0, maxSize == belowNewest ? 1199 : 1299, 10));
    }
}

TEST_F(RecordFaults, AHalfWrittenBlockOverTheOldOneIsWrittenFirst) {
    const std::uint64_t maxSize = 24 + kBlock + 1000;
    ASSERT_TRUE(Create(maxSize) && Append(600));
    // The new block's first 400 bytes, the header with the new head, and some bytes from 24 on.
    disk->room = 400 + 24 + 10;
    EXPECT_FALSE(Append(500));
    EXPECT_EQ(Header().head, 24 + kBlock + 600);
    EXPECT_FALSE(Append(500)) << "still no room";
    disk->room = FaultyRecordFile::kEndless;
    Patch(Header().head, std::uint32_t{0});  // as if the disk had lost the first bytes too
    ASSERT_TRUE(Append(500));
    Crash();
    EXPECT_TRUE(Sound()) << "no record before its block";

    ASSERT_TRUE(Create(maxSize) && Append(600));
    disk->room = 400 + 24 + 10;
    EXPECT_FALSE(Append(500));
    disk->room = FaultyRecordFile::kEndless;
    Patch(Header().head, std::uint32_t{0});
    Close();
    EXPECT_TRUE(Sound()) << "the close writes it too";
}

// Random failures, at every kind of write: what was taken is there, up to the newest, and nothing
// else is.
TEST_F(RecordFaults, FailedWritesCostTheirFramesOnly) {
    std::mt19937 random(7);
    const auto any = [&](std::uint32_t below) {
        return static_cast<std::uint32_t>(random() % below);
    };
    for (const std::uint64_t maxSize : {20000U, 45000U, 70000U, 300000U}) {
        std::vector<TestRecord> taken;
        ASSERT_TRUE(Create(maxSize));
        for (int operation = 0; operation < 30000; ++operation) {
            if (any(40) == 0) disk->room = any(2) == 0 ? any(300) : any(25000);
            const TestRecord record{nextId++, any(100)};
            if (AppendRecord(record)) taken.push_back(record);
            if (any(8) == 0) disk->room = FaultyRecordFile::kEndless;
            if (any(1000) != 0) continue;

            disk->room = FaultyRecordFile::kEndless;
            ASSERT_TRUE(AppendRecord({nextId, 10})) << "goes on as soon as the disk does";
            taken.push_back({nextId++, 10});
            if (any(3) == 0) {
                Crash();
                ASSERT_TRUE(Sound()) << operation;
                ASSERT_NO_FATAL_FAILURE(ExpectSurvivorsOf(taken)) << operation;
                taken.clear();
                ASSERT_TRUE(Reopen(maxSize));
                Close();
                ASSERT_TRUE(Create(maxSize));
                continue;
            }
            Close();
            ASSERT_TRUE(Sound()) << operation;
            ASSERT_TRUE(Read());
            const std::uint32_t count = file->RecordCount();
            ASSERT_LE(count, taken.size());
            taken.erase(taken.begin(), taken.end() - count);
            ASSERT_TRUE(HoldsExactly(taken)) << operation;
            ASSERT_TRUE(Reopen(maxSize));
        }
    }
}

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
