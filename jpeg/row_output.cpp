#include "jpeg/row_output.h"

#include "jpeg/allocation_table.h"
#include "jpeg/pixel_rows.h"

#include <cstring>

namespace marvolen {

void RowOutput::Begin(const JpegFrame& frame, AllocationTable& allocations) {
    const auto bytes = static_cast<std::size_t>(frame.rowBufferBytes) + 8;
    first = allocations.AllocateArray<std::uint8_t>(bytes);
    second = allocations.AllocateArray<std::uint8_t>(bytes);
    rowsLeft = frame.height;
    rowsLeftInMcuRow = 0;
}

const std::uint8_t* RowOutput::NextRow(const JpegFrame& frame, const McuRow& mcuRow) {
    const int p = frame.mcuHeight - rowsLeftInMcuRow;
    --rowsLeft;
    --rowsLeftInMcuRow;
    const SamplePlane& luma = mcuRow.planes[0];
    if (frame.colourMode == ColourMode::Gray) {
        std::memcpy(first, luma.Line(p), static_cast<std::size_t>(frame.rowBytes));
        return first;
    }
    const int vertical = frame.mcuHeight / 8;
    if (p % vertical == 0) {
        const SampleLines lines = {luma.Line(p), luma.Line(p + vertical - 1),
                                   mcuRow.planes[1].Line(p / vertical),
                                   mcuRow.planes[2].Line(p / vertical)};
        const auto build = kColourBuilders[static_cast<std::size_t>(frame.colourMode)];
        build(lines, 8 * frame.mcusPerRow, first, second);
        return first;
    }
    return second;
}

}  // namespace marvolen
