#pragma once

// A live pane in a dialog, with a decoder that can be held and a receiver behind the pane.

#include "display/video_pane.h"
#include "net/frame_pool.h"
#include "platform/dialog.h"
#include "tests/display/gated_decoder.h"
#include "tests/support/event_loop.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace marvolen::test {

// Keeps what reaches it.
class RecordingDialog : public CDialog {
public:
    struct Message {
        std::uint32_t message = 0;
        WPARAM wParam = 0;
        LPARAM lParam = 0;
        bool operator==(const Message&) const = default;
    };
    std::vector<Message> messages;
    int mouseMoves = 0;

protected:
    void OnMessage(std::uint32_t message, WPARAM wParam, LPARAM lParam) override {
        messages.push_back({message, wParam, lParam});
    }
    void mouseMoveEvent(QMouseEvent*) override { ++mouseMoves; }
};

class CountingReceiver : public FrameReceiver {
public:
    void Deliver(FramePtr) override { ++frames; }
    int frames = 0;
};

class PaneTest : public ::testing::Test {
protected:
    static constexpr int kWidth = 360;
    static constexpr int kHeight = 100;
    static constexpr int kPaneId = 1010;

    void SetUp() override {
        ASSERT_TRUE(pool.Init(kFrameCapacity, kFrameCount));
        dialog = std::make_unique<RecordingDialog>();
        dialog->resize(500, 300);
        pane = new VideoPane(dialog.get(), decoder.Function());
        dialog->AddControl(pane, kPaneId, QStringLiteral("NET.3"));
        pane->index = 2;
        pane->setGeometry(0, 0, kWidth, kHeight);
        pane->SetNext(&behind);
        dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get(), kPatience));
        pane->SetStatus(0, PANE_SELECTED);  // the dialog gave its only control the focus
        ASSERT_TRUE(pane->Open("NET.3", 0));
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

    // The pane as it is on the screen, in device-independent pixels.
    QImage Picture() { return pane->grab().toImage().scaled(pane->size()); }

    bool VideoIs(const QColor& colour) {
        const QImage image = Picture();
        for (int y = kStripHeight; y < image.height() - kFrameWidth; ++y) {
            for (int x = kFrameWidth; x < image.width() - kFrameWidth; ++x) {
                if (!Resembles(image.pixel(x, y), colour)) return false;
            }
        }
        return true;
    }

    // Delivers a picture until it is on the screen.
    bool Show(const Bytes& jpeg, const QColor& colour) {
        return WaitUntil([&] {
            Deliver(jpeg);
            return VideoIs(colour);
        });
    }

    const Bytes red = PlainJpeg(Qt::red);
    const Bytes green = PlainJpeg(Qt::green);

    GatedDecoder decoder;
    FramePool pool;
    CountingReceiver behind;
    std::unique_ptr<RecordingDialog> dialog;
    VideoPane* pane = nullptr;  // the dialog's
};

}  // namespace marvolen::test
