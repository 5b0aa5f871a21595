#include "platform/ui_activity.h"

#include "platform/window.h"
#include "tests/support/event_loop.h"

#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

namespace marvolen {
namespace {

class UiActivity : public ::testing::Test {
protected:
    UiActivity() {
        widget.show();
        EXPECT_TRUE(test::WaitUntil([] { return !IsUiBusy(); }));
    }
    QWidget widget;
    CWnd window;
};

TEST_F(UiActivity, ACommandMakesBusyUntilItIsHandled) {
    bool busyWithin = true;
    PostCommand(widget, [&] { busyWithin = IsUiBusy(); });
    EXPECT_TRUE(IsUiBusy());
    QCoreApplication::processEvents();
    EXPECT_FALSE(busyWithin);
    EXPECT_FALSE(IsUiBusy());
    {
        QObject gone;
        PostCommand(gone, [] { FAIL() << "its receiver has gone"; });
    }
    EXPECT_FALSE(IsUiBusy());
}

TEST_F(UiActivity, TheFirstThatWaitsDecides) {
    window.PostMessage(WM_USER, 0, 0);
    PostCommand(widget, [] {});
    RequestPaint(widget, widget.rect());
    EXPECT_FALSE(IsUiBusy()) << "a message that is no command is first";
    QCoreApplication::sendPostedEvents();
    PostCommand(widget, [] {});
    window.PostMessage(WM_USER, 0, 0);
    EXPECT_TRUE(IsUiBusy());
}

TEST_F(UiActivity, APaintThatWasAskedForMakesBusyUntilItIsDone) {
    RequestPaint(widget, widget.rect());
    EXPECT_TRUE(IsUiBusy());
    EXPECT_TRUE(test::WaitUntil([] { return !IsUiBusy(); }));
    RequestPaint(widget, widget.rect());
    widget.hide();
    EXPECT_FALSE(IsUiBusy());
}

TEST_F(UiActivity, ATimerMakesBusyFromWhenItIsDueUntilItTicks) {
    window.SetTimer(1, 600000);
    EXPECT_FALSE(IsUiBusy());
    window.SetTimer(1, 5);
    while (!IsUiBusy()) continue;
    bool rests = false;
    EXPECT_TRUE(test::WaitUntil([&] { return rests = rests || !IsUiBusy(); }));
    window.KillTimer(1);
    EXPECT_FALSE(IsUiBusy());
}

}  // namespace
}  // namespace marvolen
