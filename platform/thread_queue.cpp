#include "platform/thread_queue.h"

namespace marvolen {

bool ThreadQueue::Post(const ThreadMessage& message) {
    const std::lock_guard guard(mutex);
    if (quitting || count == kCapacity) return false;
    ring[(first + count) % kCapacity] = message;
    ++count;
    posted.notify_one();
    return true;
}

void ThreadQueue::Quit() {
    const std::lock_guard guard(mutex);
    quitting = true;
    posted.notify_all();
}

bool ThreadQueue::Wait(ThreadMessage& message) {
    std::unique_lock guard(mutex);
    posted.wait(guard, [this] { return count > 0 || quitting; });
    if (count == 0) return false;
    message = ring[first];
    first = (first + 1) % kCapacity;
    --count;
    return true;
}

}  // namespace marvolen
