// Separable resampling with 8-bit weights, rows first.
//
// Weights sum to 256 and samples to at most 255, so a weighted sum with its rounding fits in 16
// bits. The vertical pass works on whole rows of 16-bit sums, which compilers turn into vector
// code; the horizontal pass on pixels of four such sums side by side in a 64-bit word, so that one
// multiplication weighs all channels of a pixel.

#include "display/stretch.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>

namespace marvolen {
namespace {

static_assert(std::endian::native == std::endian::little);

constexpr int kOne = 256;                    // the weight 1
constexpr std::uint16_t kHalf = kOne / 2;    // rounds a sum
constexpr std::size_t kSamplesAtOnce = 128;  // sums that stay in registers or the nearest cache
constexpr std::size_t kLaneSlack = 1;        // a pixel is read as four samples, the last unused

// The source pixels that target pixel i covers, each with its share. Shares are differences of
// rounded running sums, so they add up to one exactly.
void AddAreaWeights(AxisWeights& axis, int i) {
    const std::int64_t source = axis.sourceSize;
    const std::int64_t target = axis.targetSize;
    const std::int64_t begin = i * source;  // in units of 1/target source pixels
    const std::int64_t end = begin + source;
    // Taps that would begin behind the last possible place begin there, with leading zeros.
    const auto first = std::min(begin / target, source - axis.taps);
    std::int64_t sum = 0;
    for (int tap = 0; tap < axis.taps; ++tap) {
        const std::int64_t covered =
            std::clamp<std::int64_t>((first + tap + 1) * target, begin, end) - begin;
        const std::int64_t next = (covered * kOne + source / 2) / source;
        axis.weights.push_back(static_cast<std::uint16_t>(next - sum));
        sum = next;
    }
    axis.first.push_back(static_cast<std::int32_t>(first));
}

// The two source pixels between whose centres target pixel i has its own.
void AddLinearWeights(AxisWeights& axis, int i) {
    const std::int64_t source = axis.sourceSize;
    const std::int64_t target = axis.targetSize;
    const std::int64_t unit = 2 * target;  // positions are in units of 1/unit source pixels
    const std::int64_t position =
        std::clamp<std::int64_t>((2 * i + 1) * source - target, 0, (source - 1) * unit);
    const auto first = std::min(position / unit, source - axis.taps);
    const std::int64_t second = ((position - first * unit) * kOne + target) / unit;
    axis.first.push_back(static_cast<std::int32_t>(first));
    axis.weights.push_back(static_cast<std::uint16_t>(kOne - second));
    if (axis.taps == 2) axis.weights.push_back(static_cast<std::uint16_t>(second));
}

// Most source pixels that one target pixel can touch.
int AreaTaps(int sourceSize, int targetSize) {
    const int whole = sourceSize / targetSize;
    const int most = sourceSize % targetSize == 0 ? whole : whole + 2;
    return std::min(most, sourceSize);
}

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

// Makes a row of target pixels of a row of samples. kTaps repeats the axis' taps where it is known
// at compile time, else it is 0.
template <int kTaps>
void BlendPixels(const AxisWeights& axis, const std::uint16_t* samples, std::uint32_t* target) {
    constexpr std::uint64_t kHalves = 0x0001'0001'0001'0001 * kHalf;
    const int taps = kTaps != 0 ? kTaps : axis.taps;
    const std::uint16_t* weight = axis.weights.data();
    for (const std::int32_t first : axis.first) {
        const std::uint16_t* from = samples + static_cast<std::size_t>(first) * 3;
        std::uint64_t sums = kHalves;
        for (int tap = 0; tap < taps; ++tap) sums += LoadPixel(from + tap * 3) * weight[tap];
        weight += taps;
        *target++ = PackPixel(sums);
    }
}

}  // namespace

bool ScreenImage::Resize(int newWidth, int newHeight) {
    width = std::max(newWidth, 0);
    height = std::max(newHeight, 0);
    try {
        pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        return true;
    } catch (const std::bad_alloc&) {
        pixels.clear();
        width = height = 0;
        return false;
    }
}

void AxisWeights::Prepare(int newSourceSize, int newTargetSize) {
    if (sourceSize == newSourceSize && targetSize == newTargetSize) return;
    targetSize = 0;  // unprepared, should memory run short
    first.clear();
    weights.clear();
    const auto count = static_cast<std::size_t>(newTargetSize);
    const bool reduced = newSourceSize >= newTargetSize;
    taps = reduced ? AreaTaps(newSourceSize, newTargetSize) : std::min(2, newSourceSize);
    first.reserve(count);
    weights.reserve(count * static_cast<std::size_t>(taps));
    sourceSize = newSourceSize;
    targetSize = newTargetSize;
    for (int i = 0; i < targetSize; ++i) {
        if (reduced) {
            AddAreaWeights(*this, i);
        } else {
            AddLinearWeights(*this, i);
        }
    }
}

bool Stretcher::Stretch(const BottomUpPicture& source, ScreenImage& target) {
    if (!source.pixels || source.width <= 0 || source.height <= 0) return false;
    if (target.width == 0 || target.height == 0) return true;
    try {
        horizontal.Prepare(source.width, target.width);
        vertical.Prepare(source.height, target.height);
        rows.reserve(static_cast<std::size_t>(vertical.taps) + 1);  // made even
        blended.resize(static_cast<std::size_t>(source.width) * 3 + kLaneSlack);
    } catch (const std::bad_alloc&) {
        return false;
    }
    for (int y = 0; y < target.height; ++y) {
        BlendRows(source, y);
        BlendColumns(target.pixels.data() +
                     static_cast<std::size_t>(y) * static_cast<std::size_t>(target.width));
    }
    return true;
}

// Fills blended with the samples of the source rows that make up a target row.
void Stretcher::BlendRows(const BottomUpPicture& source, int targetRow) {
    const auto row = static_cast<std::size_t>(targetRow);
    const auto taps = static_cast<std::size_t>(vertical.taps);
    rows.clear();
    for (std::size_t tap = 0; tap < taps; ++tap) {
        const std::uint16_t weight = vertical.weights[row * taps + tap];
        if (weight == 0) continue;
        const auto fromTop = static_cast<std::size_t>(vertical.first[row]) + tap;
        const std::size_t fromBottom = static_cast<std::size_t>(source.height) - 1 - fromTop;
        rows.push_back({source.pixels + fromBottom * source.stride, weight});
    }
    if (rows.size() % 2 != 0) rows.push_back({rows.back().samples, 0});

    const std::size_t samples = static_cast<std::size_t>(source.width) * 3;
    for (std::size_t begin = 0; begin < samples; begin += kSamplesAtOnce) {
        const std::size_t count = std::min(kSamplesAtOnce, samples - begin);
        std::array<std::uint16_t, kSamplesAtOnce> sums;
        sums.fill(kHalf);
        for (std::size_t pair = 0; pair < rows.size(); pair += 2) {
            AddTwoRows(sums, rows[pair], rows[pair + 1], begin, count);
        }
        std::uint16_t* to = blended.data() + begin;
        for (std::size_t i = 0; i < count; ++i) to[i] = static_cast<std::uint16_t>(sums[i] >> 8);
    }
}

// Makes a target row of the samples in blended.
void Stretcher::BlendColumns(std::uint32_t* targetRow) const {
    switch (horizontal.taps) {
        case 1:
            return BlendPixels<1>(horizontal, blended.data(), targetRow);
        case 2:
            return BlendPixels<2>(horizontal, blended.data(), targetRow);
        case 3:
            return BlendPixels<3>(horizontal, blended.data(), targetRow);
        case 4:
            return BlendPixels<4>(horizontal, blended.data(), targetRow);
        default:
            return BlendPixels<0>(horizontal, blended.data(), targetRow);
    }
}

}  // namespace marvolen
