// The live pane between its chain and its drawing thread.

#include "display/video_pane.h"

#include "tests/display/pane_fixture.h"

namespace marvolen {
namespace {

using namespace test;

constexpr SYSTEMTIME kQuarterPast{2004, 2, 0, 29, 8, 15, 0, 0};
constexpr SYSTEMTIME kEarlier{2004, 2, 0, 29, 8, 14, 59, 0};

class VideoPaneTest : public PaneTest {};

TEST_F(VideoPaneTest, IsBlackUntilItsFirstPicture) {
    EXPECT_TRUE(VideoIs(Qt::black));
    EXPECT_TRUE(Show(red, Qt::red));
}

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

TEST_F(VideoPaneTest, ForwardsWhatItDoesNotDisplay) {
    decoder.Hold();
    Deliver(red);
    ASSERT_TRUE(decoder.WaitForStarts(1));
    Deliver(green);
    EXPECT_EQ(behind.frames, 2);
    decoder.Release();
    EXPECT_TRUE(WaitUntil([this] { return VideoIs(Qt::red); }));
    EXPECT_EQ(decoder.Starts(), 1);
}

TEST_F(VideoPaneTest, DecodesNothingWhileHiddenOrMinimised) {
    pane->hide();
    Deliver(red);
    pane->show();
    EXPECT_TRUE(Show(green, Qt::green));
    const int shown = decoder.Starts();
    dialog->showMinimized();
    for (int k = 0; k < 100; ++k) Deliver(red);
    dialog->showNormal();
    EXPECT_TRUE(Show(green, Qt::green));
    EXPECT_GT(decoder.Starts(), shown);
    const Bytes received = decoder.Received();
    EXPECT_TRUE(std::equal(green.begin(), green.end(), received.begin()));
}

TEST_F(VideoPaneTest, TakesTheTimeTextFromAcceptedStamps) {
    const auto deliverUntil = [this](const SYSTEMTIME& time, const std::string& text) {
        return WaitUntil([&] {
            Deliver(red, &time);
            return pane->GetTimeText() == text;
        });
    };
    EXPECT_TRUE(deliverUntil(kQuarterPast, "2004/02/29 08:15:00"));
    EXPECT_TRUE(deliverUntil(kEarlier, "2004/02/29 08:14:59"));
    ASSERT_TRUE(pane->Open("NET.3", 5000));
    EXPECT_TRUE(deliverUntil(kQuarterPast, "2004/02/29 08:15:00"));
    SYSTEMTIME soon = kQuarterPast;
    soon.second = 5;  // exactly the interval later
    Deliver(red, &soon);
    pane->SetStatus(0, 0);
    EXPECT_EQ(pane->GetTimeText(), "2004/02/29 08:15:00");
    soon.milliseconds = 1;
    Deliver(red, &soon);
    pane->SetStatus(0, 0);
    EXPECT_EQ(pane->GetTimeText(), "2004/02/29 08:15:05");
}

TEST_F(VideoPaneTest, SetStatusSetsThenClears) {
    pane->SetStatus(PANE_CONNECTED | PANE_RECORDING, 0);
    EXPECT_EQ(pane->GetStatus(), PANE_CONNECTED | PANE_RECORDING);
    pane->SetStatus(PANE_SELECTED | PANE_CONNECTED, PANE_CONNECTED);
    EXPECT_EQ(pane->GetStatus(), PANE_SELECTED | PANE_RECORDING);
    pane->Close();
    ASSERT_TRUE(pane->Open("NET.3", 0));
    EXPECT_EQ(pane->GetStatus(), PANE_SELECTED | PANE_RECORDING);
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

TEST_F(VideoPaneTest, TellsItsParentOfDoubleClicksAtOnce) {
    QTest::mouseDClick(pane, Qt::LeftButton);
    const RecordingDialog::Message expected{WM_COMMAND, MakeCommand(kPaneId, STN_DBLCLK),
                                            reinterpret_cast<LPARAM>(pane)};
    EXPECT_EQ(std::count(dialog->commands.begin(), dialog->commands.end(), expected), 1);
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
