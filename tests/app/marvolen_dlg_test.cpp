#include "app/marvolen_dlg.h"

#include "app/about_dlg.h"
#include "app/run_statistics.h"
#include "platform/native_path.h"
#include "playback/playback_dlg.h"
#include "settings/channel_page_dlg.h"
#include "settings/channel_setting_dlg.h"
#include "tests/app/main_window.h"
#include "tests/support/process_resources.h"

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QTimer>

#include <cstring>

namespace marvolen {
namespace {

using namespace std::chrono_literals;
using test::MainWindow;
using test::WaitUntil;

constexpr int kFaulty = 13;

// Thirteen cameras fail, each in another way, and two can't be used as they are set, while the last
// goes on. All come back when the faults are over, by reconnect or watchdog.
TEST_F(MainWindow, FailingCamerasComeBackAndLeaveTheOthersLive) {
    const char* const faults[kFaulty] = {
        "refuse",       "silent",     "close",       "close-after:3", "stall-after:3",
        "trickle:2000", "garbage",    "no-stamp:2",  "stamp-back:2",  "oversize:2",
        "truncate:2",   "bit-flip:1", "content-type"};
    for (int k = 0; k < kFaulty; ++k) server.SetFault(k, *ParseFault(faults[k]));
    std::memset(Info(13).host, 'h', sizeof Info(13).host);
    SetFieldText(Info(14).host, "a@b:c/d");
    Info(15).channelIndex = 1 << 30;
    Info(15).rateIndex = -1;
    Open();
    EXPECT_TRUE(WaitUntil([&] { return Has(15, PANE_CONNECTED) && ShowsPicture(15); }));
    for (int k = 1; k < kFaulty; ++k) EXPECT_TRUE(server.WaitForConnections(k, 1)) << faults[k];
    for (int k = 13; k < 15; ++k) {
        EXPECT_FALSE(Has(k, PANE_CONNECTED)) << k;
        SetFieldText(Info(k).host, "127.0.0.1");
    }
    for (int k = 0; k < kFaulty; ++k) server.SetFault(k, {});
    EXPECT_TRUE(WaitUntil([&] {
        Tick(5s);
        return Has(0, PANE_CONNECTED);
    })) << "reopens what was refused, before the watchdog does";
    EXPECT_FALSE(Has(14, PANE_CONNECTED)) << "is the watchdog's";
    for (int round = 0; round < 2; ++round) {  // what delivered until now is silent afterwards
        Tick(30s);
        Tick(5s);
        for (int k = 0; k < kChannelCount; ++k) {
            EXPECT_TRUE(WaitUntil([&] { return Has(k, PANE_CONNECTED) && ShowsPicture(k); })) << k;
        }
    }
    Info(3).maxSizeMB = 0;
    EXPECT_FALSE(window->Channels().OpenChannel(3));
    const QLatin1String reason(TroubleText(RecordTrouble::BadMaximum));
    EXPECT_TRUE(window->Pane(3).toolTip().startsWith(reason));
    EXPECT_TRUE(window->Pane(3).accessibleDescription().contains(reason));
}

TEST_F(MainWindow, StartsAndStopsLeaveNothingBehind) {
    std::set<std::pair<std::size_t, std::size_t>> left;
    for (int start = 0; start < 4; ++start) {
        Open();
        for (int k = 0; k < kChannelCount; ++k) {
            EXPECT_TRUE(WaitUntil([&] { return !window->Pane(k).GetTimeText().empty(); })) << k;
        }
        window.reset();
        for (int k = 0; k < kChannelCount; ++k) ASSERT_TRUE(server.WaitForOpenConnections(k, 0));
        left.emplace(test::OpenDescriptors(), test::Threads());
    }
    EXPECT_EQ(left.size(), 1U) << "more each time, or less";
}

// What is counted as recorded is what the file has, through a reconnect, too.
TEST_F(MainWindow, StatisticsTellWhatIsReceivedShownAndRecorded) {
    Open();
    RunStatistics statistics(*window, "statistics.csv");
    const FrameCounts& counts = window->Channels().Recorder(4).Counts();
    EXPECT_TRUE(WaitUntil([&] { return counts.received > 0; }));
    EXPECT_EQ(counts.due, 0U);
    window->Channels().SetRecording(4, true);
    EXPECT_TRUE(WaitUntil([&] { return counts.recorded > 2; }));
    server.Drop(4);
    const std::uint64_t before = counts.recorded;
    EXPECT_TRUE(WaitUntil([&] {
        Tick(5s);
        return counts.recorded > before + 2 && window->Pane(4).ShownCount() > 1;
    }));
    window->Channels().StopAllChannels(CloseFlag::Ordered);
    statistics.WriteLine();
    QFile csv(QStringLiteral("statistics.csv"));
    ASSERT_TRUE(csv.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(csv.readAll()).split(u'\n');
    const QStringList names = lines.first().split(u',');
    const QStringList values = lines.at(lines.size() - 2).split(u',');
    ASSERT_EQ(names.size(), 3 + 4 * kChannelCount);
    ASSERT_EQ(values.size(), names.size());
    const auto value = [&](const char* name) {
        return values[names.indexOf(QLatin1String(name))].toULongLong();
    };
    RecordFile file;
    ASSERT_TRUE(file.OpenForRead(NativePath(FieldText(Info(4).recordPath))));
    EXPECT_EQ(value("recorded5"), file.RecordCount());
    EXPECT_EQ(value("due5"), counts.recorded);
    EXPECT_EQ(value("received5"), counts.received);
    EXPECT_EQ(value("shown5"), window->Pane(4).ShownCount());
    EXPECT_EQ(value("recorded6"), 0U);
    EXPECT_GE(value("log_rows"), 17U);
}

// An ordinary window to the window manager, with its frame within what the desktop leaves; at every
// size the panel stays at the right and the panes fill the rest.
TEST_F(MainWindow, FitsTheScreenAndItsPartsFitIt) {
    WithoutHosts();
    Open();
    EXPECT_EQ(window->windowType(), Qt::Window);
    EXPECT_FALSE(window->isModal());
    const QRect available = window->screen()->availableGeometry();
    EXPECT_TRUE(available.adjusted(0, 1, 0, 0).contains(window->geometry())) << "no title bar";
    const QRect& panel = window->ControlPanel().geometry();
    const int panelWidth = panel.width();
    for (const QSize size : {QSize(1000, 800), QSize(1603, 901), QSize(640, 480)}) {
        window->resize(size);
        QCoreApplication::processEvents();
        const int width = (window->width() - panelWidth) / 4;
        const int height = window->height() / 4;
        EXPECT_EQ(window->Pane(15).geometry(), QRect(3 * width, 3 * height, width, height));
        EXPECT_EQ(panel, QRect(window->width() - panelWidth, 0, panelWidth, panel.height()));
        EXPECT_LE(panel.height(), window->height()) << "no control is cut off";
    }
    const QRect before = panel;
    window->setWindowState(Qt::WindowMinimized);
    window->resize(900, 800);
    EXPECT_EQ(panel, before) << "minimised windows are not laid out";
    window->setWindowState(Qt::WindowNoState);
    EXPECT_EQ(panel.right(), window->width() - 1);
}

TEST_F(MainWindow, TheAboutBoxOpensOnceFromLogoAndMenu) {
    WithoutHosts();
    Open();
    int seen = 0;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
        auto* about = dynamic_cast<CAboutDlg*>(QApplication::activeModalWidget());
        if (!about) return;
        if (++seen > 9) return about->reject();          // its button is dead
        Q_EMIT window->ControlPanel().aboutRequested();  // ignored: a dialog covers the window
        QTest::mouseClick(about->GetDlgItem(IDOK), Qt::LeftButton);
    });
    poll.start(10);
    Click(IDC_LOGO);
    EXPECT_EQ(seen, 1);
    Q_EMIT window->systemCommand(SC_ABOUT);
    EXPECT_EQ(seen, 1) << "not within the menu's click";
    QCoreApplication::processEvents();
    EXPECT_EQ(seen, 2);
    QAccessibleInterface* logo = QAccessible::queryAccessibleInterface(Control(IDC_LOGO));
    EXPECT_EQ(logo->role(), QAccessible::Button);
    logo->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QCoreApplication::processEvents();
    EXPECT_EQ(seen, 3);
}

// A recording of the selected channel is played, and goes on when the dialog has closed; when that
// was the program's end, nothing is opened any more.
TEST_F(MainWindow, PlaybackHasTheRecordFilesToItself) {
    Open();
    window->SelectPane(window->Pane(4));
    Click(IDC_RECORD_TOGGLE);
    for (const bool atTheEnd : {false, true}) {
        ChannelRecorder& recorder = window->Channels().Recorder(4);
        recorder.TakeFrameCount();
        std::uint32_t frames = 0;
        EXPECT_TRUE(WaitUntil([&] { return (frames += recorder.TakeFrameCount()) > 2; }));
        bool seen = false;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
            auto* dialog = dynamic_cast<CPlaybackDlg*>(QApplication::activeModalWidget());
            if (!dialog) return;
            seen = true;
            for (int k = 0; k < kChannelCount; ++k) {
                EXPECT_FALSE(window->Channels().Recorder(k).IsOpen());
            }
            EXPECT_EQ(dialog->GetDlgItem<QComboBox>(IDC_PLAYER_CHANNEL)->currentIndex(), 4);
            EXPECT_TRUE(dialog->GetDlgItem(IDC_PLAYER_RENDER)->isEnabled());
            atTheEnd ? QApplication::closeAllWindows() : dialog->reject();
        });
        poll.start(10);
        Click(IDC_PLAYBACK);
        EXPECT_TRUE(seen);
        EXPECT_EQ(recorder.IsOpen(), !atTheEnd);
        EXPECT_EQ(Recording(), std::set<int>{4});
    }
}

// All channels are closed while the dialog is open, and run with the table it leaves after OK, with
// the old one after Cancel; recording goes on. What was clicked before it opened opens nothing.
TEST_F(MainWindow, SettingChangesTheTableOfClosedChannelsWithOkOnly) {
    SetFieldText(Info(3).host, "");
    Open();
    window->SelectPane(window->Pane(3));
    Click(IDC_RECORD_TOGGLE);
    for (const int end : {IDCANCEL, IDOK}) {
        const ChannelTable before = g_channelInfo;
        int seen = 0;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
            auto* dialog = dynamic_cast<CChannelSettingDlg*>(QApplication::activeModalWidget());
            if (!dialog) return;
            ++seen;
            EXPECT_EQ(std::memcmp(&g_channelInfo, &before, sizeof before), 0);
            for (int k = 0; k < kChannelCount; ++k) {
                EXPECT_FALSE(window->Channels().Recorder(k).IsOpen());
            }
            auto* tabs = dialog->GetDlgItem<CChannelTabCtrl>(IDC_SETTING_TABS);
            ASSERT_EQ(tabs->GetCurSel(), 3);
            const auto type = [&](int id, const std::string& text) {
                tabs->GetPage(3)->GetDlgItem<QLineEdit>(id)->setText(QString::fromStdString(text));
            };
            type(IDC_PAGE_HOST, "127.0.0.1");
            type(IDC_PAGE_NET_NAME, "Typed");
            QTest::mouseClick(dialog->GetDlgItem(end), Qt::LeftButton);
        });
        poll.start(10);
        QTest::mouseClick(Control(IDC_SETTING), Qt::LeftButton);  // both wait in the queue
        QTest::mouseClick(Control(IDC_PLAYBACK), Qt::LeftButton);
        Click(IDC_SETTING);
        EXPECT_EQ(seen, 1);
        EXPECT_EQ(Recording(), std::set<int>{3});
        ChannelTable expected = before;
        if (end == IDOK) {
            SetFieldText(expected[3].host, "127.0.0.1");
            SetFieldText(expected[3].netName, "Typed");
        }
        EXPECT_EQ(std::memcmp(&g_channelInfo, &expected, sizeof expected), 0);
        EXPECT_EQ(window->Channels().Recorder(3).IsOpen(), end == IDOK);
        EXPECT_TRUE(window->Channels().Recorder(15).IsOpen());
    }
    EXPECT_TRUE(WaitUntil([&] { return Has(3, PANE_CONNECTED) && ShowsPicture(3); }));
}

}  // namespace
}  // namespace marvolen
