// Shows that pictures on their way from the socket to the end of the chain cost no allocation and
// no copy. Counts what goes through operator new; the toolkit's own memory isn't ours to count.

#include "net/frame_receiver.h"
#include "net/stream_source.h"
#include "tests/net/channel_fixture.h"

#include <atomic>
#include <cstdlib>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <utility>

namespace {
std::atomic<std::size_t> g_allocations = 0;
}  // namespace

void* operator new(std::size_t size) {
    ++g_allocations;
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace marvolen {
namespace {

constexpr int kPictures = 1000;

// Passes frames on, looking at where their bytes are.
class Middle : public FrameReceiver {
public:
    const std::uint8_t* data = nullptr;

    void Deliver(FramePtr frame) override {
        data = frame->Data();
        Forward(std::move(frame));
    }
};

// Counts frames, the allocations between the first and the last, and the slots they came in.
class Tail : public FrameReceiver {
public:
    explicit Tail(const Middle& before) : middle(before) {}

    int pictures = 0;
    std::size_t bytes = 0;
    std::size_t allocations = 0;
    bool moved = false;

    void Deliver(FramePtr frame) override {
        if (pictures++ == 0) allocationsAtFirst = g_allocations;
        allocations = g_allocations - allocationsAtFirst;
        bytes += frame->Length();
        moved = moved || frame->Data() != middle.data;
    }

private:
    const Middle& middle;
    std::size_t allocationsAtFirst = 0;
};

}  // namespace
}  // namespace marvolen
