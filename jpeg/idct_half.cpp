// The inverse DCT at half the size, which gives the mean of two neighbouring results each way.
//
// Two neighbours of an 8-point inverse DCT add up to the cosines of a 4-point one, each times
// cos(k pi / 16), which the scale factors of the fast path's tables have in them already:
//
//   (x(2m) + x(2m + 1)) / 2  =  Y(0) + sum over k of Y(k) cos((2m + 1) k pi / 8)
//
// There the cosine of 8 - k is that of k with the other sign, and that of 4 is 0. So a 4-point
// transform of Y(0), Y(1) - Y(7), Y(2) - Y(6), Y(3) - Y(5) is all. Scaling, 16 bits and shifts are
// those of the full size.

#include "jpeg/fixed_point.h"
#include "jpeg/idct.h"

#include <array>

namespace marvolen {
namespace {

constexpr int kCos1 = 15137;  // cos(pi / 8), 14 fractional bits
constexpr int kCos2 = 11585;
constexpr int kCos3 = 6270;

using Four = std::array<std::int16_t, 4>;

// Transforms eight values that stand step apart.
Four HalfTransform(const std::int16_t* y, std::size_t step) {
    const std::int16_t z1 = SubtractWrapped(y[step], y[7 * step]);
    const std::int16_t z2 = ScaleWrapped(SubtractWrapped(y[2 * step], y[6 * step]), kCos2);
    const std::int16_t z3 = SubtractWrapped(y[3 * step], y[5 * step]);
    const std::int16_t even0 = AddWrapped(y[0], z2);
    const std::int16_t even1 = SubtractWrapped(y[0], z2);
    const std::int16_t odd0 = AddWrapped(ScaleWrapped(z1, kCos1), ScaleWrapped(z3, kCos3));
    const std::int16_t odd1 = SubtractWrapped(ScaleWrapped(z1, kCos3), ScaleWrapped(z3, kCos1));
    return {AddWrapped(even0, odd0), AddWrapped(even1, odd1), SubtractWrapped(even1, odd1),
            SubtractWrapped(even0, odd0)};
}

void TransformHalf(const IdctBlock& block, std::ptrdiff_t stride) {
    std::array<std::int16_t, 64> work;
    for (std::size_t i = 0; i < 64; ++i) {
        work[i] = static_cast<std::int16_t>(block.coefficients[i] * block.table[i]);
    }
    std::array<std::int16_t, 32> lines;  // four lines of eight columns
    for (std::size_t column = 0; column < 8; ++column) {
        const Four results = HalfTransform(work.data() + column, 8);
        for (std::size_t row = 0; row < 4; ++row) lines[8 * row + column] = results[row];
    }
    for (std::size_t row = 0; row < 4; ++row) {
        std::uint8_t* line = block.samples + static_cast<std::ptrdiff_t>(row) * stride;
        const Four results = HalfTransform(lines.data() + 8 * row, 1);
        for (std::size_t i = 0; i < 4; ++i) line[i] = SampleOf(results[i]);
    }
}

}  // namespace

void HalfIdctPortable(const IdctBlock& first, const IdctBlock& second, std::ptrdiff_t stride) {
    TransformHalf(first, stride);
    TransformHalf(second, stride);
}

}  // namespace marvolen
