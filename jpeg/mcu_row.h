#pragma once

#include "jpeg/jpeg_frame.h"

#include <array>
#include <cstdint>

namespace marvolen {

class AllocationTable;

/// The working memory of one MCU row: its blocks stand MCU after MCU, within an MCU in the order of
/// `ColourMode`.
struct McuRow {
    /// Allocates both buffers for a prepared frame. Throws `JpegFailure`.
    void Allocate(const JpegFrame& frame, AllocationTable& allocations);

    /// 64 coefficients a block, in natural order: quantised on the fast path, dequantised on the
    /// plain one.
    std::int16_t* coefficients = nullptr;
    /// 64 samples a block, row-major.
    std::uint8_t* samples = nullptr;
    /// Per block one past the zigzag position of its last coefficient that may be non-zero; all
    /// coefficients from there on are 0.
    std::array<std::uint8_t, kMaxBlocksPerMcuRow> lastIndex{};
};

}  // namespace marvolen
