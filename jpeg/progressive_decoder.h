#pragma once

#include "jpeg/entropy_state.h"
#include "jpeg/jpeg_frame.h"
#include "jpeg/jpeg_path.h"
#include "jpeg/jpeg_tables.h"
#include "jpeg/mcu_row.h"
#include "jpeg/plain_bit_reader.h"
#include "jpeg/progressive_scan.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace marvolen {

class AllocationTable;

// Entropy decoding of progressive pictures (ITU-T T.81, G.1.2): every scan goes into coefficient
// arrays of the whole picture, from which MCU rows are then assembled.
class ProgressiveDecoder {
public:
    // All arguments are borrowed.
    ProgressiveDecoder(JpegInput& newInput, PlainBitReader& newReader, const JpegTables& newTables)
        : input(newInput), reader(newReader), tables(newTables) {}

    // Allocates the arrays of a prepared frame. Throws JpegFailure.
    void AllocateArrays(const JpegFrame& frame, AllocationTable& allocations);

    // Decodes one scan, from right behind its header to its end, and primes the reader for the
    // next marker. Throws JpegFailure: -230, -231 for the scan's parameters, -227, -228 for its
    // data, -227 beyond ProgressiveLimits.
    void DecodeScan(const JpegFrame& frame, const JpegScan& scan, int restartInterval);

    // Assembles the blocks of MCU row mcuRow (0 is the top one) of all frame components. scan
    // is the geometry of those components. The plain path multiplies by the quantisation tables.
    void AssembleMcuRow(const JpegFrame& frame, const JpegScan& scan, int mcuRow, JpegPath path,
                        McuRow& row) const;

private:
    // The coefficients of one kind of one component: blocks row by row.
    struct CoefficientArray {
        std::int16_t* base = nullptr;
        int widthInBlocks = 0;
        int heightInBlocks = 0;
        std::size_t coefficientsPerBlock = 0;

        // The coefficients of a block; throws JpegFailure -229 outside the array.
        std::int16_t* Block(int blockRow, int blockColumn) const;
    };
    struct ComponentArrays {
        CoefficientArray dc;  // one value a block
        CoefficientArray ac;  // 64 a block in natural order; position 0 stays unused
    };
    using Procedure = void (ProgressiveDecoder::*)(const JpegScan& scan, std::size_t component,
                                                   int blockRow, int blockColumn);

    static Procedure ChooseProcedure(const JpegScan& scan);
    void DecodeMcus(const JpegFrame& frame, const JpegScan& scan, Procedure procedure);
    void DecodeMcu(const JpegFrame& frame, const JpegScan& scan, Procedure procedure, int mcuRow,
                   int mcuColumn);
    void DcFirst(const JpegScan& scan, std::size_t component, int blockRow, int blockColumn);
    void DcRefine(const JpegScan& scan, std::size_t component, int blockRow, int blockColumn);
    void AcFirst(const JpegScan& scan, std::size_t component, int blockRow, int blockColumn);
    void AcRefine(const JpegScan& scan, std::size_t component, int blockRow, int blockColumn);
    int RefineNonZero(std::int16_t* block, int k, int end, int zerosToSkip, int bit);

    const HuffmanTable& DcTable(const JpegScan& scan, std::size_t component) const;
    const HuffmanTable& AcTable(const JpegScan& scan, std::size_t component) const;

    JpegInput& input;
    PlainBitReader& reader;
    const JpegTables& tables;
    EntropyState state;
    std::array<ComponentArrays, kMaxJpegComponents> arrays;
    ProgressiveLimits limits;
};

}  // namespace marvolen
