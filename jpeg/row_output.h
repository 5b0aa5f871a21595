#pragma once

#include "jpeg/jpeg_frame.h"
#include "jpeg/mcu_row.h"

#include <cstdint>

namespace marvolen {

class AllocationTable;

// Hands out the rows of a picture, top to bottom, from one decoded MCU row after the other.
class RowOutput {
public:
    // Allocates the two row buffers of a prepared frame. Throws JpegFailure.
    void Begin(const JpegFrame& frame, AllocationTable& allocations);

    bool Finished() const { return rowsLeft == 0; }
    // Must the next MCU row be decoded before NextRow?
    bool NeedsMcuRow() const { return rowsLeftInMcuRow == 0; }
    void McuRowDecoded(const JpegFrame& frame) { rowsLeftInMcuRow = frame.mcuHeight; }

    // The next row; its columns beyond the picture's width hold padding. Valid until the next
    // call. The modes of 16 lines build rows in pairs, each in a buffer of its own.
    const std::uint8_t* NextRow(const JpegFrame& frame, const McuRow& mcuRow);

    // A row that is nobody's yet, as long as an output row.
    std::uint8_t* SpareRow() { return second; }

private:
    std::uint8_t* first = nullptr;   // single rows, and the upper row of a pair
    std::uint8_t* second = nullptr;  // the lower row of a pair
    int rowsLeft = 0;
    int rowsLeftInMcuRow = 0;
};

}  // namespace marvolen
