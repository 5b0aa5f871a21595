// Shows that pictures on their way from the socket over the pane into the record file cost no
// allocation on the interface thread, and that they stay in the slot they were received into.
// Replaces the global allocation functions, so it is a program of its own.

#include "display/video_pane.h"
#include "net/net_event_owner.h"
#include "record/channel_recorder.h"
#include "tests/app/cameras.h"
#include "tests/support/event_loop.h"

#include <cstdlib>
#include <new>
#include <utility>
#include <vector>

namespace {
thread_local std::size_t t_allocations = 0;
}  // namespace

void* operator new(std::size_t size) {
    ++t_allocations;
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    ++t_allocations;
    return std::malloc(size == 0 ? 1 : size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace marvolen {
namespace {

constexpr int kWarmUp = 20;  // pictures after which everything has been made
constexpr int kPictures = 200;

// Stands before the pane and notes the allocations until each picture.
class Meter final : public FrameReceiver {
public:
    std::vector<std::size_t> allocations;

    void Deliver(FramePtr frame) override {
        if (allocations.size() < kPictures) allocations.push_back(t_allocations);
        Forward(std::move(frame));
    }
};

class NoOwner final : public NetEventOwner {
    void PostNetEvent(int, ChannelInfo*) override {}
};

TEST(StreamingAllocation, FromTheSocketToTheRecordFileThereIsNone) {
    const test::TemporaryFolder folder;
    CameraServer server({.channelCount = 1, .period = std::chrono::milliseconds(2)},
                        std::make_shared<test::SmallPicture>());
    ASSERT_TRUE(server.Start());
    ChannelInfo info = FactoryChannelTable()[0];
    SetFieldText(info.host, "127.0.0.1");
    SetFieldText(info.port, std::to_string(server.Port(0)));

    QWidget window;
    VideoPane pane(&window);
    ASSERT_TRUE(pane.Open("Gate", 0));
    NoOwner owner;
    Meter meter;
    meter.allocations.reserve(kPictures);
    ChannelRecorder recorder;
    ASSERT_TRUE(recorder.Open(&info, &meter, &owner));
    pane.SetNext(meter.TakeNext());
    meter.SetNext(&pane);
    ASSERT_TRUE(recorder.Connect());
    recorder.SetRecording(true);
    EXPECT_TRUE(test::WaitUntil([&] { return meter.allocations.size() == kPictures; }));
    EXPECT_EQ(meter.allocations.back(), meter.allocations[kWarmUp]);
    recorder.Close(CloseFlag::Ordered);
    pane.TakeNext();
    EXPECT_GT(std::filesystem::file_size("drive_c/chl01.dbt"), kPictures * 100);
}

}  // namespace
}  // namespace marvolen
