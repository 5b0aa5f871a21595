#pragma once

// VideoFrame: one JPEG picture on its way through the system, and FramePtr, the handle that owns
// it.
//
// A frame lives at the start of a slot of a FramePool (net/frame_pool.h), its picture bytes right
// behind it in the same slot. It is made only by FramePool::Acquire, and it is never freed on its
// own: destroying the owning handle puts the slot back into the pool.
//
// A frame is used on its producer's thread only. Who needs the picture later copies the bytes.

#include "platform/system_time.h"

#include <cassert>
#include <cstdint>
#include <memory>
#include <span>

namespace marvolen {

class FramePool;

class VideoFrame {
public:
    VideoFrame(const VideoFrame&) = delete;
    VideoFrame& operator=(const VideoFrame&) = delete;

    // The picture's bytes: Capacity() of them may be written, the first Length() are in use.
    std::uint8_t* Data() { return data; }
    const std::uint8_t* Data() const { return data; }
    std::uint32_t Capacity() const { return capacity; }

    std::uint32_t Length() const { return length; }
    // newLength is at most Capacity().
    void SetLength(std::uint32_t newLength) {
        assert(newLength <= capacity);
        length = newLength;
    }

    // The bytes in use. The view lives as long as the frame.
    std::span<const std::uint8_t> Picture() const { return {data, length}; }

    // The picture's time stamp, or null when it has none. Borrowed; lives as long as the frame.
    // A camera's stamp has day of week 0; none is range-checked.
    const SYSTEMTIME* Time() const { return hasTime != 0 ? &time : nullptr; }
    void SetTime(const SYSTEMTIME& newTime) {
        time = newTime;
        hasTime = 1;
    }

    // The decoded picture's size in pixels; -1 until a pane has decoded it.
    std::int32_t Width() const { return width; }
    std::int32_t Height() const { return height; }
    void SetWidth(std::int32_t newWidth) { width = newWidth; }
    void SetHeight(std::int32_t newHeight) { height = newHeight; }

private:
    friend class FramePool;
    friend struct FrameReturner;

    VideoFrame(FramePool* owningPool, std::uint8_t* slotData, std::uint32_t slotCapacity)
        : pool(owningPool), data(slotData), capacity(slotCapacity) {}
    ~VideoFrame() = default;

    std::int32_t width = -1;
    std::int32_t height = -1;
    FramePool* const pool;
    std::uint8_t* const data;
    const std::uint32_t capacity;
    std::uint32_t length = 0;
    std::int32_t hasTime = 0;
    SYSTEMTIME time{};  // valid only when hasTime is 1
};

// Ends a frame: its slot goes to the back of its pool's free queue.
struct FrameReturner {
    void operator()(VideoFrame* frame) const noexcept;
};

// Owns one frame, or nothing. Moving a handle hands the frame on and leaves the giver empty.
// No handle may outlive its frame's pool.
using FramePtr = std::unique_ptr<VideoFrame, FrameReturner>;

}  // namespace marvolen
