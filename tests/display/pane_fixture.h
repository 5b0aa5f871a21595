#pragma once

// A live pane in a dialog, with a decoder that can be held and a receiver behind the pane.

#include "display/pane_geometry.h"
#include "display/video_pane.h"
#include "net/frame_pool.h"
#include "platform/dialog.h"
#include "tests/display/gated_decoder.h"

namespace marvolen::test {

// Keeps what reaches it.
class RecordingDialog : public CDialog, public FrameReceiver {
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

    // Delivers a picture until its decode has begun, where it is held: so no further one can wait.
    bool BeginDecoding(const Bytes& jpeg, const SYSTEMTIME* time = nullptr) {
        const int before = decoder.Begun(jpeg);
        decoder.Hold(jpeg);
        return WaitUntil([&] { return Deliver(jpeg, time), decoder.Begun(jpeg) > before; });
    }

    // Puts a picture of one colour on the screen. Afterwards none is under way.
    bool Show(const QColor& colour, const SYSTEMTIME* time = nullptr) {
        const bool begun = BeginDecoding(PlainJpeg(colour), time);
        decoder.Release();
        return begun && WaitUntil([&] {
                   return decoder.Decodes().back().policyAtEnd != -1 && VideoIs(colour);
               });
    }

    GatedDecoder decoder;
    FramePool pool;
    std::unique_ptr<RecordingDialog> dialog = std::make_unique<RecordingDialog>();
    VideoPane* pane = new VideoPane(dialog.get(), decoder.Function());  // the dialog's
};

}  // namespace marvolen::test
