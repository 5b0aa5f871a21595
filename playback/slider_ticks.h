#pragma once

// Where a slider's tick marks stand.

#include <cstdint>

namespace marvolen {

// The least number of pixels between two ticks.
inline constexpr int kTickDistance = 6;

// The distance in positions between the ticks of a slider whose positions 0 to maximum take so many
// pixels: the smallest of 1, 2, 5, 10, 20, 50 and so on that keeps them kTickDistance apart.
// At least 1; ticks stand at its multiples and at maximum.
std::int64_t TickInterval(std::int32_t maximum, int pixels);

}  // namespace marvolen
