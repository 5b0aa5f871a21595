// Random life of record files against a model of what they must hold.

#include "tests/record/record_model.h"

#include "tests/record/record_fixture.h"

#include <gtest/gtest.h>
#include <random>

namespace marvolen::test {
namespace {

struct Life {
    const char* name;
    std::uint64_t maxSize;
    std::uint32_t longestFrame;
    int operations;
};

class RecordModelTest : public RecordFixture, public ::testing::WithParamInterface<Life> {
protected:
    std::uint32_t Any(std::uint64_t below) {
        return static_cast<std::uint32_t>(random() % std::max<std::uint64_t>(below, 1));
    }

    // Mostly small, now and then the longest, and often exactly what fits.
    std::uint32_t AnyLength() {
        const std::uint32_t longest = GetParam().longestFrame;
        std::uint64_t length = Any(longest + 1);
        switch (Any(24)) {
            case 0:
                length = model.ToMaximum();
                break;
            case 1:
                length = model.ToMaximum() + 1;
                break;
            case 2:
                length = model.Room();
                break;
            case 3:
                length = model.Room() + 1;
                break;
            case 4:
                length = 0;
                break;
            case 5:
                length = longest;
                break;
            default:
                length = Any(2) == 0 ? length / 16 : length;
        }
        return static_cast<std::uint32_t>(length <= longest ? length : Any(longest + 1));
    }

    std::uint64_t AnyMaximum() {
        const std::uint64_t usual = GetParam().maxSize;
        std::uint64_t size = usual;
        switch (Any(8)) {
            case 0:
                size = usual / 2 + Any(usual);
                break;
            case 1:
                size = usual * 2;
                break;
            case 2:
                size = model.Position() - 1 + Any(3);
                break;
            case 3:
                size = model.ChunkPosition(Any(model.Chunks())) - 1 + Any(3);
                break;
            case 4:
                size = model.FileSize() - 1 + Any(3);
                break;
            case 5:
                size = model.Max();
                break;
            default:
                break;
        }
        return std::max<std::uint64_t>(size, kSmallestRing);
    }

    void Compare() {
        ASSERT_TRUE(Sound());
        const std::vector<TestRecord> expected = model.Records();
        if (expected.empty()) {
            ASSERT_FALSE(Read());
        } else {
            ASSERT_TRUE(HoldsExactly(expected));
        }
        ASSERT_EQ(Size(), model.FileSize());
        ASSERT_NO_FATAL_FAILURE(CompareBytes());
    }

    // Header and index blocks, as they lie in the file.
    void CompareBytes() {
        const std::string bytes = ReadWholeFile(path);
        RingHeader header{};
        std::memcpy(&header, bytes.data(), sizeof header);
        ASSERT_EQ(header.maxSize, model.Max());
        ASSERT_EQ(header.head, model.ChunkPosition(0));
        for (std::size_t k = 0; k < model.Chunks(); ++k) {
            const ChunkBlock expected = model.BlockOf(k);
            const std::uint64_t self = expected.header.self;
            const std::size_t beforeEnd = std::min<std::size_t>(
                std::min<std::size_t>(bytes.size(), model.Max()) - self, sizeof(ChunkBlock));
            ChunkBlock stored;
            auto* const to = reinterpret_cast<char*>(&stored);
            std::memcpy(to, bytes.data() + self, beforeEnd);
            std::memcpy(to + beforeEnd, bytes.data() + 24, sizeof stored - beforeEnd);
            ASSERT_EQ(stored.header.magic, kChunkMagic);
            ASSERT_EQ(stored.header.self, self);
            ASSERT_EQ(stored.header.next, expected.header.next);
            ASSERT_EQ(stored.header.count, expected.header.count);
            if (k > 0) {
                ASSERT_EQ(stored.header.prev, expected.header.prev);
            }
            for (std::uint32_t n = 0; n < expected.header.count; ++n) {
                ASSERT_EQ(stored.entries[n].pos, expected.entries[n].pos) << k << ' ' << n;
                ASSERT_EQ(stored.entries[n].length, expected.entries[n].length);
                ASSERT_EQ(stored.entries[n].stamp, expected.entries[n].stamp);
            }
        }
    }

    void EndAndReopen() {
        if (Any(3) == 0) {
            Crash();
            model.Crash();
        } else {
            Close();
            model.Close();
        }
        ASSERT_NO_FATAL_FAILURE(Compare());
        const std::uint64_t maxSize = Any(2) == 0 ? model.Max() : AnyMaximum();
        const bool kept = model.Reopen(maxSize);
        ASSERT_EQ(Reopen(maxSize), kept) << maxSize;
        if (!kept) {
            ASSERT_TRUE(Create(maxSize));
            model.Create(maxSize);
        }
    }

    std::mt19937 random;
    RecordModel model;
};

TEST_P(RecordModelTest, HoldsWhatTheModelHolds) {
    for (const unsigned seed : {1U, 20040229U, 600U}) {
        SCOPED_TRACE(seed);
        random.seed(seed);
        ASSERT_TRUE(Create(GetParam().maxSize));
        model.Create(GetParam().maxSize);
        for (int operation = 0; operation < GetParam().operations; ++operation) {
            SCOPED_TRACE(operation);
            // By turns many short sessions and few long ones.
            if (Any(operation % 4000 < 2000 ? 20 : 400) == 0) {
                ASSERT_NO_FATAL_FAILURE(EndAndReopen());
                continue;
            }
            const TestRecord record{nextId++, AnyLength()};
            ASSERT_EQ(AppendRecord(record), model.Append(record)) << record.length;
        }
        Close();
        model.Close();
        ASSERT_NO_FATAL_FAILURE(Compare());
    }
}

INSTANTIATE_TEST_SUITE_P(RecordModel, RecordModelTest,
                         ::testing::Values(Life{"ABlockAndLittleMore", 20000, 900, 20000},
                                           Life{"AFewPictures", 250000, 204800, 8000},
                                           Life{"LessThanAChunk", 1 << 20, 204800, 8000},
                                           Life{"AboutAChunk", 60000, 120, 30000},
                                           Life{"AFewChunks", 300000, 100, 30000},
                                           Life{"ManyChunks", 1 << 20, 40, 60000},
                                           Life{"ManyLargeChunks", 8 << 20, 3000, 20000},
                                           Life{"PicturesInChunks", 48 << 20, 30000, 6000}),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace marvolen::test
