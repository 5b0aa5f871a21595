#pragma once

// Stretching a decoded picture to the pixels of its place on the screen.
//
// Each axis is scaled on its own: where it is reduced every target pixel is the average of the
// source area it covers, so that thin strokes of text stay readable; where it is enlarged, pixels
// are interpolated linearly between the source pixels' centres, edges repeated; where it stays as
// it is, it is copied. Weights are multiples of 1/256 that sum to 1: up to a reduction of 40 to 1
// the result is within two levels of the exact one, beyond that some source pixels don't count.

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

// How one axis is scaled: target pixel i is the sum of `taps` source pixels from first[i] on, with
// weights[i * taps ...] in 1/256.
struct AxisWeights {
    int sourceSize = 0;
    int targetSize = 0;
    int taps = 0;
    std::vector<std::int32_t> first;
    std::vector<std::uint16_t> weights;

    // Sizes at least 1. Does nothing when they are what they were.
    void Prepare(int newSourceSize, int newTargetSize);
};

// A source row's share of a target row. Borrowed.
struct WeightedRow {
    const std::uint8_t* samples = nullptr;
    std::uint16_t weight = 0;  // in 1/256
};

// Stretches pictures. Keeps its weights and rows, so that pictures of one size into places of one
// size allocate nothing. One thread at a time uses an object.
class Stretcher {
public:
    // Fills the whole target, whose size is the caller's choice, from the whole source. False when
    // the source is empty or memory is short; the target is then unspecified. An empty target is
    // filled at once.
    bool Stretch(const BottomUpPicture& source, ScreenImage& target);

private:
    void BlendRows(const BottomUpPicture& source, int targetRow);
    void BlendColumns(std::uint32_t* targetRow) const;

    AxisWeights horizontal;
    AxisWeights vertical;
    std::vector<WeightedRow> rows;       // the source rows of one target row
    std::vector<std::uint16_t> blended;  // one row of samples, scaled vertically
};

}  // namespace marvolen
