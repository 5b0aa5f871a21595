#pragma once

#include "jpeg/jpeg_frame.h"

#include <array>
#include <cstdint>
#include <span>

namespace marvolen {

/// The inner loops of the decoder, one set for each kind of processor. All sets give the same bytes
/// for the same input, whatever it is; "portable" is the reference. Kernels keep no state and run
/// on any thread.
struct JpegKernels {
    /// Dequantises 64 quantised coefficients with a fast-path table and transforms them into 64
    /// samples; both in natural order. See "jpeg/idct.h".
    using FastIdct = void (*)(const std::int16_t* coefficients, const std::int16_t* table,
                              std::uint8_t* samples);
    /// Transforms 64 dequantised coefficients into 64 samples.
    using PlainIdct = void (*)(const std::int16_t* coefficients, std::uint8_t* samples);
    /// Builds the output row at position `p` of an MCU row from the samples of `mcus` MCUs: gray
    /// bytes, or R, G, B, 0. In the modes of 16 lines an MCU `p` is even, and row p + 1 goes to
    /// `second`, which the other modes leave alone.
    using BuildRows = void (*)(const std::uint8_t* samples, int mcus, int p, std::uint8_t* first,
                               std::uint8_t* second);
    /// Turns `pixels` pixels of an output row into B, G, R.
    using PackRow = void (*)(const std::uint8_t* row, int pixels, std::uint8_t* bgr);

    const char* name;
    FastIdct fastIdct;
    PlainIdct plainIdct;
    std::array<BuildRows, kColourModes> buildRows;  ///< by `ColourMode`
    PackRow packGray;                               ///< from one byte a pixel
    PackRow packColour;                             ///< from four bytes a pixel
};

/// Every set that this processor can run, the portable one first.
std::span<const JpegKernels* const> AvailableJpegKernels();

/// The set that new decoders use: the best one, unless another was forced.
const JpegKernels& ActiveJpegKernels();

/// Makes new decoders use `kernels`, or the best ones again when null. For tests and benchmarks.
void ForceJpegKernels(const JpegKernels* kernels);

}  // namespace marvolen
