#pragma once

// The weights by which the stretch makes target pixels of source pixels, one axis at a time.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace marvolen {

// How one axis is scaled: target pixel i is the sum of `taps` source pixels from first[i] on, with
// weights[i * taps ...] in 1/256, which are at least 0 and sum to 256.
struct AxisWeights {
    int sourceSize = 0;
    int targetSize = 0;
    int taps = 0;
    std::vector<std::int32_t> first;
    std::vector<std::uint16_t> weights;

    // Sizes at least 1. Does nothing, and returns false, when they are what they were. Throws
    // std::bad_alloc.
    bool Prepare(int newSourceSize, int newTargetSize);
};

// ColumnWeights for kernels, whose files can't use a library's inline functions. Borrowed.
struct ColumnTaps {
    std::size_t targetSize;
    std::size_t taps;
    const std::int32_t* first;
    const std::uint16_t* weights;
    std::size_t steps;
    std::size_t paddedTarget;
    const std::int32_t* offsets;
    const std::uint8_t* places;
    const std::uint8_t* weightBytes;
};

// Target pixels whose steps are made at once, and the bytes of a step.
inline constexpr std::size_t kColumnGroup = 8;
inline constexpr std::size_t kStepBytes = 16;

// The horizontal axis, also in the form that byte shuffles take.
//
// The taps of a target pixel are cut in steps of four. A step is sixteen bytes of samples from a
// source pixel on, the places among them that belong together, and their weights: bytes B B G G R R
// - - of the first two pixels, then of the others. A weight of 256, beside which there is no other,
// becomes two of 128 for the same pixel.
struct ColumnWeights : AxisWeights {
    std::size_t steps = 0;         // of a target pixel
    std::size_t paddedTarget = 0;  // target pixels, rounded up to whole groups; the rest weighs 0
    // Step s of pixel i stands at s * paddedTarget + i.
    std::vector<std::int32_t> offsets;  // of the step's first sample
    std::vector<std::uint8_t> places;   // sixteen a step
    std::vector<std::uint8_t> weightBytes;

    bool Prepare(int newSourceSize, int newTargetSize);

    ColumnTaps Taps() const;

private:
    void AddStep(std::size_t pixel, std::size_t step);
};

}  // namespace marvolen
