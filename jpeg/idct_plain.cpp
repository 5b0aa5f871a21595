// The 8x8 inverse DCT of Loeffler, Ligtenberg and Moschytz ("Practical fast 1-D DCT algorithms with
// 11 multiplications", ICASSP 1989), in the form with 12 multiplications and 32 additions, with
// constants of 13 fractional bits.
//
// The rows keep 2 fractional bits, the columns drop them together with the factor 8 of the two
// passes. Sums wrap at 32 bits and the work block at 16, which only corrupt data reaches.

#include "jpeg/idct.h"

#include <algorithm>
#include <array>

namespace marvolen {
namespace {

// The factor named by its value, x 8192.
constexpr std::uint32_t k0_298 = 2446;
constexpr std::uint32_t k0_390 = 3196;
constexpr std::uint32_t k0_541 = 4433;
constexpr std::uint32_t k0_765 = 6270;
constexpr std::uint32_t k0_899 = 7373;
constexpr std::uint32_t k1_175 = 9633;
constexpr std::uint32_t k1_501 = 12299;
constexpr std::uint32_t k1_847 = 15137;
constexpr std::uint32_t k1_961 = 16069;
constexpr std::uint32_t k2_053 = 16819;
constexpr std::uint32_t k2_562 = 20995;
constexpr std::uint32_t k3_072 = 25172;

using Eight = std::array<std::uint32_t, 8>;

// The one-dimensional transform; the results carry 13 more fractional bits.
Eight Transform(const Eight& x) {
    const std::uint32_t z1 = (x[2] + x[6]) * k0_541;
    const std::uint32_t p2 = z1 - x[6] * k1_847;
    const std::uint32_t p3 = z1 + x[2] * k0_765;
    const std::uint32_t p0 = (x[0] + x[4]) << 13;
    const std::uint32_t p1 = (x[0] - x[4]) << 13;
    const std::uint32_t a0 = p0 + p3;
    const std::uint32_t a3 = p0 - p3;
    const std::uint32_t a1 = p1 + p2;
    const std::uint32_t a2 = p1 - p2;

    const std::uint32_t q5 = (x[7] + x[3] + x[5] + x[1]) * k1_175;
    const std::uint32_t q1 = (x[7] + x[1]) * k0_899;
    const std::uint32_t q2 = (x[5] + x[3]) * k2_562;
    const std::uint32_t q3 = q5 - (x[7] + x[3]) * k1_961;
    const std::uint32_t q4 = q5 - (x[5] + x[1]) * k0_390;
    const std::uint32_t b0 = x[7] * k0_298 - q1 + q3;
    const std::uint32_t b1 = x[5] * k2_053 - q2 + q4;
    const std::uint32_t b2 = x[3] * k3_072 - q2 + q3;
    const std::uint32_t b3 = x[1] * k1_501 - q1 + q4;

    return {a0 + b3, a1 + b2, a2 + b1, a3 + b0, a3 - b0, a2 - b1, a1 - b2, a0 - b3};
}

// value / 2^bits, rounded to the nearest.
std::int32_t RoundShift(std::uint32_t value, int bits) {
    return static_cast<std::int32_t>(value + (1U << (bits - 1))) >> bits;
}

template <class Values>
bool OnlyFirst(const Values& values) {
    return std::all_of(values.begin() + 1, values.end(), [](auto value) { return value == 0; });
}

}  // namespace

void PlainIdct(const std::int16_t* coefficients, std::uint8_t* samples, std::ptrdiff_t stride) {
    std::array<std::uint32_t, 64> work;
    for (std::size_t row = 0; row < 8; ++row) {
        Eight x;
        // Sign extension, into unsigned arithmetic that wraps.
        std::transform(coefficients + 8 * row, coefficients + 8 * row + 8, x.begin(),
                       [](std::int16_t value) { return static_cast<std::uint32_t>(value); });
        const auto store = [&](std::size_t column, std::int32_t value) {
            work[8 * row + column] = static_cast<std::uint32_t>(static_cast<std::int16_t>(value));
        };
        if (OnlyFirst(x)) {
            for (std::size_t i = 0; i < 8; ++i) store(i, static_cast<std::int32_t>(x[0] * 4));
            continue;
        }
        const Eight results = Transform(x);
        for (std::size_t i = 0; i < 8; ++i) store(i, RoundShift(results[i], 11));
    }
    for (std::size_t column = 0; column < 8; ++column, ++samples) {
        Eight x;
        for (std::size_t i = 0; i < 8; ++i) x[i] = work[8 * i + column];
        const auto store = [&](std::size_t row, std::int32_t value) {
            samples[static_cast<std::ptrdiff_t>(row) * stride] =
                static_cast<std::uint8_t>(std::clamp(value + 128, 0, 255));
        };
        if (OnlyFirst(x)) {
            for (std::size_t i = 0; i < 8; ++i) store(i, RoundShift(x[0], 5));
            continue;
        }
        const Eight results = Transform(x);
        for (std::size_t i = 0; i < 8; ++i) store(i, RoundShift(results[i], 18));
    }
}

}  // namespace marvolen
