#include "net/frame_pool.h"

#include <limits>
#include <new>

namespace marvolen {

void FramePool::SlotQueue::PushBack(void* slot) {
    FreeSlot* const added = new (slot) FreeSlot{nullptr};
    (back != nullptr ? back->next : front) = added;
    back = added;
}

void* FramePool::SlotQueue::PopFront() {
    FreeSlot* const taken = front;
    if (taken == nullptr) return nullptr;
    front = taken->next;
    if (front == nullptr) back = nullptr;
    return taken;
}

FramePool::~FramePool() = default;

bool FramePool::Init(std::uint32_t slotCapacity, std::uint32_t count) {
    if (block != nullptr) return false;
    constexpr std::size_t kAlignment = alignof(std::max_align_t);
    static_assert(alignof(VideoFrame) <= kAlignment && sizeof(FreeSlot) <= sizeof(VideoFrame));

    // 64 bits hold every slot size, not every product.
    const std::uint64_t unaligned = std::uint64_t{sizeof(VideoFrame)} + slotCapacity;
    const std::uint64_t slotSize = (unaligned + kAlignment - 1) / kAlignment * kAlignment;
    constexpr auto kLargest = std::uint64_t{std::numeric_limits<std::ptrdiff_t>::max()};
    if (count != 0 && slotSize > kLargest / count) return false;

    const auto size = static_cast<std::size_t>(slotSize * count);
    block.reset(new (std::nothrow) std::byte[size]);
    if (block == nullptr) return false;
    capacity = slotCapacity;
    for (std::size_t offset = 0; offset < size; offset += static_cast<std::size_t>(slotSize)) {
        freeSlots.PushBack(block.get() + offset);
    }
    return true;
}

FramePtr FramePool::Acquire() {
    void* const slot = freeSlots.PopFront();
    if (slot == nullptr) return nullptr;
    auto* const data = static_cast<std::uint8_t*>(slot) + sizeof(VideoFrame);
    return FramePtr(new (slot) VideoFrame(this, data, capacity));
}

void FrameReturner::operator()(VideoFrame* frame) const noexcept {
    FramePool* const pool = frame->pool;
    frame->~VideoFrame();
    pool->freeSlots.PushBack(frame);
}

}  // namespace marvolen
