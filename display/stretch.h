#pragma once

// Stretching a decoded picture to the pixels of its place on the screen.
//
// Each axis is scaled on its own: where it is reduced every target pixel is the average of the
// source area it covers, so that thin strokes of text stay readable; where it is enlarged, pixels
// are interpolated linearly between the source pixels' centres, edges repeated; where it stays as
// it is, it is copied. Weights are multiples of 1/256 that sum to 1: up to a reduction of 40 to 1
// the result is within two levels of the exact one, beyond that some source pixels don't count.

#include "display/axis_weights.h"
#include "display/stretch_kernels.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace marvolen {

// A 24-bit picture: bytes B, G, R, bottom row first. Borrowed.
struct BottomUpPicture {
    const std::uint8_t* pixels = nullptr;
    int width = 0;
    int height = 0;
    std::size_t stride = 0;  // bytes from a row to the row above it
};

// A 32-bit picture, top row first, without padding: pixels 0xFFRRGGBB.
struct ScreenImage {
    std::vector<std::uint32_t> pixels;
    int width = 0;
    int height = 0;

    // Takes the size; the pixels' values are unspecified. Allocates only to grow. False when
    // memory is short; the image is then empty.
    bool Resize(int newWidth, int newHeight);
};

// Stretches pictures. Keeps its weights and rows, so that pictures of one size into places of one
// size allocate nothing. One thread at a time uses an object.
class Stretcher {
public:
    // With the best kernels for this processor, or others for tests and benchmarks.
    explicit Stretcher(const StretchKernels& itsKernels = *AvailableStretchKernels().back())
        : kernels(itsKernels) {}

    // Fills the whole target, whose size is the caller's choice, from the whole source. False when
    // the source is empty or memory is short; the target is then unspecified. An empty target is
    // filled at once.
    bool Stretch(const BottomUpPicture& source, ScreenImage& target);

private:
    void FindRows(const BottomUpPicture& source, int targetRow);

    const StretchKernels& kernels;
    ColumnWeights horizontal;
    AxisWeights vertical;
    std::vector<WeightedRow> rows;       // the source rows of one target row
    std::vector<std::uint16_t> blended;  // one row of samples, scaled vertically
};

}  // namespace marvolen
