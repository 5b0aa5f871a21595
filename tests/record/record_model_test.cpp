// Random life of record files against a model of what they must hold.

#include "tests/record/record_model.h"

#include <gtest/gtest.h>
#include <random>

namespace marvolen::test {
namespace {

struct Life {
    std::uint64_t maxSize;
    std::uint32_t longestFrame;
    int operations;
};

class RecordModelTest : public RecordFixture {
protected:
    std::uint32_t Any(std::uint64_t below) {
        return static_cast<std::uint32_t>(random() % std::max<std::uint64_t>(below, 1));
    }

    // Mostly small, now and then the longest, and often exactly what fits.
    std::uint32_t AnyLength() {
        const std::uint32_t longest = life.longestFrame;
        const std::uint64_t any = Any(longest + 1);
        const std::uint64_t lengths[] = {model.ToMaximum(), model.ToMaximum() + 1, model.Room(),
                                         model.Room() + 1,  std::uint64_t{0},      longest};
        const std::uint32_t choice = Any(24);
        if (choice < std::size(lengths) && lengths[choice] <= longest) {
            return static_cast<std::uint32_t>(lengths[choice]);
        }
        return static_cast<std::uint32_t>(choice % 2 == 0 ? any / 16 : any);
    }

    std::uint64_t AnyMaximum() {
        const std::uint64_t usual = life.maxSize;
        const std::uint64_t near = Any(3);
        const std::uint64_t sizes[] = {usual / 2 + Any(usual),
                                       usual * 2,
                                       model.Position() - 1 + near,
                                       model.ChunkPosition(Any(model.Chunks())) - 1 + near,
                                       model.FileSize() - 1 + near,
                                       model.Max(),
                                       usual};
        return std::max<std::uint64_t>(sizes[Any(std::size(sizes))], kSmallestRing);
    }

    void Compare() {
        ASSERT_TRUE(Sound());
        ASSERT_TRUE(HoldsExactly(model.Records()));
        ASSERT_EQ(Size(), model.FileSize());
        ASSERT_EQ(Header().maxSize, model.Max());
        ASSERT_EQ(Header().head, model.ChunkPosition(0));
    }

    void EndAndReopen() {
        const bool crash = Any(3) == 0;
        crash ? Crash() : Close();
        model.Close();
        ASSERT_NO_FATAL_FAILURE(Compare());
        const std::uint64_t maxSize = Any(2) == 0 ? model.Max() : AnyMaximum();
        const bool kept = model.Reopen(maxSize);
        ASSERT_EQ(Reopen(maxSize), kept) << maxSize;
        if (!kept) {
            ASSERT_TRUE(Create(maxSize));
            model.Create(maxSize);
        }
    }

    Life life{};
    std::mt19937 random;
    RecordModel model;
};

TEST_F(RecordModelTest, HoldsWhatTheModelHolds) {
    // A block and little more, a few pictures, about a chunk, a few chunks, many chunks.
    for (const Life& next : {Life{20000, 900, 8000},
                             {250000, 204800, 4000},
                             {60000, 120, 20000},
                             {300000, 100, 24000},
                             {1 << 20, 40, 40000}}) {
        life = next;
        SCOPED_TRACE(life.maxSize);
        random.seed(20040229);
        ASSERT_TRUE(Create(life.maxSize));
        model.Create(life.maxSize);
        for (int operation = 0; operation < life.operations; ++operation) {
            SCOPED_TRACE(operation);
            // By turns many short sessions and few long ones.
            if (Any(operation % 4000 < 2000 ? 40 : 400) == 0) {
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

}  // namespace
}  // namespace marvolen::test
