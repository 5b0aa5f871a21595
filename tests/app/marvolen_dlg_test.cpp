#include "app/marvolen_dlg.h"

#include "app/about_dlg.h"
#include "res/resource_ids.h"
#include "tests/app/main_window.h"
#include "tests/support/process_resources.h"

#include <QApplication>
#include <QTimer>

#include <cstring>

namespace marvolen {
namespace {

using test::MainWindow;
using test::WaitUntil;

// Thirteen cameras fail, each in another way, while three go on. All come back when the faults are
// over: by themselves, by the reconnect, or by the watchdog where they had gone silent.
TEST_F(MainWindow, FailingCamerasComeBackAndLeaveTheOthersLive) {
    const char* const faults[] = {"refuse",        "silent",       "close",      "close-after:3",
                                  "stall-after:3", "trickle:2000", "garbage",    "no-stamp:2",
                                  "stamp-back:2",  "oversize:2",   "truncate:2", "bit-flip:1",
                                  "content-type"};
    constexpr int kFaulty = static_cast<int>(std::size(faults));
    for (int k = 0; k < kFaulty; ++k) {
        server.SetFault(k, *ParseFault(faults[static_cast<std::size_t>(k)]));
    }
    Open();
    for (int k = kFaulty; k < kChannelCount; ++k) ExpectLive(k);
    for (int k = 1; k < kFaulty; ++k) EXPECT_TRUE(server.WaitForConnections(k, 1)) << faults[k];
    for (int k = 0; k < kFaulty; ++k) server.SetFault(k, {});
    const auto seemsLive = [&](int k) {
        return IsConnected(k) && VideoArea(k).pixelColor(20, 20) != QColor(Qt::black);
    };
    for (int round = 0; round < 2; ++round) {  // what delivered until now is silent afterwards
        window->Channels().OnTimer(kWatchdogTimer);
        for (int k = 0; k < kFaulty; ++k) window->Channels().OnTimer(static_cast<unsigned>(k));
        for (int k = 0; k < kFaulty; ++k) EXPECT_TRUE(WaitUntil([&] { return seemsLive(k); })) << k;
    }
    for (int k = 0; k < kChannelCount; ++k) ExpectLive(k);
}

TEST_F(MainWindow, UnusableSettingsLeaveTheOthersLive) {
    SetFieldText(Info(0).host, "host with blanks");
    SetFieldText(Info(1).host, "a@b:c/d");
    SetFieldText(Info(2).host, "256.256.256.256");
    std::memset(Info(3).host, 'h', sizeof Info(3).host);
    std::memset(Info(4).userName, 'u', sizeof Info(4).userName);
    SetFieldText(Info(5).port, "1");
    SetFieldText(Info(6).port, "99999");
    SetFieldText(Info(7).port, "no port");
    Info(8).channelIndex = 1 << 30;
    Info(9).rateIndex = -1;
    Open();
    for (int k = 8; k < kChannelCount; ++k) ExpectLive(k);
    for (int k = 0; k < 8; ++k) EXPECT_FALSE(IsConnected(k)) << k;
}

TEST_F(MainWindow, StartsAndStopsLeaveNothingBehind) {
    const auto run = [&] {
        Open();
        for (int k = 0; k < kChannelCount; ++k) {
            EXPECT_TRUE(WaitUntil([&] { return !window->Pane(k).GetTimeText().empty(); })) << k;
        }
        window.reset();
        for (int k = 0; k < kChannelCount; ++k) ASSERT_TRUE(server.WaitForOpenConnections(k, 0));
    };
    run();  // what is made once for the whole program
    const std::size_t descriptors = test::OpenDescriptors();
    const std::size_t threads = test::Threads();
    for (int start = 0; start < 3; ++start) run();
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
    EXPECT_EQ(test::Threads(), threads);
}

TEST_F(MainWindow, ThePanelStaysAtTheRightAndThePanesFillTheRest) {
    WithoutHosts();
    Open();
    const QRect panel = window->ControlPanel().geometry();
    for (const QSize size : {QSize(1000, 800), QSize(1603, 901), QSize(640, 480)}) {
        window->resize(size);
        QCoreApplication::processEvents();
        const int width = (window->width() - panel.width()) / 4;
        const int height = window->height() / 4;
        EXPECT_EQ(window->Pane(0).geometry(), QRect(0, 0, width, height));
        EXPECT_EQ(window->Pane(15).geometry(), QRect(3 * width, 3 * height, width, height));
        EXPECT_EQ(window->ControlPanel().geometry().topRight(), QPoint(window->width() - 1, 0));
        EXPECT_EQ(window->ControlPanel().width(), panel.width());
        EXPECT_LE(window->ControlPanel().height(), window->height()) << "no control is cut off";
    }
    const QRect before = window->Pane(15).geometry();
    window->setWindowState(Qt::WindowMinimized);
    window->resize(900, 800);
    EXPECT_EQ(window->Pane(15).geometry(), before) << "minimised windows are not laid out";
    window->setWindowState(Qt::WindowNoState);
    window->resize(900, 800);
    EXPECT_EQ(window->ControlPanel().geometry().right(), window->width() - 1);
}

// The first start, on any screen: an ordinary window, its frame within what the desktop leaves.
TEST_F(MainWindow, IsAnOrdinaryWindowWithinTheScreen) {
    WithoutHosts();
    Open();
    EXPECT_EQ(window->windowType(), Qt::Window);
    const QRect withFrame(window->pos(), window->size() + QSize(16, 48));
    EXPECT_TRUE(window->screen()->availableGeometry().contains(withFrame));
}

TEST_F(MainWindow, TheAboutBoxOpensOnceFromLogoAndMenu) {
    WithoutHosts();
    Open();
    int seen = 0;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
        auto* about = dynamic_cast<CAboutDlg*>(QApplication::activeModalWidget());
        if (!about) return;
        ++seen;
        Q_EMIT window->ControlPanel().aboutRequested();  // ignored: a dialog covers the window
        QTest::mouseClick(about->GetDlgItem(IDOK), Qt::LeftButton);
    });
    poll.start(10);
    Click(IDC_LOGO);
    EXPECT_EQ(seen, 1);
    Q_EMIT window->systemCommand(SC_ABOUT);
    EXPECT_EQ(seen, 2);
}

}  // namespace
}  // namespace marvolen
