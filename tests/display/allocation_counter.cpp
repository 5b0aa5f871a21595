#include "tests/display/allocation_counter.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

thread_local std::uint64_t ofThisThread = 0;
std::atomic<std::uint64_t> ofAllThreads{0};

}  // namespace

void* operator new(std::size_t size) {
    ++ofThisThread;
    ofAllThreads.fetch_add(1, std::memory_order_relaxed);
    if (void* block = std::malloc(size > 0 ? size : 1)) return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace marvolen::test {

std::uint64_t AllocationsOfThisThread() {
    return ofThisThread;
}

std::uint64_t AllocationsOfAllThreads() {
    return ofAllThreads.load(std::memory_order_relaxed);
}

}  // namespace marvolen::test
