#pragma once

#include <cstdint>

namespace marvolen {

// The arithmetic of the fast path: 16 bits, wrapping.

constexpr std::int16_t AddWrapped(std::int16_t a, std::int16_t b) {
    return static_cast<std::int16_t>(a + b);
}
constexpr std::int16_t SubtractWrapped(std::int16_t a, std::int16_t b) {
    return static_cast<std::int16_t>(a - b);
}
// The high half of (a x 4) x constant: a times a constant with 14 fractional bits.
constexpr std::int16_t ScaleWrapped(std::int16_t a, int constant) {
    return static_cast<std::int16_t>((static_cast<std::int16_t>(a << 2) * constant) >> 16);
}
// A sample from the result of both passes, which carries 5 fractional bits. Shifted, it lies within
// 11 bits, so that + 128 can't overflow.
constexpr std::uint8_t SampleOf(std::int16_t result) {
    const int sample = (result >> 5) + 128;
    return static_cast<std::uint8_t>(sample < 0 ? 0 : sample > 255 ? 255 : sample);
}

}  // namespace marvolen
