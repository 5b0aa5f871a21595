// The 8x8 inverse DCT of Arai, Agui and Nakajima ("A fast DCT-SQ scheme for images", Trans. IEICE
// E-71(11), 1988; Pennebaker and Mitchell, "JPEG Still Image Data Compression Standard", 4.3.4.1):
// five multiplications for eight values. Its scale factors, and the dequantisation, stand in the
// table that each coefficient is multiplied with first.
//
// Values carry 2 fractional bits, and the two passes scale by 8, so results are shifted right by 5,
// without rounding. Everything is computed in 16 bits and wraps there; coefficients of an encoder
// stay in range, corrupt ones give some picture, the same in every implementation. Each loop runs
// over eight independent 16-bit lanes, which is what a compiler makes vector code of.

#include "jpeg/idct.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace marvolen {
namespace {

constexpr int kSqrt2 = 23170;          // 1.414213562, 14 fractional bits
constexpr int kTwoCos1 = 30273;        // 1.847759065
constexpr int kMinusTwoSin1 = -12540;  // -0.765366865

using Block = std::array<std::int16_t, 64>;

constexpr std::int16_t Add(std::int16_t a, std::int16_t b) {
    return static_cast<std::int16_t>(a + b);
}
constexpr std::int16_t Subtract(std::int16_t a, std::int16_t b) {
    return static_cast<std::int16_t>(a - b);
}
// The high half of (a x 4) x constant: a times a constant with 14 fractional bits.
constexpr std::int16_t Scale(std::int16_t a, int constant) {
    return static_cast<std::int16_t>((static_cast<std::int16_t>(a << 2) * constant) >> 16);
}

// The one-dimensional transform down each of the eight columns.
inline void TransformColumns(Block& block) {
    for (std::size_t i = 0; i < 8; ++i) {
        const auto row = [&](std::size_t r) -> std::int16_t& { return block[8 * r + i]; };

        const std::int16_t sum04 = Add(row(0), row(4));
        const std::int16_t difference04 = Subtract(row(0), row(4));
        const std::int16_t sum26 = Add(row(2), row(6));
        const std::int16_t scaled26 = Subtract(Scale(Subtract(row(2), row(6)), kSqrt2), sum26);
        const std::int16_t e0 = Add(sum04, sum26);
        const std::int16_t e3 = Subtract(sum04, sum26);
        const std::int16_t e1 = Add(difference04, scaled26);
        const std::int16_t e2 = Subtract(difference04, scaled26);

        const std::int16_t z13 = Add(row(5), row(3));
        const std::int16_t z10 = Subtract(row(5), row(3));
        const std::int16_t z11 = Add(row(1), row(7));
        const std::int16_t z12 = Subtract(row(1), row(7));
        const std::int16_t t7 = Add(z11, z13);
        const std::int16_t t11 = Scale(Subtract(z11, z13), kSqrt2);
        const std::int16_t t10 = Add(Scale(z10, -kTwoCos1), Scale(z12, kMinusTwoSin1));
        const std::int16_t t12 = Add(Scale(z10, kMinusTwoSin1), Scale(z12, kTwoCos1));
        const std::int16_t t6 = Subtract(t12, t7);
        const std::int16_t t5 = Subtract(t11, t6);
        const std::int16_t t4 = Add(t10, t5);

        row(0) = Add(e0, t7);
        row(1) = Add(e1, t6);
        row(2) = Add(e2, t5);
        row(3) = Subtract(e3, t4);
        row(4) = Add(e3, t4);
        row(5) = Subtract(e2, t5);
        row(6) = Subtract(e1, t6);
        row(7) = Subtract(e0, t7);
    }
}

inline void Transpose(const Block& in, Block& out) {
    for (std::size_t i = 0; i < 8; ++i) {
        for (std::size_t j = 0; j < 8; ++j) out[8 * i + j] = in[8 * j + i];
    }
}

}  // namespace

void FastIdctPortable(const std::int16_t* coefficients, const std::int16_t* table,
                      std::uint8_t* samples, std::ptrdiff_t stride) {
    Block work;
    for (std::size_t i = 0; i < 64; ++i) {
        work[i] = static_cast<std::int16_t>(coefficients[i] * table[i]);
    }
    TransformColumns(work);
    Block turned;
    Transpose(work, turned);
    TransformColumns(turned);
    Transpose(turned, work);
    // A result shifted right by 5 lies within 11 bits, so that + 128 can't overflow.
    std::array<std::uint8_t, 64> clamped;
    for (std::size_t i = 0; i < 64; ++i) {
        const auto sample = static_cast<std::int16_t>((work[i] >> 5) + 128);
        clamped[i] =
            static_cast<std::uint8_t>(std::clamp(sample, std::int16_t{0}, std::int16_t{255}));
    }
    for (std::size_t row = 0; row < 8; ++row, samples += stride) {
        std::memcpy(samples, clamped.data() + 8 * row, 8);
    }
}

}  // namespace marvolen
