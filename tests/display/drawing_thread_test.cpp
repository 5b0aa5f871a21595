#include "display/drawing_thread.h"

#include "tests/display/gated_decoder.h"

#include <gtest/gtest.h>
#include <optional>

namespace marvolen {
namespace {

using namespace test;

class DrawingThreadTest : public ::testing::Test {
protected:
    void SetUp() override {
        Make(decoder.Function());
        thread->SetView({true, 20, 10});
        ASSERT_TRUE(thread->Open());
    }

    void Make(DecodeFunction function) {
        thread.emplace(DrawingThread::Events{[this] { Count(images); }, [this] { Count(exits); }},
                       std::move(function));
    }

    void Count(int& counter) {
        const std::lock_guard guard(mutex);
        ++counter;
        changed.notify_all();
    }
    int Images() {
        const std::lock_guard guard(mutex);
        return images;
    }
    bool WaitForImages(int count) {
        std::unique_lock guard(mutex);
        return changed.wait_for(guard, std::chrono::milliseconds(kPatience),
                                [&] { return images >= count; });
    }

    // Offers a picture until the thread is free to take it.
    void Queue(const Bytes& jpeg) {
        while (!thread->QueuePicture(jpeg)) std::this_thread::yield();
    }
    // Offers pictures until one is taken: everything before it is over then.
    void WaitUntilFree() { Queue({}); }

    // The colour of the current image, black for none.
    QColor Shown() {
        QColor colour = Qt::black;
        thread->DrawImage([&](const ScreenImage& image) { colour = image.pixels.at(0); });
        return colour;
    }

    const Bytes red = PlainJpeg(Qt::red);
    const Bytes green = PlainJpeg(Qt::green);

    std::mutex mutex;
    std::condition_variable changed;
    int images = 0;  // guarded by mutex
    int exits = 0;   // guarded by mutex
    GatedDecoder decoder;
    std::optional<DrawingThread> thread;
};

TEST_F(DrawingThreadTest, DecodesTheWholeBufferWhichGrowsByKilobytesAndNeverShrinks) {
    const struct {
        std::size_t length;
        std::size_t decoded;
    } steps[] = {{5, 1024}, {1023, 1024}, {1024, 1024}, {1025, 2048}, {2048, 2048}, {10, 2048}};
    int count = 0;
    for (const auto& step : steps) {
        Bytes bytes(step.length);
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = static_cast<std::uint8_t>(i * 7 + step.length);
        }
        Queue(bytes);
        ASSERT_TRUE(decoder.WaitForEnds(++count));
        const Bytes received = decoder.Received();
        ASSERT_EQ(received.size(), step.decoded);
        EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), received.begin()));
        if (step.length + 2 <= step.decoded) {
            EXPECT_EQ(received[step.length], 0xFF);
            EXPECT_EQ(received[step.length + 1], 0xD9);
        }
    }
}

TEST_F(DrawingThreadTest, SkipsWhatComesWhileItDecodes) {
    decoder.Hold();
    Queue(red);
    ASSERT_TRUE(decoder.WaitForStarts(1));
    EXPECT_FALSE(thread->QueuePicture(green));
    decoder.Release();
    ASSERT_TRUE(WaitForImages(1));
    EXPECT_TRUE(Resembles(Shown().rgb(), Qt::red));
    const Bytes blue = PlainJpeg(Qt::blue);
    Queue(blue);
    ASSERT_TRUE(decoder.WaitForEnds(2));
    const Bytes second = decoder.Received();
    EXPECT_TRUE(std::equal(blue.begin(), blue.end(), second.begin()));
}

TEST_F(DrawingThreadTest, ReportsOnceUntilAcceptedAndShowsTheNewest) {
    Queue(red);
    Queue(green);
    WaitUntilFree();
    EXPECT_EQ(Images(), 1);
    EXPECT_TRUE(Resembles(Shown().rgb(), Qt::green));
    EXPECT_TRUE(thread->AcceptImage());
    EXPECT_FALSE(thread->AcceptImage());
    Queue(red);
    EXPECT_TRUE(WaitForImages(2));
}

TEST_F(DrawingThreadTest, DecodesNothingWhileNotShown) {
    thread->SetView({false, 20, 10});
    Queue(red);
    WaitUntilFree();
    WaitUntilFree();
    EXPECT_EQ(decoder.Starts(), 0);
    EXPECT_EQ(Images(), 0);
    thread->SetView({true, 20, 10});
    Queue(green);
    EXPECT_TRUE(WaitForImages(1));
}

TEST_F(DrawingThreadTest, AnotherViewDropsTheImage) {
    Queue(red);
    ASSERT_TRUE(WaitForImages(1));
    EXPECT_FALSE(thread->SetView({true, 20, 10}));
    EXPECT_TRUE(Resembles(Shown().rgb(), Qt::red));
    EXPECT_TRUE(thread->SetView({true, 21, 10}));
    EXPECT_TRUE(thread->SetView({true, 20, 10}));
    EXPECT_FALSE(thread->AcceptImage());
    EXPECT_EQ(Shown(), QColor(Qt::black));
}

TEST_F(DrawingThreadTest, APictureDecodedAcrossAResizeFitsTheNewSize) {
    decoder.Hold();
    Queue(red);
    ASSERT_TRUE(decoder.WaitForStarts(1));
    thread->SetView({true, 30, 7});
    decoder.Release();
    ASSERT_TRUE(WaitForImages(1));
    EXPECT_TRUE(thread->DrawImage(
        [](const ScreenImage& image) { EXPECT_EQ(image.pixels.size(), 30U * 7U); }));
}

TEST_F(DrawingThreadTest, CloseDoesNotWaitForTheDecodeInProgressButDropsItsPicture) {
    Queue(red);
    ASSERT_TRUE(WaitForImages(1));
    decoder.Hold();
    Queue(green);
    ASSERT_TRUE(decoder.WaitForStarts(2));
    thread->Close();  // would never return if it waited
    decoder.Release();
    WaitUntilFree();
    EXPECT_EQ(decoder.Ends(), 2);
    EXPECT_FALSE(thread->AcceptImage());
    EXPECT_EQ(Shown(), QColor(Qt::black));

    Queue(green);  // taken, but a closed pane decodes nothing
    WaitUntilFree();
    WaitUntilFree();
    EXPECT_EQ(decoder.Starts(), 2);

    ASSERT_TRUE(thread->Open());
    EXPECT_EQ(Shown(), QColor(Qt::black));
    Queue(red);
    WaitUntilFree();
    EXPECT_TRUE(Resembles(Shown().rgb(), Qt::red));
}

TEST_F(DrawingThreadTest, WhatIsClosedAndOpenedDuringADecodeDrawsTheNextPicture) {
    decoder.Hold();
    Queue(red);
    ASSERT_TRUE(decoder.WaitForStarts(1));
    thread->Close();
    ASSERT_TRUE(thread->Open());
    decoder.Release();
    WaitUntilFree();
    Queue(green);
    WaitUntilFree();
    EXPECT_TRUE(Resembles(Shown().rgb(), Qt::green));
}

TEST_F(DrawingThreadTest, NoPictureOfTheTimeBeforeCloseIsEverShown) {
    for (int round = 0; round < 300; ++round) {
        for (int k = 0; k <= round % 3; ++k) thread->QueuePicture(red);
        thread->Close();
        ASSERT_TRUE(thread->Open());
        EXPECT_EQ(Shown(), QColor(Qt::black));
        EXPECT_FALSE(thread->AcceptImage());
    }
    WaitUntilFree();
    EXPECT_EQ(Shown(), QColor(Qt::black));
}

TEST_F(DrawingThreadTest, DestructionWaitsForTheDecodeAndReportsTheThreadsEnd) {
    decoder.Hold();
    Queue(red);
    ASSERT_TRUE(decoder.WaitForStarts(1));
    RunWhileReleasing(decoder, [this] { thread.reset(); });
    EXPECT_EQ(decoder.Ends(), 1);
    EXPECT_EQ(exits, 1);
}

}  // namespace
}  // namespace marvolen
