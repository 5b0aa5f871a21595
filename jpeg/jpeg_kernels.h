#pragma once

#include "jpeg/idct.h"
#include "jpeg/jpeg_frame.h"
#include "jpeg/pixel_rows.h"
#include "jpeg/refine_block.h"

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
// overlaps nothing that it reads, nor does one of its outputs another. Strides are 4 or more.
struct JpegKernels {
    // Dequantises two blocks with the fast path's tables and transforms them into lines of samples
    // that start stride bytes apart: 8 lines of 8 at full size, 4 lines of 4 at half size.
    using Idct = void (*)(const IdctBlock& first, const IdctBlock& second, std::ptrdiff_t stride);
    // Turns samples into that many pixels of B, G, R in first, each chroma sample repeated over the
    // pixels it covers. In the modes with Y sampled twice down the row below goes to second; the
    // others leave second and yBelow alone, and gray leaves Cb and Cr alone.
    using BuildBgr = void (*)(const SampleLines& lines, int pixels, std::uint8_t* first,
                              std::uint8_t* second);

    // Refines the band of one block of a progressive picture, or, within an end of band (counted
    // down in endOfBandRun), only corrects it. Takes and leaves the cursor behind the block's bits.
    // Returns false for data that can't be: what the block and the cursor are then is open.
    using RefineBlock = bool (*)(const AcRefinement& scan, BitCursor& in,
                                 std::uint32_t& endOfBandRun, const CoefficientBlock& block);

    const char* name;
    Idct fullIdct;
    Idct halfIdct;
    std::array<BuildBgr, kColourModes> buildBgr;  // by ColourMode
    RefineBlock refineBlock;
};

// Every set that this processor can run: the portable one first, the best one last.
std::span<const JpegKernels* const> AvailableJpegKernels();

// The set that new decoders use: the best one, unless another was forced.
const JpegKernels& ActiveJpegKernels();

// Makes new decoders use these kernels, or the best ones again when null. For tests and benchmarks.
// The kernels are borrowed until the next call; no decoder may be made on another thread meanwhile.
void ForceJpegKernels(const JpegKernels* kernels);

}  // namespace marvolen
