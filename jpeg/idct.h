#pragma once

#include <cstddef>
#include <cstdint>

namespace marvolen {

// A block for an inverse DCT of the fast path.
struct IdctBlock {
    const std::int16_t* coefficients;  // 64 quantised ones, natural order
    const std::int16_t* table;         // 64 entries, natural order; see JpegTables::quantisation
    int end;                           // 1..64: all coefficients from this zigzag position on are 0
    std::uint8_t* samples;             // where the first line of samples goes
};

// The fast inverse DCT of two blocks in portable code, the reference for every other
// implementation: 8 lines of 8 samples each, stride bytes apart. All arithmetic wraps at 16 bits,
// so every input has one exact result.
void FastIdctPortable(const IdctBlock& first, const IdctBlock& second, std::ptrdiff_t stride);

// The same at half the size, 4 lines of 4 samples: the mean of two samples each way, as far as
// 16 bits carry it.
void HalfIdctPortable(const IdctBlock& first, const IdctBlock& second, std::ptrdiff_t stride);

// The plain inverse DCT: 64 dequantised coefficients to 8 lines of 8 samples. All arithmetic wraps
// at 32 bits.
void PlainIdct(const std::int16_t* coefficients, std::uint8_t* samples, std::ptrdiff_t stride);

}  // namespace marvolen
