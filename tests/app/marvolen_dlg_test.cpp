#include "app/marvolen_dlg.h"

#include "app/about_dlg.h"
#include "net/channel_link.h"
#include "platform/text_field.h"
#include "res/resource_ids.h"
#include "tests/app/camera_pictures.h"
#include "tests/support/process_resources.h"
#include "tests/support/temporary_folder.h"
#include "tools/camera_server/camera_server.h"

#include <QApplication>
#include <QImage>
#include <QTest>
#include <QTimer>

#include <chrono>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace marvolen {
namespace {

constexpr int kPatience = 20000;  // ms, for what happens at once on an idle machine

// The main window over sixteen cameras of our own.
class MainWindow : public ::testing::Test {
protected:
    MainWindow() : server(Options(), std::make_shared<test::CameraPictures>()) {
        EXPECT_TRUE(server.Start()) << server.Error();
        g_channelInfo = FactoryChannelTable();
        for (int k = 0; k < kChannelCount; ++k) {
            ChannelInfo& info = g_channelInfo[static_cast<std::size_t>(k)];
            SetFieldText(info.netName, "Camera " + std::to_string(k + 1));
            SetFieldText(info.host, "127.0.0.1");
            SetFieldText(info.port, std::to_string(server.Port(k)));
        }
    }
    ~MainWindow() override { g_channelInfo = FactoryChannelTable(); }

    static CameraServerOptions Options() {
        CameraServerOptions options;
        options.keepSent = false;
        return options;
    }

    ChannelInfo& Info(int k) { return g_channelInfo[static_cast<std::size_t>(k)]; }

    void Open() {
        window = std::make_unique<CMarvolenDlg>();
        window->CreateModeless();
    }

    bool IsConnected(int k) { return (window->Pane(k).GetStatus() & PANE_CONNECTED) != 0; }

    // Connected, and the pane shows another picture than it did.
    void ExpectLive(int k) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return IsConnected(k); }, kPatience)) << "channel " << k;
        const QImage before = VideoArea(k);
        EXPECT_TRUE(QTest::qWaitFor(
            [&] {
                const QImage now = VideoArea(k);
                return now != before && now.pixelColor(now.rect().center()) != QColor(Qt::black);
            },
            kPatience))
            << "channel " << k;
    }

    QImage VideoArea(int k) {
        VideoPane& pane = window->Pane(k);
        return pane.grab(QRect(2, 23, pane.width() - 4, pane.height() - 25)).toImage();
    }

    const test::TemporaryFolder folder;
    CameraServer server;
    std::unique_ptr<CMarvolenDlg> window;
};

TEST_F(MainWindow, ShowsSixteenLiveChannels) {
    Open();
    for (int k = 0; k < kChannelCount; ++k) ExpectLive(k);
    EXPECT_EQ(window->Pane(4).GetName(), QStringLiteral("Camera 5"));
}

// One camera fails in every way there is while the other fifteen go on. What ended its connection
// is over when the fault is; what keeps it open and silent is not, without a watchdog.
struct FaultCase {
    const char* fault;
    bool comesBack;
};

class OneFailingCamera : public MainWindow, public ::testing::WithParamInterface<FaultCase> {};

TEST_P(OneFailingCamera, LeavesTheOthersLive) {
    constexpr int kFaulty = 5;
    server.SetFault(kFaulty, *ParseFault(GetParam().fault));
    Open();
    const auto struck = [&] {
        const ChannelStats stats = server.Stats(kFaulty);
        return stats.requests > 0 || std::string_view(GetParam().fault) == "refuse" ||
               (stats.connections > 0 && !IsConnected(kFaulty));
    };
    EXPECT_TRUE(QTest::qWaitFor(struck, kPatience));
    for (int k = 0; k < kChannelCount; ++k) {
        if (k != kFaulty) ExpectLive(k);
    }
    server.SetFault(kFaulty, {});
    if (GetParam().comesBack) ExpectLive(kFaulty);
}

INSTANTIATE_TEST_SUITE_P(
    Faults, OneFailingCamera,
    ::testing::Values(FaultCase{"refuse", true}, FaultCase{"silent", false},
                      FaultCase{"close", true}, FaultCase{"close-after:3", true},
                      FaultCase{"stall-after:3", false}, FaultCase{"trickle:2000", true},
                      FaultCase{"garbage", true}, FaultCase{"no-stamp:2", true},
                      FaultCase{"stamp-back:2", true}, FaultCase{"oversize:2", true},
                      FaultCase{"truncate:2", true}, FaultCase{"bit-flip:1", true},
                      FaultCase{"content-type", false}),
    [](const auto& each) {
        std::string name(each.param.fault);
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

TEST_F(MainWindow, PanesFillTheWindowAtEverySize) {
    Open();
    for (const QSize size : {QSize(800, 600), QSize(1603, 901), QSize(320, 240)}) {
        window->resize(size);
        QCoreApplication::processEvents();
        EXPECT_EQ(window->Pane(0).geometry(), QRect(0, 0, size.width() / 4, size.height() / 4));
        EXPECT_EQ(window->Pane(15).geometry(), QRect(size.width() / 4 * 3, size.height() / 4 * 3,
                                                     size.width() / 4, size.height() / 4));
    }
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
