#include "jpeg/mcu_row.h"

#include "jpeg/allocation_table.h"

namespace marvolen {

void McuRow::Allocate(const JpegFrame& frame, JpegScale scale, AllocationTable& allocations) {
    const int group = GroupOf(frame.colourMode);
    const int mcus = (frame.mcusPerRow + group - 1) / group * group;
    const auto entries = static_cast<std::size_t>(mcus * frame.blocksPerMcu * kBlockSize);
    blockEdge = scale == JpegScale::Half ? 4 : 8;
    coefficients = allocations.AllocateArray<std::int16_t>(entries);
    auto* samples = allocations.AllocateArray<std::uint8_t>(entries);
    for (std::size_t i = 0; i < static_cast<std::size_t>(frame.componentCount); ++i) {
        const JpegComponent& component = frame.components[i];
        planes[i] = {samples, component.horizontal * mcus * blockEdge};
        samples += planes[i].stride * component.vertical * blockEdge;
    }
    ends.fill(kBlockSize);
}

}  // namespace marvolen
