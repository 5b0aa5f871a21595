#include "jpeg/mcu_row.h"

#include "jpeg/allocation_table.h"

namespace marvolen {

void McuRow::Allocate(const JpegFrame& frame, AllocationTable& allocations) {
    const auto entries = static_cast<std::size_t>(frame.blocksPerMcuRow) * kBlockSize;
    coefficients = allocations.AllocateArray<std::int16_t>(entries);
    samples = allocations.AllocateArray<std::uint8_t>(entries);
    lastIndex.fill(kBlockSize);
}

}  // namespace marvolen
