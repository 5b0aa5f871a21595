// The control panel's commands, driven with real clicks and keys.

#include "app/about_dlg.h"
#include "app/control_panel_dlg.h"
#include "display/popup_info_dlg.h"
#include "record/record_file.h"
#include "res/resource_ids.h"
#include "tests/app/main_window_fixture.h"
#include "tests/support/process_resources.h"

#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <malloc.h>
#include <set>
#include <string>
#include <vector>

namespace marvolen {
namespace {

using test::kPatience;

class ControlPanel : public test::MainWindow {
protected:
    QWidget* Control(int id) { return window->ControlPanel().GetDlgItem(id); }

    // Posted commands have arrived when this returns.
    void Click(int id) {
        QTest::mouseClick(Control(id), Qt::LeftButton);
        QCoreApplication::processEvents();
    }

    // The box itself: the widget is wider than what can be clicked.
    void ClickEnablePopup() {
        QWidget* box = Control(IDC_ENABLE_POPUP);
        QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(8, box->height() / 2));
        QCoreApplication::processEvents();
    }

    QString Text(int id) { return window->ControlPanel().GetDlgItem<QPushButton>(id)->text(); }
    QString PageText() { return window->ControlPanel().GetDlgItem<QLabel>(IDC_PAGE_TEXT)->text(); }

    std::set<int> VisiblePanes() {
        std::set<int> visible;
        for (int k = 0; k < kChannelCount; ++k) {
            if (window->Pane(k).isVisible()) visible.insert(k);
        }
        return visible;
    }

    bool IsRecording(int k) { return (window->Pane(k).GetStatus() & PANE_RECORDING) != 0; }

    std::vector<CPopupInfoDlg*> VisiblePopups() {
        std::vector<CPopupInfoDlg*> visible;
        for (CPopupInfoDlg* popup : window->findChildren<CPopupInfoDlg*>()) {
            if (popup->isVisible()) visible.push_back(popup);
        }
        return visible;
    }

    // The log's rows as exported, without their times: "04 Camera 4 Network close."
    std::vector<std::string> Log() {
        CSortListCtrl& list = window->ControlPanel().MessageList();
        std::vector<std::string> rows;
        for (int row = 0; row < list.GetItemCount(); ++row) {
            const CSortListCtrl::RowData* data = list.GetRowData(row);
            rows.push_back(data->texts[0] + " " + data->texts[1] + " " + data->texts[3]);
        }
        return rows;
    }
    long Count(const std::string& row) {
        const std::vector<std::string> rows = Log();
        return std::count(rows.begin(), rows.end(), row);
    }
};

TEST_F(ControlPanel, BeginsWithAllSixteenOnOnePage) {
    WithoutHosts();
    Open();
    EXPECT_EQ(window->GetViewMode(), ViewMode::Sixteen);
    EXPECT_EQ(VisiblePanes().size(), 16U);
    EXPECT_EQ(PageText(), QStringLiteral("1/1"));
    EXPECT_FALSE(Control(IDC_PREVIOUS_PAGE)->isEnabled());
    EXPECT_FALSE(Control(IDC_NEXT_PAGE)->isEnabled());
    EXPECT_EQ(Text(IDC_RECORD_TOGGLE), QStringLiteral("Start"));
    EXPECT_TRUE(Log().empty());
}

TEST_F(ControlPanel, ViewFourShowsThePageOfTheSelectedChannel) {
    WithoutHosts();
    Open();
    QTest::mouseClick(&window->Pane(9), Qt::LeftButton);
    Click(IDC_VIEW_4);
    EXPECT_EQ(PageText(), QStringLiteral("3/4"));
    EXPECT_EQ(VisiblePanes(), (std::set<int>{8, 9, 10, 11}));
    const int width = window->ControlPanel().x() / 2;
    const int height = window->height() / 2;
    EXPECT_EQ(window->Pane(8).geometry(), QRect(0, 0, width, height));
    EXPECT_EQ(window->Pane(9).geometry(), QRect(width, 0, width, height));
    EXPECT_EQ(window->Pane(10).geometry(), QRect(0, height, width, height));
    Click(IDC_NEXT_PAGE);
    EXPECT_EQ(VisiblePanes(), (std::set<int>{12, 13, 14, 15}));
    EXPECT_FALSE(Control(IDC_NEXT_PAGE)->isEnabled());
    for (int page = 3; page >= 1; --page) Click(IDC_PREVIOUS_PAGE);
    EXPECT_EQ(PageText(), QStringLiteral("1/4"));
    EXPECT_FALSE(Control(IDC_PREVIOUS_PAGE)->isEnabled());
}

TEST_F(ControlPanel, ViewOnePagesWithoutChangingTheSelection) {
    WithoutHosts();
    Open();
    QTest::mouseClick(&window->Pane(15), Qt::LeftButton);
    Click(IDC_VIEW_1);
    EXPECT_EQ(PageText(), QStringLiteral("16/16"));
    EXPECT_EQ(VisiblePanes(), std::set<int>{15});
    EXPECT_FALSE(Control(IDC_NEXT_PAGE)->isEnabled());
    Click(IDC_PREVIOUS_PAGE);
    EXPECT_EQ(VisiblePanes(), std::set<int>{14});
    EXPECT_EQ(window->Pane(14).geometry(),
              QRect(0, 0, window->ControlPanel().x(), window->height()));
    EXPECT_EQ(window->CurrentChannel(), 15);
    EXPECT_EQ(window->Pane(14).GetStatus() & PANE_SELECTED, 0U);
    Click(IDC_RECORD_TOGGLE);
    EXPECT_TRUE(IsRecording(15));
    EXPECT_FALSE(IsRecording(14));
    Click(IDC_VIEW_16);
    EXPECT_EQ(VisiblePanes().size(), 16U);
    EXPECT_EQ(PageText(), QStringLiteral("1/1"));
}

TEST_F(ControlPanel, RecordingCommandsFollowTheSelectedPane) {
    WithoutHosts();
    Open();
    Click(IDC_RECORD_TOGGLE);
    EXPECT_TRUE(IsRecording(0));
    EXPECT_EQ(Text(IDC_RECORD_TOGGLE), QStringLiteral("Stop"));
    QTest::mouseClick(&window->Pane(1), Qt::LeftButton);
    EXPECT_EQ(Text(IDC_RECORD_TOGGLE), QStringLiteral("Start"));
    Click(IDC_START_ALL);
    for (int k = 0; k < kChannelCount; ++k) EXPECT_TRUE(IsRecording(k)) << k;
    EXPECT_EQ(Text(IDC_RECORD_TOGGLE), QStringLiteral("Stop"));
    Click(IDC_RECORD_TOGGLE);
    EXPECT_FALSE(IsRecording(1));
    EXPECT_TRUE(IsRecording(0));
    Click(IDC_STOP_ALL);
    for (int k = 0; k < kChannelCount; ++k) EXPECT_FALSE(IsRecording(k)) << k;
    EXPECT_EQ(Text(IDC_RECORD_TOGGLE), QStringLiteral("Start"));
}

TEST_F(ControlPanel, RecordingSurvivesAReconnect) {
    constexpr const char* kPath = "drive_c/chl01.dbt";
    Open();
    Click(IDC_START_ALL);
    const auto grows = [&](std::uintmax_t beyond) {
        return QTest::qWaitFor([&] { return std::filesystem::file_size(kPath) > beyond; },
                               kPatience);
    };
    ASSERT_TRUE(grows(19264));
    server.Drop(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->Channels().Recorder(0).IsOpen(); }, kPatience));
    const std::uintmax_t size = std::filesystem::file_size(kPath);
    EXPECT_TRUE(IsRecording(0));
    EXPECT_TRUE(grows(size)) << "after the reconnect";
    window.reset();
    RecordFile file;
    EXPECT_TRUE(file.OpenForRead(kPath));
}

TEST_F(ControlPanel, TheLogTellsWhatHappenedToWhichChannel) {
    server.SetFault(3, MakeFault(FaultKind::Refuse));
    SetFieldText(Info(15).netName, "");
    Open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return Log().size() >= 16; }, kPatience));
    EXPECT_EQ(Count("04 Camera 4 Network error."), 1);
    EXPECT_EQ(Count("01 Camera 1 Network connect."), 1);
    EXPECT_EQ(Count("16  Network connect."), 1);
    server.Drop(9);
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return Count("10 Camera 10 Network close.") > 0; }, kPatience));
    EXPECT_EQ(Count("10 Camera 10 Network close."), 1) << "one close, one entry";
    SetFieldText(Info(0).netName, "Renamed");
    EXPECT_EQ(Count("01 Camera 1 Network connect."), 1);
    Click(IDC_LOG_CLEAN);
    EXPECT_TRUE(Log().empty());
}

TEST_F(ControlPanel, TheWatchdogRestartsWhatIsSilentOncePerPeriod) {
    server.SetFault(2, MakeFault(FaultKind::Silent));
    SetFieldText(Info(5).port, "no port");
    SetFieldText(Info(6).host, "");
    Open();
    for (const int k : {0, 1, 3}) ExpectLive(k);
    window->SetTimer(kWatchdogTimer, 1500);  // its own period is half a minute
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return Count("03 Camera 3 Unknown Error.") == 2; }, kPatience));
    EXPECT_EQ(Count("06 Camera 6 Unknown Error."), 2);
    EXPECT_EQ(Count("07 Camera 7 Unknown Error."), 0) << "has no host";
    EXPECT_EQ(Count("01 Camera 1 Unknown Error."), 0) << "delivers pictures";
    window->KillTimer(kWatchdogTimer);
    EXPECT_TRUE(server.WaitForConnections(2, 3));
    server.SetFault(2, {});
    ExpectLive(2);
}

TEST_F(ControlPanel, AWatchdogTickCancelsThePendingReconnect) {
    server.SetFault(7, MakeFault(FaultKind::Close));
    Open();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return Count("08 Camera 8 Network close.") == 1; }, kPatience));
    server.SetFault(7, MakeFault(FaultKind::Silent));
    ExpectLive(0);
    window->SetTimer(kWatchdogTimer, 500);
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return Count("08 Camera 8 Unknown Error.") == 1; }, kPatience));
    window->KillTimer(kWatchdogTimer);
    ASSERT_TRUE(server.WaitForConnections(7, 2));
    // A reconnect of a channel that closes later comes without one of this channel before it.
    server.Drop(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !IsConnected(0); }, kPatience));
    ASSERT_TRUE(QTest::qWaitFor([&] { return IsConnected(0); }, kPatience));
    EXPECT_EQ(server.Stats(7).connections, 2U);
}

TEST_F(ControlPanel, PopUpsFollowTheMouseOnlyWhenEnabled) {
    WithoutHosts();
    Open();
    const auto moveOver = [&](int k) {
        QTest::mouseMove(&window->Pane(k), QPoint(20, 20));
        QTest::mouseMove(&window->Pane(k), QPoint(25, 25));
        QCoreApplication::processEvents();
    };
    moveOver(2);
    EXPECT_TRUE(VisiblePopups().empty());
    ClickEnablePopup();
    moveOver(2);
    ASSERT_EQ(VisiblePopups().size(), 1U);
    CPopupInfoDlg* const second = VisiblePopups()[0];
    moveOver(5);
    ASSERT_EQ(VisiblePopups().size(), 1U);
    EXPECT_NE(VisiblePopups()[0], second);
    EXPECT_TRUE(second->testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_TRUE(second->windowFlags() & Qt::WindowDoesNotAcceptFocus);
    QTest::mouseMove(&window->ControlPanel(), QPoint(3, 3));
    QCoreApplication::processEvents();
    EXPECT_TRUE(VisiblePopups().empty());
    moveOver(2);
    EXPECT_EQ(VisiblePopups().size(), 1U);
    ClickEnablePopup();
    EXPECT_TRUE(VisiblePopups().empty()) << "nothing would hide it any more";
}

TEST_F(ControlPanel, EveryCommandIsReachedByTheTabKey) {
    WithoutHosts();
    Open();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    Click(IDC_VIEW_4);
    Click(IDC_NEXT_PAGE);  // page 2 of 4: both page buttons are enabled
    std::set<int> reached;
    for (int k = 0; k < 60; ++k) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        reached.insert(ControlId(*QApplication::focusWidget()));
    }
    for (const int id :
         {IDC_RECORD_TOGGLE, IDC_STOP_ALL, IDC_START_ALL, IDC_LOGO, IDC_LOG_LIST, IDC_LOG_CLEAN,
          IDC_LOG_SAVE, IDC_PREVIOUS_PAGE, IDC_NEXT_PAGE, IDC_ENABLE_POPUP, IDC_EXIT}) {
        EXPECT_TRUE(reached.contains(id)) << id;
    }
    EXPECT_TRUE(reached.contains(IDC_VIEW_4)) << "arrow keys lead to the other views";
}

TEST_F(ControlPanel, KeysSelectPanesTurnPagesAndPressButtons) {
    WithoutHosts();
    Open();
    QTest::mouseClick(&window->Pane(5), Qt::LeftButton);
    QTest::keyClick(&window->Pane(5), Qt::Key_Right);
    QTest::keyClick(&window->Pane(6), Qt::Key_Down);
    EXPECT_EQ(window->CurrentChannel(), 10);
    Click(IDC_VIEW_4);
    QTest::keyClick(window.get(), Qt::Key_PageDown);
    EXPECT_EQ(PageText(), QStringLiteral("4/4"));
    QTest::keyClick(window.get(), Qt::Key_PageDown);
    QTest::keyClick(window.get(), Qt::Key_PageUp);
    EXPECT_EQ(PageText(), QStringLiteral("3/4"));
    Control(IDC_START_ALL)->setFocus();
    QTest::keyClick(Control(IDC_START_ALL), Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_TRUE(IsRecording(3));
    Click(IDC_STOP_ALL);
    Control(IDC_LOG_LIST)->setFocus();
    QTest::keyClick(Control(IDC_LOG_LIST), Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_FALSE(IsRecording(0)) << "Enter in the list starts nothing";
}

TEST_F(ControlPanel, PagingByKeyKeepsTheFocusAwayFromStart) {
    WithoutHosts();
    Open();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    QTest::mouseClick(&window->Pane(9), Qt::LeftButton);
    Click(IDC_VIEW_4);
    window->Pane(9).setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_PageDown);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    QCoreApplication::processEvents();
    EXPECT_FALSE(IsRecording(9));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    EXPECT_EQ(window->CurrentChannel(), 12) << "the first pane in sight";
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_PageUp);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_PageDown);
    EXPECT_TRUE(window->Pane(12).hasFocus()) << "seen again";

    Control(IDC_NEXT_PAGE)->setFocus();
    Click(IDC_PREVIOUS_PAGE);
    Control(IDC_NEXT_PAGE)->setFocus();
    QTest::keyClick(Control(IDC_NEXT_PAGE), Qt::Key_Space);
    QCoreApplication::processEvents();
    EXPECT_EQ(PageText(), QStringLiteral("4/4"));
    EXPECT_TRUE(Control(IDC_PREVIOUS_PAGE)->hasFocus());
}

TEST_F(ControlPanel, AHeldKeyPressesOnce) {
    WithoutHosts();
    Open();
    QWidget* start = Control(IDC_RECORD_TOGGLE);
    start->setFocus();
    for (const bool repeated : {false, true, true}) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), repeated);
        QCoreApplication::sendEvent(start, &press);
        QCoreApplication::processEvents();
    }
    EXPECT_TRUE(IsRecording(0));
}

TEST_F(ControlPanel, CommandsOfDialogsToComeAreDisabled) {
    WithoutHosts();
    Open();
    EXPECT_FALSE(Control(IDC_SETTING)->isEnabled());
    EXPECT_FALSE(Control(IDC_PLAYBACK)->isEnabled());
}

TEST_F(ControlPanel, AnEventOfAClosedConnectionOpensNothing) {
    Open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return IsConnected(4); }, kPatience));
    window->PostMessage(WM_NETEVENT, static_cast<WPARAM>(NETEVENT_CLOSE),
                        reinterpret_cast<LPARAM>(&Info(4)));
    window->Channels().StopAllChannels(CloseFlag::Ordered);
    QCoreApplication::processEvents();
    EXPECT_EQ(Count("05 Camera 5 Network close."), 0);
}

// Sixteen cameras fail in nine ways at once; each has its own lines in the log and no other's.
TEST_F(ControlPanel, TheLogKeepsFailingCamerasApart) {
    const char* const faults[] = {"refuse",     "close",        "close-after:3",
                                  "silent",     "garbage",      "bit-flip:1",
                                  "truncate:1", "stamp-back:2", "content-type"};
    for (int k = 0; k < kChannelCount; ++k) {
        server.SetFault(k, *ParseFault(faults[static_cast<std::size_t>(k) % std::size(faults)]));
    }
    Open();
    const auto line = [](int k, const char* message) {
        return std::string(k < 9 ? "0" : "") + std::to_string(k + 1) + " Camera " +
               std::to_string(k + 1) + " " + message;
    };
    const auto ended = [&](int k) {
        return Count(line(k, "Network close.")) + Count(line(k, "Network error."));
    };
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            for (const int k : {0, 1, 2, 9, 10, 11}) {
                if (ended(k) == 0) return false;
            }
            for (int k = 0; k < kChannelCount; ++k) {
                if (k % 9 != 0 && Count(line(k, "Network connect.")) == 0) return false;
            }
            return true;
        },
        kPatience));
    for (int k = 0; k < kChannelCount; ++k) {
        const int fault = k % 9;
        EXPECT_EQ(Count(line(k, "Network connect.")), fault == 0 ? 0 : 1) << k;
        EXPECT_EQ(Count(line(k, "Network error.")), fault == 0 ? 1 : 0) << k;
        EXPECT_EQ(Count(line(k, "Network close.")), fault == 1 || fault == 2 ? 1 : 0) << k;
    }
}

TEST_F(ControlPanel, TheLogoOpensTheAboutBox) {
    WithoutHosts();
    Open();
    bool seen = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &poll, [&seen] {
        if (auto* about = dynamic_cast<CAboutDlg*>(QApplication::activeModalWidget())) {
            seen = true;
            about->close();
        }
    });
    poll.start(10);
    Click(IDC_LOGO);
    EXPECT_TRUE(QTest::qWaitFor([&] { return seen; }, kPatience));
}

TEST_F(ControlPanel, ExitEndsTheWindow) {
    WithoutHosts();
    window = std::make_unique<CMarvolenDlg>();
    QTimer::singleShot(0, window.get(),
                       [this] { QTest::mouseClick(Control(IDC_EXIT), Qt::LeftButton); });
    EXPECT_EQ(window->DoModal(), IDOK);
}

TEST_F(ControlPanel, EscapeInThePanelEndsTheWindowToo) {
    WithoutHosts();
    window = std::make_unique<CMarvolenDlg>();
    QTimer::singleShot(0, window.get(),
                       [this] { QTest::keyClick(Control(IDC_LOG_LIST), Qt::Key_Escape); });
    EXPECT_EQ(window->DoModal(), IDCANCEL);
}

TEST_F(ControlPanel, TenThousandViewChangesAndPopUpsLeaveNothingBehind) {
    WithoutHosts();
    Open();
    ClickEnablePopup();
    const auto turn = [&](int k) {
        const int ids[] = {IDC_VIEW_1, IDC_VIEW_4, IDC_NEXT_PAGE, IDC_VIEW_16};
        window->PostMessage(WM_COMMAND, MakeCommand(ids[k % 4], BN_CLICKED), 0);
        window->PostMessage(WM_POPUPPANE, static_cast<WPARAM>(k % 16), 0);
        QCoreApplication::processEvents();
    };
    for (int k = 0; k < 500; ++k) turn(k);
    const std::size_t descriptors = test::OpenDescriptors();
    const std::size_t bytes = mallinfo2().uordblks;  // 0 under a sanitizer, which checks for itself
    for (int k = 0; k < 10000; ++k) turn(k);
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
    EXPECT_LT(mallinfo2().uordblks, bytes + 200000);
}

}  // namespace
}  // namespace marvolen
