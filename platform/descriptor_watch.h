#pragma once

// DescriptorWatch: calls back on the interface thread while a descriptor is ready.
//
// Level-triggered: what the callback leaves unread calls it again in a later turn of the event
// loop. A watch may be destroyed or disabled at any time, also by its own callback, and never calls
// back afterwards. Disabled, it costs nothing.

#include <functional>

namespace marvolen {

class DescriptorWatch {
public:
    enum class Readiness { Read, Write };

    // Watches descriptor, which stays the caller's and is closed only after the watch has been
    // destroyed or disabled. Starts enabled.
    DescriptorWatch(int descriptor, Readiness readiness, std::function<void()> ready);
    ~DescriptorWatch();
    DescriptorWatch(const DescriptorWatch&) = delete;
    DescriptorWatch& operator=(const DescriptorWatch&) = delete;

    void Disable();

private:
    class Notifier;
    Notifier* const notifier;  // destroys itself once it isn't running any more
};

}  // namespace marvolen
