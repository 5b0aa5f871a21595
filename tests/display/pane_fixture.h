#pragma once

// What the tests of panes share: a decoder that can be held in the middle of a picture, and a live
// pane in a dialog.

#include "display/pane_geometry.h"
#include "display/video_pane.h"
#include "net/frame_pool.h"
#include "platform/dialog.h"
#include "tests/support/event_loop.h"

#include <QBuffer>
#include <QImage>

#include <condition_variable>
#include <mutex>
#include <sched.h>

namespace marvolen::test {

using Bytes = std::vector<std::uint8_t>;

inline Bytes ToJpeg(const QImage& image) {
    QBuffer buffer;
    image.save(&buffer, "JPEG", 100);
    return Bytes(buffer.data().begin(), buffer.data().end());
}

// A JPEG picture of one colour.
inline Bytes PlainJpeg(const QColor& colour) {
    QImage image(32, 24, QImage::Format_RGB32);
    image.fill(colour);
    return ToJpeg(image);
}

// Whether a pixel has this primary colour as far as JPEG keeps it: to a sixteenth.
inline bool Resembles(QRgb pixel, const QColor& colour) {
    return ((pixel ^ colour.rgb()) & 0xF0F0F0) == 0;
}

// Must outlive the pane or thread that uses it.
class GatedDecoder {
public:
    struct Decode {
        Bytes buffer;          // all it was given, from a picture's first byte on
        int formerWidth;       // of the picture it is to replace
        int policy;            // the scheduling policy of its thread when it began
        int policyAtEnd = -1;  // when it ended

        bool IsOf(const Bytes& jpeg) const {
            return jpeg.size() <= buffer.size() &&
                   std::equal(jpeg.begin(), jpeg.end(), buffer.begin());
        }
    };

    DecodeFunction Function() {
        return [this](DibImage& picture, std::span<const std::uint8_t> jpeg, const PaneView&) {
            std::unique_lock guard(mutex);
            decodes.push_back({{jpeg.begin(), jpeg.end()}, picture.Width(), sched_getscheduler(0)});
            Decode& own = decodes.back();
            released.wait(guard, [&] { return held.empty() || !own.IsOf(held); });
            const int result = picture.DecodeJpeg(jpeg.data(), jpeg.size(), JpegPath::Plain);
            own.policyAtEnd = sched_getscheduler(0);
            return result == 1;
        };
    }

    // Offers a picture until its decode has begun, where it is held until Release: so no further
    // one can be under way. False when it never begins.
    template <typename Offer>
    bool HoldIn(const Bytes& jpeg, Offer offer) {
        const auto before = Begun(jpeg);
        SetHeld(jpeg);
        return WaitUntil([&] { return offer(jpeg), Begun(jpeg) > before; });
    }
    void Release() { SetHeld({}); }

    // Every decode begun; how many of them were of one picture.
    std::vector<Decode> Decodes() {
        const std::lock_guard guard(mutex);
        return decodes;
    }
    std::ptrdiff_t Begun(const Bytes& jpeg) {
        const auto all = Decodes();
        return std::count_if(all.begin(), all.end(), [&](auto& each) { return each.IsOf(jpeg); });
    }

private:
    void SetHeld(const Bytes& jpeg) {
        const std::lock_guard guard(mutex);
        held = jpeg;
        released.notify_all();
    }

    std::mutex mutex;
    std::condition_variable released;
    Bytes held;                   // guarded by mutex
    std::vector<Decode> decodes;  // guarded by mutex
};

// The pane's window and the receiver behind it: keeps what reaches it.
class PaneWindow : public CDialog, public FrameReceiver {
public:
    std::vector<std::pair<std::uint32_t, WPARAM>> messages;
    int mouseMoves = 0;
    int frames = 0;

    void Deliver(FramePtr) override { ++frames; }

protected:
    void OnMessage(std::uint32_t message, WPARAM wParam, LPARAM) override {
        messages.emplace_back(message, wParam);
    }
    void mouseMoveEvent(QMouseEvent*) override { ++mouseMoves; }
};

class PaneTest : public ::testing::Test {
protected:
    static constexpr QSize kSize{360, 100};
    static constexpr SYSTEMTIME kQuarterPast{2004, 2, 0, 29, 8, 15, 0, 0};

    void SetUp() override {
        ASSERT_TRUE(pool.Init(kFrameCapacity, kFrameCount));
        dialog->resize(500, 300);
        pane->index = 2;
        pane->resize(kSize);
        pane->SetNext(dialog.get());
        dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get(), kPatience));
        pane->SetStatus(0, PANE_SELECTED);  // the dialog gave its only control the focus
        ASSERT_TRUE(pane->Open("", 0));
    }
    void TearDown() override { decoder.Release(); }

    void Deliver(const Bytes& jpeg, const SYSTEMTIME* time = nullptr) {
        FramePtr frame = pool.Acquire();
        ASSERT_TRUE(frame);
        std::copy(jpeg.begin(), jpeg.end(), frame->Data());
        frame->SetLength(static_cast<std::uint32_t>(jpeg.size()));
        if (time) frame->SetTime(*time);
        pane->Deliver(std::move(frame));
    }

    bool VideoIs(const QColor& colour) {
        const QImage image = pane->grab().toImage().scaled(pane->size());
        for (int y = kStripHeight; y < image.height() - kFrameWidth; ++y) {
            for (int x = kFrameWidth; x < image.width() - kFrameWidth; ++x) {
                if (!Resembles(image.pixel(x, y), colour)) return false;
            }
        }
        return true;
    }

    // Puts a picture of one colour on the screen. Afterwards none is under way.
    bool Show(const QColor& colour, const SYSTEMTIME* time = nullptr) {
        const auto deliver = [&](const Bytes& jpeg) { Deliver(jpeg, time); };
        const bool begun = decoder.HoldIn(PlainJpeg(colour), deliver);
        decoder.Release();
        const auto ended = [this] { return decoder.Decodes().back().policyAtEnd != -1; };
        return begun && WaitUntil([&] { return ended() && VideoIs(colour); });
    }

    GatedDecoder decoder;
    FramePool pool;
    std::unique_ptr<PaneWindow> dialog = std::make_unique<PaneWindow>();
    VideoPane* pane = new VideoPane(dialog.get(), decoder.Function());  // the dialog's
};

}  // namespace marvolen::test
