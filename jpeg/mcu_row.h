#pragma once

#include "jpeg/jpeg_frame.h"
#include "jpeg/jpeg_scale.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace marvolen {

class AllocationTable;

// The samples of one component in an MCU row.
struct SamplePlane {
    std::uint8_t* base = nullptr;
    std::ptrdiff_t stride = 0;  // bytes from line to line

    std::uint8_t* Line(int line) const { return base + line * stride; }
};

// The working memory of one MCU row: coefficients block by block, samples line by line.
//
// Blocks are transformed in pairs, and where an MCU has an odd number of a component's blocks, two
// MCUs make a group. There is room for whole groups; what no MCU fills stays 0.
struct McuRow {
    // MCUs that are transformed together.
    static int GroupOf(ColourMode mode) {
        return mode == ColourMode::Gray || mode == ColourMode::Y1x1 ? 2 : 1;
    }

    // Allocates the buffers for a prepared frame, whose blocks become scale-dependent squares of
    // samples. Throws JpegFailure.
    void Allocate(const JpegFrame& frame, JpegScale scale, AllocationTable& allocations);

    // 64 coefficients a block, in natural order, quantised on the fast path and dequantised on the
    // plain one. The blocks stand MCU after MCU, within an MCU in the order of ColourMode. Behind
    // them is room for one more coefficient.
    std::int16_t* coefficients = nullptr;
    // The samples of each component: block edge x vertical factor lines.
    std::array<SamplePlane, kMaxJpegComponents> planes;
    // Samples of a component's block each way: 8, at half scale 4. But chroma with half as many
    // samples as Y both ways has the right ones for half scale: those blocks stay whole.
    std::array<int, kMaxJpegComponents> blockEdges{};
    // How the planes' samples lie to each other.
    ColourMode outputMode = ColourMode::Gray;
    // Per block one past the zigzag position of its last coefficient that may be non-zero; all
    // coefficients from there on are 0.
    std::array<std::uint8_t, kMaxBlocksPerMcuRow + kMaxBlocksPerMcu> ends{};
};

}  // namespace marvolen
