#pragma once

#include "jpeg/entropy_state.h"
#include "jpeg/huffman_table.h"
#include "jpeg/jpeg_frame.h"
#include "jpeg/jpeg_tables.h"
#include "jpeg/segment_reader.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace marvolen {

class AllocationTable;

// Entropy decoding of a sequential scan (ITU-T T.81, F.2) that stands in memory, on the fast path.
// Gives what SequentialDecoder gives, by quicker means: whole segments without stuffed bytes, one
// refill for several codes, two coefficients a look.
class SegmentDecoder {
public:
    // The input is borrowed; its source must stand in memory by BeginScan.
    explicit SegmentDecoder(JpegInput& newInput)
        : input(newInput), reader(newInput, SegmentReader::Refills::By6Bytes) {}

    // Begins at the input's position, right behind the scan header. Throws JpegFailure -233.
    void BeginScan(const JpegScan& scan, const JpegTables& tables, int restartInterval,
                   AllocationTable& allocations);

    // Decodes the next MCUs into blocks of 64 coefficients, natural order, and the block behind the
    // last one's first coefficient, which is overwritten with anything. ends takes, for each block,
    // one past the zigzag position of its last coefficient that may be non-zero. Throws
    // JpegFailure: -227 for a coefficient beyond the block, -228 for a restart marker that isn't
    // there.
    void DecodeMcus(int mcus, std::int16_t* coefficients, std::uint8_t* ends);

    // Sets the input to where the marker layer goes on.
    void EndScan() { reader.Leave(); }

private:
    // What a block of an MCU is decoded with; the tables are kept by JpegTables.
    struct BlockCode {
        const HuffmanTable* dc = nullptr;
        const HuffmanTable* ac = nullptr;
        std::size_t component = 0;
    };

    JpegInput& input;
    SegmentReader reader;
    EntropyState state;
    std::array<BlockCode, kMaxBlocksPerMcu> blockCodes;
    std::size_t blocksPerMcu = 0;
};

}  // namespace marvolen
