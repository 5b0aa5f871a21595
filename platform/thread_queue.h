#pragma once

// A thread's message queue: other threads post, the owning thread waits. A queue is made before its
// thread starts, so that no post can come too early.

#include "platform/messages.h"

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>

namespace marvolen {

struct ThreadMessage {
    std::uint32_t message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
};

class ThreadQueue {
public:
    // Most messages that can wait. The queue never allocates.
    static constexpr std::size_t kCapacity = 64;

    // Any thread: puts a message at the back. False when the queue is full or told to quit.
    bool Post(const ThreadMessage& message);

    // Any thread: makes Wait return false once the messages before this call are taken.
    void Quit();

    // The owning thread: waits for the next message and takes it. False when the queue was told to
    // quit and is empty.
    bool Wait(ThreadMessage& message);

private:
    std::mutex mutex;
    std::condition_variable posted;
    // Guarded by mutex.
    std::array<ThreadMessage, kCapacity> ring;
    std::size_t first = 0;
    std::size_t count = 0;
    bool quitting = false;
};

}  // namespace marvolen
