// The live pane between its chain and its drawing thread.

#include "display/video_pane.h"

#include "tests/display/pane_fixture.h"

namespace marvolen {
namespace {

using namespace test;

class VideoPaneTest : public PaneTest {};

TEST_F(VideoPaneTest, IsBlackUntilItsFirstPictureAndAfterEveryChange) {
    EXPECT_TRUE(VideoIs(Qt::black));
    const std::pair<const char*, std::function<void()>> changes[] = {
        {"Open", [this] { pane->Open("NET.4", 0); }},
        {"Close and Open", [this] { pane->Close(), pane->Open("NET.4", 0); }},
        {"resize and back", [this] { pane->resize(300, 90), pane->resize(kSize); }},
        {"resize", [this] { pane->resize(300, 90); }},
        {"hide and show", [this] { pane->hide(), pane->show(); }},
        {"minimise and restore", [this] { dialog->showMinimized(), dialog->showNormal(); }},
        {"Close", [this] { pane->Close(); }},
    };
    for (const auto& [name, change] : changes) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(Show(Qt::red));
        change();
        EXPECT_TRUE(VideoIs(Qt::black));
    }
}

TEST_F(VideoPaneTest, DecodesNothingWhileHiddenOrMinimisedButForwardsIt) {
    const std::pair<std::function<void()>, std::function<void()>> ways[] = {
        {[this] { pane->hide(); }, [this] { pane->show(); }},
        {[this] { dialog->showMinimized(); }, [this] { dialog->showNormal(); }},
    };
    for (const auto& [hide, show] : ways) {
        ASSERT_TRUE(Show(Qt::green));  // and no other picture is under way
        hide();
        const std::size_t decodes = decoder.Decodes().size();
        dialog->frames = 0;
        EXPECT_TRUE(
            WaitUntil([this] { return Deliver(PlainJpeg(Qt::red)), dialog->frames == 20; }));
        EXPECT_EQ(decoder.Decodes().size(), decodes);
        show();
    }
    EXPECT_TRUE(Show(Qt::green));
}

TEST_F(VideoPaneTest, KeepsItsStatusAndTellsItToAssistiveTools) {
    const QAccessibleInterface& seen = *QAccessible::queryAccessibleInterface(pane);
    EXPECT_EQ(seen.text(QAccessible::Name), QStringLiteral("NET.3"));
    EXPECT_FALSE(seen.state().selected);
    pane->setFocusPolicy(Qt::StrongFocus);
    pane->setFocus();
    pane->clearFocus();
    EXPECT_TRUE(seen.state().selectable && seen.state().selected);
    pane->SetStatus(PANE_CONNECTED | PANE_RECORDING, PANE_CONNECTED);
    EXPECT_EQ(pane->GetStatus(), PANE_SELECTED | PANE_RECORDING);
    pane->SetTrouble(QStringLiteral("The disk is full"));
    EXPECT_EQ(pane->toolTip(), QStringLiteral("The disk is full"));
    ASSERT_TRUE(pane->Open("Gate", 0));
    EXPECT_EQ(seen.text(QAccessible::Name), QStringLiteral("NET.3 Gate"));
    const auto description = [&] { return seen.text(QAccessible::Description).toStdString(); };
    EXPECT_EQ(description(), "Recording. The disk is full");
    pane->SetTrouble(QString());
    pane->SetStatus(PANE_CONNECTED, 0);
    EXPECT_EQ(description(), "Connected. Recording");
}

TEST_F(VideoPaneTest, TellsOfClicksAndPostsMouseMovesOverItself) {
    VideoPane* clicked = nullptr;
    QObject::connect(pane, &VideoPane::clicked, dialog.get(), [&](VideoPane* by) { clicked = by; });
    QTest::mouseClick(pane, Qt::LeftButton);
    EXPECT_EQ(clicked, pane);
    EXPECT_EQ(VideoPane(dialog.get()).focusPolicy(), Qt::NoFocus)
        << "its window gives it the focus";

    QCoreApplication::processEvents();
    dialog->messages.clear();
    dialog->setMouseTracking(true);
    EXPECT_TRUE(pane->hasMouseTracking());
    for (const QPointF to : {QPointF(50, 50), QPointF(365, 50)}) {  // the second as during a press
        QMouseEvent move(QEvent::MouseMove, to, pane->mapToGlobal(to), Qt::NoButton, Qt::NoButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(pane, &move);
    }
    EXPECT_TRUE(dialog->messages.empty());
    ASSERT_TRUE(WaitUntil([this] { return !dialog->messages.empty(); }));
    EXPECT_EQ(dialog->messages, (decltype(dialog->messages){{WM_POPUPPANE, 2}}));
    EXPECT_EQ(dialog->mouseMoves, 0);
}

TEST_F(VideoPaneTest, SurvivesChangesWhileStreamingAndItsWindowsEndDuringADecode) {
    const Bytes red = PlainJpeg(Qt::red);
    for (int k = 0; k < 400; ++k) {
        Deliver(red, &kQuarterPast);
        if (k % 8 == 1) pane->resize(k % 90, k % 70);  // often too small for a video area
        if (k % 8 == 3) pane->resize(kSize + QSize(k % 5, k % 3));
        if (k % 8 == 4) pane->setVisible(!pane->isVisible());
        if (k % 8 == 6) pane->Close(), pane->Open("NET.3", 0);
        if (k % 8 == 7) QCoreApplication::processEvents();
    }
    pane->show();
    EXPECT_TRUE(Show(Qt::green));
    ASSERT_TRUE(decoder.HoldIn(red, [this](auto& jpeg) { Deliver(jpeg); }));
    std::thread releaser([this] { decoder.Release(); });
    dialog.reset();
    releaser.join();
    EXPECT_NE(decoder.Decodes().back().policyAtEnd, -1) << "its end waits for the decode";
}

}  // namespace
}  // namespace marvolen
