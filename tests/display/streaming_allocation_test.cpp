// Steady streaming takes nothing from the free store.

#include "tests/display/pane_fixture.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

thread_local std::uint64_t allocationsOfThisThread = 0;
std::atomic<std::uint64_t> allocationsOfAllThreads{0};

void* Allocate(std::size_t size) noexcept {
    ++allocationsOfThisThread;
    allocationsOfAllThreads.fetch_add(1, std::memory_order_relaxed);
    return std::malloc(size > 0 ? size : 1);
}

}  // namespace

void* operator new(std::size_t size) {
    if (void* block = Allocate(size)) return block;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace marvolen {
namespace {

using namespace test;

class StreamingAllocationTest : public PaneTest {};

TEST(DrawingThreadAllocation, HandingOverAndStretchingAllocateNothingOnEitherThread) {
    const Bytes jpeg = PlainJpeg(Qt::red);
    int decodes = 0;  // the drawing thread's
    DrawingThread thread({[] {}, [] {}}, [&decodes](DibImage& picture, const std::uint8_t* bytes,
                                                    std::size_t count) {
        return ++decodes == 1 ? picture.DecodeJpeg(bytes, count) : 1;
    });
    thread.SetView({true, 20, 10});
    ASSERT_TRUE(thread.Open());
    const auto stream = [&](int pictures) {
        for (int k = 0; k < pictures; ++k) {
            while (!thread.QueuePicture(jpeg)) std::this_thread::yield();
            thread.AcceptImage();
        }
    };
    stream(4);  // until both images have their size
    const std::uint64_t before = allocationsOfAllThreads;
    stream(1000);
    EXPECT_EQ(allocationsOfAllThreads, before);
}

}  // namespace
}  // namespace marvolen
