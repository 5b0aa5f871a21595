#include "jpeg/mcu_row.h"

#include "jpeg/allocation_table.h"

namespace marvolen {

void McuRow::Allocate(const JpegFrame& frame, JpegScale scale, AllocationTable& allocations) {
    const int group = GroupOf(frame.colourMode);
    const int mcus = (frame.mcusPerRow + group - 1) / group * group;
    const auto blocks =
        static_cast<std::size_t>(mcus) * static_cast<std::size_t>(frame.blocksPerMcu);
    const std::size_t entries = blocks * kBlockSize;
    outputMode = frame.colourMode;
    blockEdges.fill(scale == JpegScale::Half ? 4 : 8);
    if (scale == JpegScale::Half && frame.colourMode == ColourMode::Y2x2) {
        blockEdges = {4, 8, 8};
        outputMode = ColourMode::Y1x1;
    }
    coefficients = allocations.AllocateArray<std::int16_t>(entries);
    auto* samples = allocations.AllocateArray<std::uint8_t>(entries);
    for (std::size_t i = 0; i < static_cast<std::size_t>(frame.componentCount); ++i) {
        const JpegComponent& component = frame.components[i];
        planes[i] = {samples, component.horizontal * mcus * blockEdges[i]};
        samples += planes[i].stride * component.vertical * blockEdges[i];
    }
    ends.fill(kBlockSize);
}

}  // namespace marvolen
