// The 8x8 inverse DCT of Arai, Agui and Nakajima ("A fast DCT-SQ scheme for images", Trans. IEICE
// E-71(11), 1988; Pennebaker and Mitchell, "JPEG Still Image Data Compression Standard", 4.3.4.1):
// five multiplications for eight values. Its scale factors, and the dequantisation, stand in the
// table that each coefficient is multiplied with first.
//
// Values carry 2 fractional bits, and the two passes scale by 8, so results are shifted right by 5,
// without rounding. Everything is computed in 16 bits and wraps there; coefficients of an encoder
// stay in range, corrupt ones give some picture, the same in every implementation. Each loop runs
// over eight independent 16-bit lanes, which is what a compiler makes vector code of.

#include "jpeg/fixed_point.h"
#include "jpeg/idct.h"

#include <array>
#include <cstring>

namespace marvolen {
namespace {

constexpr int kSqrt2 = 23170;          // 1.414213562, 14 fractional bits
constexpr int kTwoCos1 = 30273;        // 1.847759065
constexpr int kMinusTwoSin1 = -12540;  // -0.765366865

using Block = std::array<std::int16_t, 64>;

// The one-dimensional transform down each of the eight columns.
inline void TransformColumns(Block& block) {
    for (std::size_t i = 0; i < 8; ++i) {
        const auto row = [&](std::size_t r) -> std::int16_t& { return block[8 * r + i]; };

        const std::int16_t sum04 = AddWrapped(row(0), row(4));
        const std::int16_t difference04 = SubtractWrapped(row(0), row(4));
        const std::int16_t sum26 = AddWrapped(row(2), row(6));
        const std::int16_t scaled26 =
            SubtractWrapped(ScaleWrapped(SubtractWrapped(row(2), row(6)), kSqrt2), sum26);
        const std::int16_t e0 = AddWrapped(sum04, sum26);
        const std::int16_t e3 = SubtractWrapped(sum04, sum26);
        const std::int16_t e1 = AddWrapped(difference04, scaled26);
        const std::int16_t e2 = SubtractWrapped(difference04, scaled26);

        const std::int16_t z13 = AddWrapped(row(5), row(3));
        const std::int16_t z10 = SubtractWrapped(row(5), row(3));
        const std::int16_t z11 = AddWrapped(row(1), row(7));
        const std::int16_t z12 = SubtractWrapped(row(1), row(7));
        const std::int16_t t7 = AddWrapped(z11, z13);
        const std::int16_t t11 = ScaleWrapped(SubtractWrapped(z11, z13), kSqrt2);
        const std::int16_t t10 =
            AddWrapped(ScaleWrapped(z10, -kTwoCos1), ScaleWrapped(z12, kMinusTwoSin1));
        const std::int16_t t12 =
            AddWrapped(ScaleWrapped(z10, kMinusTwoSin1), ScaleWrapped(z12, kTwoCos1));
        const std::int16_t t6 = SubtractWrapped(t12, t7);
        const std::int16_t t5 = SubtractWrapped(t11, t6);
        const std::int16_t t4 = AddWrapped(t10, t5);

        row(0) = AddWrapped(e0, t7);
        row(1) = AddWrapped(e1, t6);
        row(2) = AddWrapped(e2, t5);
        row(3) = SubtractWrapped(e3, t4);
        row(4) = AddWrapped(e3, t4);
        row(5) = SubtractWrapped(e2, t5);
        row(6) = SubtractWrapped(e1, t6);
        row(7) = SubtractWrapped(e0, t7);
    }
}

inline void Transpose(const Block& in, Block& out) {
    for (std::size_t i = 0; i < 8; ++i) {
        for (std::size_t j = 0; j < 8; ++j) out[8 * i + j] = in[8 * j + i];
    }
}

void Transform(const IdctBlock& block, std::ptrdiff_t stride) {
    Block work;
    for (std::size_t i = 0; i < 64; ++i) {
        work[i] = static_cast<std::int16_t>(block.coefficients[i] * block.table[i]);
    }
    TransformColumns(work);
    Block turned;
    Transpose(work, turned);
    TransformColumns(turned);
    Transpose(turned, work);
    std::array<std::uint8_t, 64> samples;
    for (std::size_t i = 0; i < 64; ++i) samples[i] = SampleOf(work[i]);
    for (std::size_t row = 0; row < 8; ++row) {
        std::memcpy(block.samples + static_cast<std::ptrdiff_t>(row) * stride,
                    samples.data() + 8 * row, 8);
    }
}

}  // namespace

void FastIdctPortable(const IdctBlock& first, const IdctBlock& second, std::ptrdiff_t stride) {
    Transform(first, stride);
    Transform(second, stride);
}

}  // namespace marvolen
