#include "jpeg/allocation_table.h"

#include "jpeg/jpeg_error.h"

#include <algorithm>
#include <cstdint>

namespace marvolen {

void* AllocationTable::Allocate(std::size_t size) {
    const auto slot = std::find(slots.begin(), slots.end(), nullptr);
    if (slot == slots.end()) Fail(kJpegErrorAllocations);
    static_assert(alignof(std::max_align_t) % 8 == 0, "calloc aligns to 8");
    // calloc rather than malloc and memset: the pages of a huge, mostly empty coefficient array
    // then cost nothing until they are written.
    slot->reset(size > SIZE_MAX - 8 ? nullptr : std::calloc(1, size + 8));
    if (*slot == nullptr) Fail(kJpegErrorMemory);
    return slot->get();
}

void AllocationTable::Release() {
    for (auto& slot : slots) slot.reset();
}

}  // namespace marvolen
