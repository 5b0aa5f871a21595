#pragma once

// Counts what a test program takes from the free store.

#include <cstdint>

namespace marvolen::test {

// Calls of operator new so far, by the calling thread and by all threads.
std::uint64_t AllocationsOfThisThread();
std::uint64_t AllocationsOfAllThreads();

}  // namespace marvolen::test
