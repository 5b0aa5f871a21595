// Sources that fail, memory, and how much the scans of a picture may cost.

#include "jpeg/allocation_table.h"
#include "jpeg/jpeg_decoder.h"
#include "jpeg/memory_jpeg_source.h"
#include "jpeg/progressive_decoder.h"
#include "tests/jpeg/corpus.h"

#include <gtest/gtest.h>

namespace marvolen::test {
namespace {

template <class Work>
int CodeOf(Work work) try {
    work();
    return 0;
} catch (const JpegFailure& failure) {
    return failure.code;
}

TEST(SourceTest, ReadFailureIsAnErrorAtEveryStage) {
    for (const auto& [name, stage] : {std::pair{"large_2x2", 0}, {"large_progressive", -1}}) {
        const Bytes jpeg = ReadCorpusFile(name);
        PortionSource unreadable(jpeg, 4096, 0), cut(jpeg, 4096, 2 * 4096);
        EXPECT_EQ(JpegDecoder(&unreadable, JpegPath::Fast).GetError(), -232);
        EXPECT_EQ(unreadable.ended, 1) << "by the constructor or the destructor, not both";
        JpegDecoder decoder(&cut, JpegPath::Fast);
        EXPECT_EQ(decoder.StartDecompress(), stage);
        const std::uint8_t* row = nullptr;
        int rowBytes = 0;
        int rows = 0;
        while (decoder.ReadScanline(&row, &rowBytes) == 0) ++rows;
        EXPECT_EQ(decoder.GetError(), -232);
        EXPECT_EQ(rows > 0, stage == 0);
        EXPECT_EQ(cut.ended, 1);
    }
}

TEST(AllocationTableTest, RefusesMoreThanItHolds) {
    AllocationTable table;
    for (std::size_t i = 0; i < AllocationTable::kSlots; ++i) {
        const std::uint8_t* block = table.AllocateArray<std::uint8_t>(i);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 8, 0U);
        EXPECT_TRUE(std::all_of(block, block + i + 8, [](int byte) { return byte == 0; }));
    }
    EXPECT_EQ(CodeOf([&] { table.Allocate(1); }), -221);
    table.Release();
    EXPECT_EQ(CodeOf([&] { table.Allocate(SIZE_MAX - 4); }), -233);
}

TEST(ProgressiveLimitTest, ScansMayVisitTwoToThe26Blocks) {
    const Bytes zeros(64);
    MemoryJpegSource source(zeros.data(), zeros.size());
    JpegInput input;
    input.Attach(&source);
    PlainBitReader reader(input);
    reader.PrimeForMarkers();
    AllocationTable allocations;
    JpegFrame frame;
    frame.width = frame.height = 8;
    frame.componentCount = 1;
    PrepareFrame(frame);
    const JpegTables tables;
    ProgressiveDecoder decoder(input, reader, tables);
    decoder.AllocateArrays(frame, allocations);
    // A refinement of one block, which claims to be more.
    JpegScan scan;
    scan.componentCount = scan.approximationHigh = scan.mcusPerRow = scan.mcuRows = 1;
    scan.blocksPerMcu = (1 << 26) - 1;
    EXPECT_EQ(CodeOf([&] { decoder.DecodeScan(frame, scan, 0); }), 0);
    scan.blocksPerMcu = 1;
    EXPECT_EQ(CodeOf([&] { decoder.DecodeScan(frame, scan, 0); }), 0);
    EXPECT_EQ(CodeOf([&] { decoder.DecodeScan(frame, scan, 0); }), -227);
}

}  // namespace
}  // namespace marvolen::test
