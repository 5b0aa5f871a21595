#include "jpeg/mcu_row.h"

#include "jpeg/allocation_table.h"

namespace marvolen {

void McuRow::Allocate(const JpegFrame& frame, AllocationTable& allocations) {
    const auto entries = static_cast<std::size_t>(frame.blocksPerMcuRow) * kBlockSize;
    coefficients = allocations.AllocateArray<std::int16_t>(entries);
    auto* samples = allocations.AllocateArray<std::uint8_t>(entries);
    for (std::size_t i = 0; i < static_cast<std::size_t>(frame.componentCount); ++i) {
        const JpegComponent& component = frame.components[i];
        planes[i] = {samples, component.horizontal * frame.mcusPerRow * 8};
        samples += planes[i].stride * component.vertical * 8;
    }
    lastIndex.fill(kBlockSize);
}

}  // namespace marvolen
