#pragma once

// FramePool: the fixed number of slots a producer's pictures live in.
//
// All slots are carved from one allocation. Free slots wait in a first-in first-out queue; taking
// and returning one only moves an address, nothing is allocated after Init. The queue is threaded
// through the free slots themselves.
//
// A pool serves one producer and is used on that producer's thread only. It must outlive every
// frame taken from it.

#include "net/video_frame.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace marvolen {

// What every producer of the system asks its pool for.
inline constexpr std::uint32_t kFrameCapacity = 204800;  // bytes of one picture
inline constexpr std::uint32_t kFrameCount = 10;

class FramePool {
public:
    FramePool() = default;
    ~FramePool();
    FramePool(const FramePool&) = delete;
    FramePool& operator=(const FramePool&) = delete;

    // Makes count slots for pictures of at most slotCapacity bytes and queues them as free, lowest
    // address first. False when memory doesn't suffice or the pool has been initialised before; a
    // pool whose first Init failed hands out nothing.
    bool Init(std::uint32_t slotCapacity, std::uint32_t count);

    // A fresh frame (no size, no time, length 0) in the slot that has been free for longest. Empty
    // when no slot is free. Never waits, never allocates.
    FramePtr Acquire();

private:
    friend struct FrameReturner;

    struct FreeSlot {
        FreeSlot* next;
    };

    // First in, first out.
    class SlotQueue {
    public:
        void PushBack(void* slot);
        void* PopFront();  // null when empty

    private:
        FreeSlot* front = nullptr;
        FreeSlot* back = nullptr;
    };

    SlotQueue freeSlots;
    std::unique_ptr<std::byte[]> block;  // null until Init has succeeded
    std::uint32_t capacity = 0;
};

}  // namespace marvolen
