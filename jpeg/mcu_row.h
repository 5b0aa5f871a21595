#pragma once

#include "jpeg/jpeg_frame.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace marvolen {

class AllocationTable;

// The samples of one component in an MCU row: 8 x vertical factor lines.
struct SamplePlane {
    std::uint8_t* base = nullptr;
    std::ptrdiff_t stride = 0;  // bytes from line to line

    std::uint8_t* Line(int line) const { return base + line * stride; }
};

// The working memory of one MCU row: coefficients block by block, samples line by line.
struct McuRow {
    // Allocates the buffers for a prepared frame. Throws JpegFailure.
    void Allocate(const JpegFrame& frame, AllocationTable& allocations);

    // 64 coefficients a block, in natural order, quantised on the fast path and dequantised on the
    // plain one. The blocks stand MCU after MCU, within an MCU in the order of ColourMode.
    std::int16_t* coefficients = nullptr;
    // The samples of each component.
    std::array<SamplePlane, kMaxJpegComponents> planes;
    // Per block one past the zigzag position of its last coefficient that may be non-zero; all
    // coefficients from there on are 0.
    std::array<std::uint8_t, kMaxBlocksPerMcuRow> lastIndex{};
};

}  // namespace marvolen
