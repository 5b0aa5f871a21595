#pragma once

#include <cstddef>
#include <cstdint>

namespace marvolen {

// The fast inverse DCT in portable code, the reference for every other implementation.
// All arithmetic wraps at 16 bits, so every input has one exact result.
void FastIdctPortable(const std::int16_t* coefficients, const std::int16_t* table,
                      std::uint8_t* samples, std::ptrdiff_t stride);

// The plain inverse DCT in portable code. All arithmetic wraps at 32 bits.
void PlainIdctPortable(const std::int16_t* coefficients, std::uint8_t* samples,
                       std::ptrdiff_t stride);

}  // namespace marvolen
