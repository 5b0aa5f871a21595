// The pane that decodes on the delivering thread.

#include "display/preview_pane.h"

#include "net/frame_pool.h"
#include "platform/dialog.h"
#include "platform/ui_activity.h"
#include "tests/display/pane_fixture.h"

namespace marvolen {
namespace {

using namespace test;

class PreviewPaneTest : public ::testing::Test, public FrameReceiver {
protected:
    void SetUp() override {
        ASSERT_TRUE(pool.Init(kFrameCapacity, 1));
        dialog.resize(400, 200);
        pane->resize(360, 100);
        pane->SetNext(this);
        dialog.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog, kPatience));
        IsUiBusy();  // looks for input from now on
    }
    void Deliver(FramePtr frame) override { size = {frame->Width(), frame->Height()}; }

    // Delivers a picture; its size as the pane wrote it into the frame.
    QSize Show(const Bytes& jpeg, const SYSTEMTIME* time = nullptr) {
        FramePtr frame = pool.Acquire();
        std::copy(jpeg.begin(), jpeg.end(), frame->Data());
        frame->SetLength(static_cast<std::uint32_t>(jpeg.size()));
        if (time) frame->SetTime(*time);
        size = QSize();
        static_cast<FrameReceiver*>(pane)->Deliver(std::move(frame));
        return size;
    }
    bool Is(const QColor& colour) {
        return Resembles(pane->grab().toImage().pixel(pane->width() / 2, 60), colour);
    }

    static constexpr QSize kSkipped{-1, -1};
    static constexpr QSize kDecoded{32, 24};
    static constexpr SYSTEMTIME kTime{2026, 11, 0, 23, 1, 52, 22, 0};
    const Bytes red = PlainJpeg(Qt::red);
    CDialog dialog;
    PreviewPane* const pane = new PreviewPane(&dialog);
    FramePool pool;
    QSize size;
};

TEST_F(PreviewPaneTest, DecodesEverythingInPlayback) {
    ASSERT_TRUE(pane->Open("Gate", 0, PreviewPane::WhenBusy::kDecode));
    EXPECT_TRUE(Is(Qt::black));
    EXPECT_EQ(Show(red, &kTime), kDecoded);
    EXPECT_EQ(Show(PlainJpeg(Qt::green), &kTime), kDecoded) << "the same time again";
    EXPECT_EQ(pane->GetTimeText(), "2026/11/23 01:52:22");
    EXPECT_EQ(Show({0xFF, 0xD8, 0xFF, 0xD9}), kSkipped);
    EXPECT_TRUE(Is(Qt::green)) << "what doesn't decode leaves the picture";
    pane->hide();
    EXPECT_EQ(Show(red), kDecoded);
    pane->show();
    PostCommand(dialog, [] {});
    EXPECT_EQ(Show(red), kDecoded);
    pane->resize(300, 90);
    EXPECT_TRUE(Is(Qt::red)) << "restored at any size";
    pane->Close();
    EXPECT_TRUE(Is(Qt::black));
    ASSERT_TRUE(pane->Open("Yard", 0, PreviewPane::WhenBusy::kDecode));
    EXPECT_TRUE(Is(Qt::black));
}

TEST_F(PreviewPaneTest, SkipsWhatIsntWorthItInAPreview) {
    ASSERT_TRUE(pane->Open("Gate", 0, PreviewPane::WhenBusy::kSkip));
    EXPECT_TRUE(WaitUntil([this] { return Show(red, &kTime) == kDecoded; }));
    EXPECT_EQ(Show(red, &kTime), kSkipped) << "the same time again";
    const std::pair<std::function<void()>, std::function<void()>> ways[] = {
        {[this] { pane->hide(); }, [this] { pane->show(); }},
        {[this] { dialog.showMinimized(); }, [this] { dialog.showNormal(); }},
        {[this] { PostCommand(dialog, [] {}); }, [] {}},
        {[this] {
             QTest::mouseMove(&dialog, {5, 150});
         },
         [] {}},
    };
    for (const auto& [begin, end] : ways) {
        EXPECT_TRUE(WaitUntil([this] { return Show(red) == kDecoded; }));
        begin();
        EXPECT_EQ(Show(red), kSkipped) << &begin - &ways[0].first;
        end();
        EXPECT_TRUE(WaitUntil([this] { return Show(red) == kDecoded; })) << "goes on";
    }
}

}  // namespace
}  // namespace marvolen
