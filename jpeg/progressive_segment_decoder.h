#pragma once

#include "jpeg/entropy_state.h"
#include "jpeg/jpeg_frame.h"
#include "jpeg/jpeg_kernels.h"
#include "jpeg/jpeg_tables.h"
#include "jpeg/plain_bit_reader.h"
#include "jpeg/progressive_scan.h"
#include "jpeg/segment_reader.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace marvolen {

class AllocationTable;

// Entropy decoding of progressive pictures (ITU-T T.81, G.1.2) that stand in memory, on the fast
// path. Gives what ProgressiveDecoder gives, by quicker means: whole segments without stuffed
// bytes, run and value in one look, and a mask of each block's non-zero coefficients, with which a
// refinement finds its places without looking at them.
class ProgressiveSegmentDecoder {
public:
    // All arguments are borrowed.
    ProgressiveSegmentDecoder(JpegInput& newInput, PlainBitReader& newMarkerReader,
                              const JpegTables& newTables, const JpegKernels& newKernels)
        : input(newInput),
          markerReader(newMarkerReader),
          tables(newTables),
          kernels(newKernels),
          reader(newInput, SegmentReader::Refills::By2Bytes) {}

    // Allocates the arrays of a prepared frame whose source stands in memory. Throws JpegFailure.
    void AllocateArrays(const JpegFrame& frame, AllocationTable& allocations);

    // Decodes one scan, from right behind its header to its end, and primes the marker reader for
    // what follows. Throws JpegFailure as ProgressiveDecoder::DecodeScan.
    void DecodeScan(const JpegFrame& frame, const JpegScan& scan, int restartInterval);

    // Copies the blocks of some MCUs of MCU row mcuRow as SegmentDecoder::DecodeMcus gives them.
    void AssembleMcus(const JpegFrame& frame, int mcuRow, int firstMcu, int mcus,
                      std::int16_t* coefficients, std::uint8_t* ends) const;

private:
    // The blocks of one component, row by row.
    struct Array {
        std::int16_t* coefficients = nullptr;
        std::uint64_t* nonZero = nullptr;
        int widthInBlocks = 0;

        CoefficientBlock At(int row, int column) const {
            const auto index = static_cast<std::ptrdiff_t>(row) * widthInBlocks + column;
            return {coefficients + index * kBlockSize, nonZero + index};
        }
    };

    // Calls decode(in, component, block) for every block of the scan.
    template <class Decode>
    void ForEachBlock(const JpegFrame& frame, const JpegScan& scan, Decode&& decode);
    void BeginMcu(BitCursor& in);
    void DecodeBlocks(const JpegFrame& frame, const JpegScan& scan, ProgressiveProcedure procedure);
    void DcFirst(const JpegFrame& frame, const JpegScan& scan);
    void DcRefine(const JpegFrame& frame, const JpegScan& scan);
    void AcFirst(const JpegFrame& frame, const JpegScan& scan);
    void AcRefine(const JpegFrame& frame, const JpegScan& scan);

    JpegInput& input;
    PlainBitReader& markerReader;
    const JpegTables& tables;
    const JpegKernels& kernels;
    SegmentReader reader;
    EntropyState state;
    ProgressiveLimits limits;
    std::array<Array, kMaxJpegComponents> arrays;
};

}  // namespace marvolen
