#include "jpeg/row_output.h"

#include "jpeg/allocation_table.h"

namespace marvolen {

void RowOutput::Begin(const JpegFrame& frame, AllocationTable& allocations) {
    const auto bytes = static_cast<std::size_t>(frame.rowBufferBytes) + 8;
    first = allocations.AllocateArray<std::uint8_t>(bytes);
    second = allocations.AllocateArray<std::uint8_t>(bytes);
    rowsLeft = frame.height;
    rowsLeftInMcuRow = 0;
}

const std::uint8_t* RowOutput::NextRow(const JpegFrame& frame, const McuRow& mcuRow,
                                       const JpegKernels& kernels) {
    const int p = frame.mcuHeight - rowsLeftInMcuRow;
    const bool lowerOfPair = frame.mcuHeight == 16 && p % 2 == 1;
    if (!lowerOfPair) {
        const auto build = kernels.buildRows[static_cast<std::size_t>(frame.colourMode)];
        build(mcuRow.samples, frame.mcusPerRow, p, first, second);
    }
    --rowsLeft;
    --rowsLeftInMcuRow;
    return lowerOfPair ? second : first;
}

}  // namespace marvolen
