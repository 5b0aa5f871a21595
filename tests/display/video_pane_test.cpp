// The live pane between its chain and its drawing thread.

#include "display/video_pane.h"

#include "tests/display/pane_fixture.h"

namespace marvolen {
namespace {

using namespace test;

constexpr SYSTEMTIME kQuarterPast{2004, 2, 0, 29, 8, 15, 0, 0};

class VideoPaneTest : public PaneTest {};

TEST_F(VideoPaneTest, IsBlackAgainAfterOpenCloseResizeAndHiding) {
    const std::pair<const char*, std::function<void()>> changes[] = {
        {"Open", [this] { pane->Open("NET.4", 0); }},
        {"Close and Open", [this] { pane->Close(), pane->Open("NET.4", 0); }},
        {"resize and back", [this] { pane->resize(300, 90), pane->resize(kWidth, kHeight); }},
        {"resize", [this] { pane->resize(300, 90); }},
        {"hide and show", [this] { pane->hide(), pane->show(); }},
        {"minimise and restore", [this] { dialog->showMinimized(), dialog->showNormal(); }},
        {"Close", [this] { pane->Close(); }},
    };
    for (const auto& [name, change] : changes) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(Show(red, Qt::red));
        ASSERT_TRUE(WaitUntil([this] { return decoder.Starts() == decoder.Ends(); }));
        change();
        EXPECT_TRUE(VideoIs(Qt::black));
    }
}

TEST_F(VideoPaneTest, FocusSelectsAndItsLossDoesNotDeselect) {
    QFocusEvent in(QEvent::FocusIn);
    QCoreApplication::sendEvent(pane, &in);
    EXPECT_EQ(pane->GetStatus(), PANE_SELECTED);
    QFocusEvent out(QEvent::FocusOut);
    QCoreApplication::sendEvent(pane, &out);
    EXPECT_EQ(pane->GetStatus(), PANE_SELECTED);
    EXPECT_EQ(pane->focusPolicy(), Qt::NoFocus) << "only its window knows when it is selected";
}

TEST_F(VideoPaneTest, PostsMouseMovesOverItselfToItsParentOnly) {
    dialog->setMouseTracking(true);
    const auto move = [this](QPointF to) {
        QMouseEvent event(QEvent::MouseMove, to, pane->mapToGlobal(to), Qt::NoButton, Qt::NoButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(pane, &event);
    };
    EXPECT_TRUE(pane->hasMouseTracking());
    move({50, 50});
    move({kWidth + 5, 50});  // a press in the pane keeps reporting outside it
    EXPECT_TRUE(dialog->messages.empty());
    ASSERT_TRUE(WaitUntil([this] { return !dialog->messages.empty(); }));
    const std::vector<RecordingDialog::Message> expected{{WM_POPUPPANE, 2, 0}};
    EXPECT_EQ(dialog->messages, expected);
    EXPECT_EQ(dialog->mouseMoves, 0);
}

TEST_F(VideoPaneTest, SurvivesChangesWhileStreaming) {
    for (int k = 0; k < 400; ++k) {
        Deliver(k % 2 == 0 ? red : green, &kQuarterPast);
        switch (k % 8) {
            case 1:
                pane->resize(k % 90, k % 70);  // often too small for a video area
                break;
            case 3:
                pane->resize(kWidth + k % 5, kHeight + k % 3);
                break;
            case 4:
                pane->setVisible(!pane->isVisible());
                break;
            case 6:
                pane->Close();
                ASSERT_TRUE(pane->Open("NET.3", 0));
                break;
            default:
                QCoreApplication::processEvents();
        }
    }
    pane->show();
    pane->resize(kWidth, kHeight);
    EXPECT_TRUE(Show(green, Qt::green));
}

TEST_F(VideoPaneTest, DestroyingItsWindowWaitsForASlowDecode) {
    pane->CreatePopup();
    pane->ShowPopup();
    decoder.Hold();
    Deliver(red, &kQuarterPast);
    ASSERT_TRUE(decoder.WaitForStarts(1));
    RunWhileReleasing(decoder, [this] { dialog.reset(); });
    EXPECT_EQ(decoder.Ends(), 1);
}

}  // namespace
}  // namespace marvolen
