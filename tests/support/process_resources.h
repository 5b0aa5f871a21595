#pragma once

// What this process holds, to show that nothing is left behind.

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace marvolen::test {

inline std::size_t OpenDescriptors() {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

inline std::size_t Threads() {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator("/proc/self/task"), {}));
}

}  // namespace marvolen::test
