#pragma once

#include "tests/jpeg/test_encoder.h"
#include "tests/jpeg/test_picture.h"

#include <array>
#include <cstdint>
#include <vector>

namespace marvolen::test {

// The decoder's arithmetic, written down once more as plainly as possible: one value at a time, no
// table that can be computed, nothing shared with the decoder.

using Block = std::array<std::int16_t, 64>;
using SampleBlock = std::array<std::uint8_t, 64>;

// The fast path's table for quantisation entries in natural order.
Block ModelFastTable(const std::array<int, 64>& quantisation);

// The fast inverse DCT of quantised coefficients, both in natural order.
SampleBlock ModelFastIdct(const Block& coefficients, const Block& table);

// The plain inverse DCT of dequantised coefficients.
SampleBlock ModelPlainIdct(const Block& coefficients);

// R, G, B of one pixel.
std::array<std::uint8_t, 3> ModelColour(int y, int cb, int cr);

// A whole picture on the fast path, from its quantised coefficients.
Picture ModelFastPicture(const std::vector<ReferenceComponent>& components, int width, int height);

}  // namespace marvolen::test
