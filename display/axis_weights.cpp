#include "display/axis_weights.h"

#include <algorithm>

namespace marvolen {
namespace {

constexpr int kOne = 256;  // the weight 1

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

}  // namespace

bool AxisWeights::Prepare(int newSourceSize, int newTargetSize) {
    if (sourceSize == newSourceSize && targetSize == newTargetSize) return false;
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
    return true;
}

bool ColumnWeights::Prepare(int newSourceSize, int newTargetSize) {
    if (!AxisWeights::Prepare(newSourceSize, newTargetSize)) return false;
    targetSize = 0;  // unprepared, should memory run short
    const std::size_t size = first.size();
    steps = (static_cast<std::size_t>(taps) + 3) / 4;
    paddedTarget = (size + kColumnGroup - 1) / kColumnGroup * kColumnGroup;
    offsets.assign(steps * paddedTarget, 0);
    places.assign(steps * paddedTarget * kStepBytes, 0);
    weightBytes.assign(steps * paddedTarget * kStepBytes, 0);
    for (std::size_t step = 0; step < steps; ++step) {
        for (std::size_t pixel = 0; pixel < size; ++pixel) AddStep(pixel, step);
    }
    targetSize = newTargetSize;
    return true;
}

void ColumnWeights::AddStep(std::size_t pixel, std::size_t step) {
    const std::size_t at = step * paddedTarget + pixel;
    offsets[at] = 3 * (first[pixel] + static_cast<std::int32_t>(4 * step));
    std::uint8_t* place = places.data() + at * kStepBytes;
    std::uint8_t* weight = weightBytes.data() + at * kStepBytes;
    const auto put = [&](std::size_t slot, std::size_t tap, int share) {
        for (std::size_t colour = 0; colour < 3; ++colour) {
            const std::size_t byte = slot / 2 * 8 + colour * 2 + slot % 2;
            place[byte] = static_cast<std::uint8_t>(3 * tap + colour);
            weight[byte] = static_cast<std::uint8_t>(share);
        }
    };
    const auto all = static_cast<std::size_t>(taps);
    for (std::size_t tap = 0; tap < std::min<std::size_t>(4, all - 4 * step); ++tap) {
        const int whole = weights[pixel * all + 4 * step + tap];
        if (whole == kOne) {
            put(0, tap, kOne / 2);
            put(1, tap, kOne / 2);
            return;
        }
        put(tap, tap, whole);
    }
}

ColumnTaps ColumnWeights::Taps() const {
    return {first.size(),
            static_cast<std::size_t>(taps),
            first.data(),
            weights.data(),
            steps,
            paddedTarget,
            offsets.data(),
            places.data(),
            weightBytes.data()};
}

}  // namespace marvolen
