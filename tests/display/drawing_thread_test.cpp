#include "display/drawing_thread.h"

#include "platform/thread_priority.h"
#include "tests/display/pane_fixture.h"

#include <atomic>
#include <gtest/gtest.h>
#include <optional>

namespace marvolen {
namespace {

using namespace test;

constexpr PaneView kView{true, 20, 10};

class DrawingThreadTest : public ::testing::Test {
protected:
    void SetUp() override {
        thread.emplace([this] { ++images; }, decoder.Function());
        thread->SetView(kView);
        ASSERT_TRUE(thread->Open());
    }
    void TearDown() override { decoder.Release(); }

    // Offers a picture until the thread is free to take it: what came before is over then.
    void Queue(const Bytes& jpeg) {
        ASSERT_TRUE(WaitUntil([&] { return thread->QueuePicture(jpeg); }));
    }
    void WaitUntilFree() { Queue({}); }

    // Returns in the middle of the picture's decode.
    void BeginDecoding(const Bytes& jpeg) {
        ASSERT_TRUE(decoder.HoldIn(jpeg, [&](auto& bytes) { thread->QueuePicture(bytes); }));
    }

    // The colour and width of the current image, such as "red 20"; nothing when there is none.
    std::string Shown() {
        std::string shown;
        thread->DrawImage([&](const ScreenImage& image) {
            const bool isRed = Resembles(image.pixels.at(0), Qt::red);
            const bool isGreen = Resembles(image.pixels.at(0), Qt::green);
            shown = (isRed ? "red " : isGreen ? "green " : "") + std::to_string(image.width);
        });
        return shown;
    }

    const Bytes red = PlainJpeg(Qt::red);
    const Bytes green = PlainJpeg(Qt::green);

    std::atomic<int> images = 0;
    GatedDecoder decoder;
    std::optional<DrawingThread> thread;
};

TEST_F(DrawingThreadTest, DecodesTheWholeBufferWhichGrowsByKilobytesAndNeverShrinks) {
    const std::pair<std::size_t, std::size_t> steps[] = {{5, 1024},    {1023, 1024}, {1024, 1024},
                                                         {1025, 2048}, {2048, 2048}, {10, 2048}};
    for (const auto& [length, decoded] : steps) {
        Bytes bytes(length, static_cast<std::uint8_t>(length / 4));
        Queue(bytes);
        if (length + 2 <= decoded) bytes.insert(bytes.end(), {0xFF, 0xD9});
        ASSERT_TRUE(WaitUntil([&] { return decoder.Begun(bytes) == 1; })) << length;
        EXPECT_EQ(decoder.Decodes().back().buffer.size(), decoded);
    }
}

TEST_F(DrawingThreadTest, SkipsWhatComesWhileItDecodesAndKeepsTheLastGoodPicture) {
    BeginDecoding(red);
    EXPECT_FALSE(thread->QueuePicture(green));
    decoder.Release();
    WaitUntilFree();  // with bytes that are no picture
    WaitUntilFree();
    EXPECT_FALSE(thread->SetView(kView));
    EXPECT_EQ(Shown(), "red 20");
    Queue(green);
    WaitUntilFree();
    EXPECT_EQ(Shown(), "green 20");
    EXPECT_EQ(images, 1) << "told again before the first was accepted";
    EXPECT_TRUE(thread->AcceptImage());
    EXPECT_FALSE(thread->AcceptImage());
    Queue(red);
    EXPECT_TRUE(WaitUntil([this] { return images == 2; }));
}

// No change waits for the decode, or it would never return.
TEST_F(DrawingThreadTest, ChangesInTheMiddleOfADecode) {
    const struct {
        const char* name;
        std::function<void()> change;
        const char* late;  // what the picture becomes
        int replaced;      // width of the picture that the next one replaces, -1: isn't decoded
    } cases[] = {
        {"resize",
         [this] {
             thread->SetView({true, 30, 7});
         },
         "green 30", 32},
        {"hide",
         [this] {
             thread->SetView({false, 20, 10});
         },
         "", -1},
        {"Open", [this] { thread->Open(); }, "", 32},
        {"Close", [this] { thread->Close(); }, "", -1},
        {"Close and Open", [this] { thread->Close(), thread->Open(); }, "", 0},
    };
    Bytes late = green;
    for (const auto& [name, change, shownLate, replaced] : cases) {
        SCOPED_TRACE(name);
        thread->SetView(kView);
        ASSERT_TRUE(thread->Open());
        Queue(red);
        WaitUntilFree();
        EXPECT_EQ(Shown(), "red 20");
        late.push_back(0);  // to be told from those of the cases before
        BeginDecoding(late);
        change();
        EXPECT_EQ(Shown(), "");
        EXPECT_FALSE(thread->AcceptImage());
        decoder.Release();
        WaitUntilFree();
        EXPECT_EQ(Shown(), shownLate);
        WaitUntilFree();
        const std::size_t next = decoder.Decodes().size();
        Queue(red);
        WaitUntilFree();
        const auto decodes = decoder.Decodes();
        EXPECT_EQ(decodes.size() > next ? decodes[next].formerWidth : -1, replaced);
    }
}

TEST_F(DrawingThreadTest, RunsAtIdlePriorityUntilItsEndForWhichDestructionWaits) {
    bool mayLeaveIdle = false;
    std::thread([&] {
        SetThreadPriority(ThreadPriority::Idle);
        SetThreadPriority(ThreadPriority::Normal);
        mayLeaveIdle = sched_getscheduler(0) == SCHED_OTHER;
    }).join();
    BeginDecoding(red);
    thread->BeginEnd();
    EXPECT_FALSE(thread->Open() || thread->QueuePicture(red));
    std::thread releaser([this] { decoder.Release(); });
    thread.reset();
    releaser.join();
    EXPECT_EQ(decoder.Decodes().at(0).policy, SCHED_IDLE);
    EXPECT_EQ(decoder.Decodes().at(0).policyAtEnd, mayLeaveIdle ? SCHED_OTHER : SCHED_IDLE);
    EXPECT_EQ(images, 0);
}

}  // namespace
}  // namespace marvolen
