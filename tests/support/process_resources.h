#pragma once

// What this process holds, to show that nothing is left behind.

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <thread>

namespace marvolen::test {

inline std::size_t OpenDescriptors() {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

inline std::size_t Threads() {
    // With the first thread of a program a sanitizer may start one of its own, which then stays.
    static const bool started = (std::thread([] {}).join(), true);
    static_cast<void>(started);
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator("/proc/self/task"), {}));
}

}  // namespace marvolen::test
