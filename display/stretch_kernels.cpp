// The portable kernels, and which others there are.
//
// Weights sum to 256 and samples to at most 255, so a weighted sum with its rounding fits in 16
// bits. The vertical pass works on whole rows of 16-bit sums, which compilers turn into vector
// code; the horizontal pass on pixels of four such sums side by side in a 64-bit word, so that one
// multiplication weighs all channels of a pixel.

#include "display/stretch_kernels.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace marvolen {
namespace {

static_assert(std::endian::native == std::endian::little);

constexpr std::uint16_t kHalf = 128;         // rounds a sum
constexpr std::size_t kSamplesAtOnce = 128;  // sums that stay in registers or the nearest cache

// One word of four 16-bit samples: B, G, R of a pixel and one to be ignored.
std::uint64_t LoadPixel(const std::uint16_t* samples) {
    std::uint64_t pixel;
    std::memcpy(&pixel, samples, sizeof pixel);
    return pixel;
}

// The rounded sums of a pixel as 0xFFRRGGBB.
std::uint32_t PackPixel(std::uint64_t sums) {
    return static_cast<std::uint32_t>((sums >> 8 & 0xFF) | (sums >> 16 & 0xFF00) |
                                      (sums >> 24 & 0xFF0000) | 0xFF000000);
}

// Adds count samples of two rows from begin on; two at a time halve the traffic of the sums.
void AddTwoRows(std::array<std::uint16_t, kSamplesAtOnce>& sums, const WeightedRow& first,
                const WeightedRow& second, std::size_t begin, std::size_t count) {
    const std::uint8_t* a = first.samples + begin;
    const std::uint8_t* b = second.samples + begin;
    for (std::size_t i = 0; i < count; ++i) {
        sums[i] = static_cast<std::uint16_t>(sums[i] + a[i] * first.weight + b[i] * second.weight);
    }
}

// Blended rows are 16-bit samples here.
void BlendRowsPortable(const WeightedRow* rows, std::size_t rowCount, std::size_t samples,
                       std::uint16_t* blended) {
    for (std::size_t begin = 0; begin < samples; begin += kSamplesAtOnce) {
        const std::size_t count = std::min(kSamplesAtOnce, samples - begin);
        std::array<std::uint16_t, kSamplesAtOnce> sums;
        sums.fill(kHalf);
        for (std::size_t row = 0; row < rowCount; row += 2) {
            const WeightedRow none = {rows[row].samples, 0};
            AddTwoRows(sums, rows[row], row + 1 < rowCount ? rows[row + 1] : none, begin, count);
        }
        std::uint16_t* to = blended + begin;
        for (std::size_t i = 0; i < count; ++i) to[i] = static_cast<std::uint16_t>(sums[i] >> 8);
    }
}

// Makes a row of target pixels. kTaps repeats the axis' taps where it is known at compile time,
// else it is 0.
template <std::size_t kTaps>
void BlendPixels(const ColumnTaps& columns, const std::uint16_t* samples, std::uint32_t* target) {
    constexpr std::uint64_t kHalves = 0x0001'0001'0001'0001 * kHalf;
    const std::size_t taps = kTaps != 0 ? kTaps : columns.taps;
    const std::uint16_t* weight = columns.weights;
    for (std::size_t i = 0; i < columns.targetSize; ++i) {
        const std::uint16_t* from = samples + static_cast<std::size_t>(columns.first[i]) * 3;
        std::uint64_t sums = kHalves;
        for (std::size_t tap = 0; tap < taps; ++tap)
            sums += LoadPixel(from + tap * 3) * weight[tap];
        weight += taps;
        *target++ = PackPixel(sums);
    }
}

void BlendColumnsPortable(const ColumnTaps& columns, const std::uint16_t* blended,
                          std::uint32_t* target) {
    switch (columns.taps) {
        case 1:
            return BlendPixels<1>(columns, blended, target);
        case 2:
            return BlendPixels<2>(columns, blended, target);
        case 3:
            return BlendPixels<3>(columns, blended, target);
        case 4:
            return BlendPixels<4>(columns, blended, target);
        default:
            return BlendPixels<0>(columns, blended, target);
    }
}

// The sets, better ones behind, and how many of them this processor has.
struct KernelSets {
    std::array<const StretchKernels*, 3> sets = {&kPortableStretchKernels};
    std::size_t count = 1;

    KernelSets() {
#if defined(__x86_64__)
        sets[count++] = &kSse2StretchKernels;
        if (__builtin_cpu_supports("avx2")) sets[count++] = &kAvx2StretchKernels;
#endif
    }
};

}  // namespace

const StretchKernels kPortableStretchKernels = {
    .name = "portable", .blendRows = BlendRowsPortable, .blendColumns = BlendColumnsPortable};

std::span<const StretchKernels* const> AvailableStretchKernels() {
    static const KernelSets kSets;
    return {kSets.sets.data(), kSets.count};
}

}  // namespace marvolen
