#include "display/drawing_thread.h"

#include "platform/thread_priority.h"
#include "tests/display/gated_decoder.h"

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

    // Hands a picture over and returns in the middle of its decode.
    void BeginDecoding(const Bytes& jpeg) {
        decoder.Hold(jpeg);
        Queue(jpeg);
        ASSERT_TRUE(WaitUntil([&] { return decoder.Begun(jpeg) > 0; }));
    }

    // The colour and width of the current image, black and 0 for none.
    std::pair<QColor, int> Shown() {
        std::pair<QColor, int> shown(Qt::black, 0);
        thread->DrawImage([&](const ScreenImage& image) {
            for (const QColor colour : {Qt::red, Qt::green, Qt::blue}) {
                if (Resembles(image.pixels.at(0), colour)) shown = {colour, image.width};
            }
        });
        return shown;
    }

    const std::pair<QColor, int> nothing{Qt::black, 0};
    const Bytes red = PlainJpeg(Qt::red);
    const Bytes blue = PlainJpeg(Qt::blue);

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
    EXPECT_FALSE(thread->QueuePicture(blue));
    decoder.Release();
    WaitUntilFree();  // with bytes that are no picture
    WaitUntilFree();
    EXPECT_FALSE(thread->SetView(kView));
    EXPECT_EQ(Shown(), std::pair(QColor(Qt::red), 20));
    Queue(blue);
    WaitUntilFree();
    EXPECT_EQ(Shown(), std::pair(QColor(Qt::blue), 20));
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
        int late;      // width of the image that the picture becomes, 0 when it is dropped
        bool draws;    // further pictures
        int replaced;  // width of the picture that the next one takes the place of
    } cases[] = {
        {"resize",
         [this] {
             thread->SetView({true, 30, 7});
         },
         30, true, 32},
        {"hide",
         [this] {
             thread->SetView({false, 20, 10});
         },
         0, false, 0},
        {"Open", [this] { thread->Open(); }, 0, true, 32},
        {"Close", [this] { thread->Close(); }, 0, false, 0},
        {"Close and Open", [this] { thread->Close(), thread->Open(); }, 0, true, 0},
    };
    Bytes late = PlainJpeg(Qt::green);
    for (const auto& [name, change, lateWidth, draws, replaced] : cases) {
        SCOPED_TRACE(name);
        thread->SetView(kView);
        ASSERT_TRUE(thread->Open());
        Queue(red);
        WaitUntilFree();
        EXPECT_EQ(Shown(), std::pair(QColor(Qt::red), 20));
        late.push_back(0);  // to be told from those of the cases before
        BeginDecoding(late);
        change();
        EXPECT_EQ(Shown(), nothing);
        EXPECT_FALSE(thread->AcceptImage());
        decoder.Release();
        WaitUntilFree();
        EXPECT_EQ(Shown(), lateWidth > 0 ? std::pair(QColor(Qt::green), lateWidth) : nothing);
        EXPECT_EQ(thread->AcceptImage(), lateWidth > 0);

        WaitUntilFree();
        const std::size_t next = decoder.Decodes().size();
        const int before = decoder.Begun(blue);
        Queue(blue);
        WaitUntilFree();
        WaitUntilFree();
        EXPECT_EQ(decoder.Begun(blue) - before, draws ? 1 : 0);
        if (!draws) continue;
        EXPECT_EQ(decoder.Decodes()[next].formerWidth, replaced);
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
    ASSERT_EQ(decoder.Decodes().size(), 1U);
    EXPECT_EQ(decoder.Decodes()[0].policy, SCHED_IDLE);
    EXPECT_EQ(decoder.Decodes()[0].policyAtEnd, mayLeaveIdle ? SCHED_OTHER : SCHED_IDLE);
    EXPECT_EQ(images, 0);
}

}  // namespace
}  // namespace marvolen
