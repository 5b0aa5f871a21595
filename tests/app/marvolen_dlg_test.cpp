#include "app/marvolen_dlg.h"

#include "app/about_dlg.h"
#include "res/resource_ids.h"
#include "tests/app/main_window_fixture.h"
#include "tests/support/process_resources.h"

#include <QApplication>
#include <QTest>
#include <QTimer>

#include <chrono>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace marvolen {
namespace {

using test::kPatience;
using test::MainWindow;

TEST_F(MainWindow, ShowsSixteenLiveChannels) {
    Open();
    for (int k = 0; k < kChannelCount; ++k) ExpectLive(k);
    EXPECT_EQ(window->Pane(4).GetName(), QStringLiteral("Camera 5"));
}

// One camera fails in every way there is while the other fifteen go on, and comes back when the
// fault is over: by itself, by the reconnect, or by the watchdog where it had gone silent.
class OneFailingCamera : public MainWindow, public ::testing::WithParamInterface<const char*> {};

TEST_P(OneFailingCamera, LeavesTheOthersLive) {
    constexpr int kFaulty = 5;
    server.SetFault(kFaulty, *ParseFault(GetParam()));
    Open();
    const auto struck = [&] {
        const ChannelStats stats = server.Stats(kFaulty);
        return stats.requests > 0 || std::string_view(GetParam()) == "refuse" ||
               (stats.connections > 0 && !IsConnected(kFaulty));
    };
    EXPECT_TRUE(QTest::qWaitFor(struck, kPatience));
    for (int k = 0; k < kChannelCount; ++k) {
        if (k != kFaulty) ExpectLive(k);
    }
    server.SetFault(kFaulty, {});
    window->SetTimer(kWatchdogTimer, 2000);  // its own period is half a minute
    ExpectLive(kFaulty);
}

INSTANTIATE_TEST_SUITE_P(Faults, OneFailingCamera,
                         ::testing::Values("refuse", "silent", "close", "close-after:3",
                                           "stall-after:3", "trickle:2000", "garbage", "no-stamp:2",
                                           "stamp-back:2", "oversize:2", "truncate:2", "bit-flip:1",
                                           "content-type"),
                         [](const auto& each) {
                             std::string name(each.param);
                             name = name.substr(0, name.find(':'));
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST_F(MainWindow, ReconnectsFiveSecondsAfterTheConnectionEnded) {
    Open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return IsConnected(0); }, kPatience));
    server.Drop(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !IsConnected(0); }, kPatience));
    const auto closed = std::chrono::steady_clock::now();
    ASSERT_TRUE(QTest::qWaitFor([&] { return IsConnected(0); }, kPatience));
    const auto pause = std::chrono::steady_clock::now() - closed;
    EXPECT_GT(pause, std::chrono::milliseconds(4900));
    EXPECT_LT(pause, std::chrono::milliseconds(9000));
}

TEST_F(MainWindow, UnusableHostsLeaveTheOthersLive) {
    SetFieldText(Info(0).host, "host with blanks");
    SetFieldText(Info(1).host, "a@b:c/d");
    SetFieldText(Info(2).host, "256.256.256.256");
    std::memset(Info(3).host, 'h', sizeof Info(3).host);
    std::memset(Info(4).userName, 'u', sizeof Info(4).userName);
    SetFieldText(Info(5).port, "1");
    SetFieldText(Info(6).port, "99999");
    SetFieldText(Info(7).port, "no port");
    Open();
    for (int k = 8; k < kChannelCount; ++k) ExpectLive(k);
    for (int k = 0; k < 8; ++k) EXPECT_FALSE(IsConnected(k)) << k;
}

TEST_F(MainWindow, ASpoiltIndexActsOnNoOtherChannel) {
    Info(2).channelIndex = 9;
    Info(3).channelIndex = 1 << 30;
    Info(4).channelIndex = -1;
    Open();
    for (int k = 0; k < kChannelCount; ++k) ExpectLive(k);
    server.Drop(2);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !IsConnected(2); }, kPatience));
    EXPECT_TRUE(IsConnected(9));
}

TEST_F(MainWindow, ARecorderThatCannotOpenStopsTheChannelsBeforeIt) {
    SetFieldText(Info(9).recordPath, "missing/folder/x.dbt");
    Info(12).maxSizeMB = 0;
    Open();
    for (int k = 13; k < kChannelCount; ++k) ExpectLive(k);
    for (int k = 0; k < 13; ++k) EXPECT_FALSE(window->Channels().Recorder(k).IsOpen()) << k;
}

TEST_F(MainWindow, AnEmptyHostIsNeverConnected) {
    for (int k = 0; k < kChannelCount; ++k) SetFieldText(Info(k).host, "");
    SetFieldText(Info(15).host, "127.0.0.1");
    Open();
    ExpectLive(15);
    EXPECT_EQ(window->Pane(3).GetName(), QStringLiteral("Camera 4"));
    for (int k = 0; k < 15; ++k) EXPECT_EQ(server.Stats(k).connections, 0U) << k;
}

TEST_F(MainWindow, StartsAndStopsLeaveNothingBehind) {
    const auto run = [&] {
        Open();
        for (int k = 0; k < kChannelCount; ++k) ExpectLive(k);
        window.reset();
    };
    run();  // what is made once for the whole program
    for (int k = 0; k < kChannelCount; ++k) ASSERT_TRUE(server.WaitForOpenConnections(k, 0));
    const std::size_t descriptors = test::OpenDescriptors();
    const std::size_t threads = test::Threads();
    for (int start = 0; start < 10; ++start) run();
    for (int k = 0; k < kChannelCount; ++k) ASSERT_TRUE(server.WaitForOpenConnections(k, 0));
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
    EXPECT_EQ(test::Threads(), threads);
}

TEST_F(MainWindow, AClickSelectsOnePane) {
    Open();
    EXPECT_EQ(window->CurrentChannel(), 0);
    EXPECT_TRUE(window->Pane(0).GetStatus() & PANE_SELECTED);
    QTest::mouseClick(&window->Pane(6), Qt::LeftButton);
    EXPECT_EQ(window->CurrentChannel(), 6);
    for (int k = 0; k < kChannelCount; ++k) {
        EXPECT_EQ(window->Pane(k).GetStatus() & PANE_SELECTED, k == 6 ? PANE_SELECTED : 0U) << k;
    }
}

TEST_F(MainWindow, NeitherTheTabKeyNorAnotherButtonSelects) {
    Open();
    QTest::mouseClick(&window->Pane(3), Qt::LeftButton);
    QTest::keyClick(window.get(), Qt::Key_Tab);
    QTest::keyClick(window.get(), Qt::Key_Tab);
    QTest::mouseClick(&window->Pane(9), Qt::MiddleButton);
    for (int k = 0; k < kChannelCount; ++k) {
        EXPECT_EQ(window->Pane(k).GetStatus() & PANE_SELECTED, k == 3 ? PANE_SELECTED : 0U) << k;
    }
}

TEST_F(MainWindow, EndsByEscapeAndCloseBoxWhilePicturesStream) {
    for (const bool escape : {true, false}) {
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
            if (!IsConnected(0) || window->Pane(0).GetTimeText().empty()) return;
            if (escape) {
                QTest::keyClick(window.get(), Qt::Key_Escape);
            } else {
                window->close();
            }
        });
        poll.start(10);
        window = std::make_unique<CMarvolenDlg>();
        EXPECT_EQ(window->DoModal(), IDCANCEL);
        window.reset();
    }
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

TEST_F(MainWindow, TheWindowMenuOpensTheAboutBox) {
    Open();
    bool seen = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &poll, [&seen] {
        if (auto* about = dynamic_cast<CAboutDlg*>(QApplication::activeModalWidget())) {
            seen = true;
            QTest::mouseClick(about->GetDlgItem(IDOK), Qt::LeftButton);
        }
    });
    poll.start(10);
    window->PostMessage(WM_SYSCOMMAND, SC_ABOUT | 3, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return seen; }, kPatience));
}

}  // namespace
}  // namespace marvolen
