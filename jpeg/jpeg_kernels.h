#pragma once

#include "jpeg/jpeg_frame.h"
#include "jpeg/pixel_rows.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace marvolen {

// The inner loops of the decoder, one set for each kind of processor. All sets give the same bytes
// for the same input, whatever it is; "portable" is the reference. Kernels keep no state and run
// on any thread.
//
// No pointer promises any alignment. A kernel reads and writes exactly the bytes that its counts
// name, none in front of or behind them, not even to write back what was there. What it writes
// overlaps nothing that it reads, nor does one of its outputs another. Strides are 8 or more.
struct JpegKernels {
    // Dequantises 64 quantised coefficients with a fast-path table and transforms them into 8
    // lines of 8 samples that start stride bytes apart. Coefficients and table are in natural
    // order.
    using FastIdct = void (*)(const std::int16_t* coefficients, const std::int16_t* table,
                              std::uint8_t* samples, std::ptrdiff_t stride);
    // Transforms 64 dequantised coefficients into 8 lines of 8 samples.
    using PlainIdct = void (*)(const std::int16_t* coefficients, std::uint8_t* samples,
                               std::ptrdiff_t stride);
    // Builds a row of colour pixels (R, G, B, 0) in first, from the first chromaSamples samples
    // of Cb and Cr, each repeated over the pixels it covers. In the modes with Y sampled twice
    // down the row below goes to second; the others leave it and yBelow alone.
    using BuildColour = void (*)(const SampleLines& lines, int chromaSamples, std::uint8_t* first,
                                 std::uint8_t* second);
    // Turns that many pixels of an output row into B, G, R.
    using PackRow = void (*)(const std::uint8_t* row, int pixels, std::uint8_t* bgr);

    const char* name;
    FastIdct fastIdct;
    PlainIdct plainIdct;
    std::array<BuildColour, kColourModes> buildColour;  // by ColourMode; none for gray
    PackRow packGray;                                   // from one byte a pixel
    PackRow packColour;                                 // from four bytes a pixel
};

// Every set that this processor can run: the portable one first, the best one last.
std::span<const JpegKernels* const> AvailableJpegKernels();

// The set that new decoders use: the best one, unless another was forced.
const JpegKernels& ActiveJpegKernels();

// Makes new decoders use these kernels, or the best ones again when null. For tests and benchmarks.
// The kernels are borrowed until the next call; no decoder may be made on another thread meanwhile.
void ForceJpegKernels(const JpegKernels* kernels);

}  // namespace marvolen
