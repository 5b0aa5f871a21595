#pragma once

#include "jpeg/bit_cursor.h"
#include "jpeg/huffman_table.h"
#include "jpeg/progressive_scan.h"

#include <cstdint>

namespace marvolen {

// An AC refinement scan (ITU-T T.81, G.1.2.3). Tables are borrowed, and given as plain pointers:
// see "jpeg/simd/simd_kernels.h" on inline functions.
struct AcRefinement {
    const HuffmanTable* table;
    const HuffmanTable::Direct* direct;  // what table.LookUp says
    const std::uint8_t* naturalOrder;    // 64 positions
    int first;                           // zigzag positions of its band
    int last;
    std::int16_t step;  // what a coefficient grows or starts by
};

// A block of coefficients in natural order, and which of them, by zigzag position, aren't 0.
struct CoefficientBlock {
    std::int16_t* coefficients;
    std::uint64_t* nonZero;
};

// The refinement of one block in portable code; see JpegKernels::RefineBlock.
bool RefineBlockPortable(const AcRefinement& scan, BitCursor& in, std::uint32_t& endOfBandRun,
                         const CoefficientBlock& block);

// Bits first to last, of which last may be one less than first.
[[gnu::always_inline]] constexpr std::uint64_t BitsBetween(int first, int last) {
    return (std::uint64_t{2} << last) - (std::uint64_t{1} << first);
}

}  // namespace marvolen
