// The control panel's commands, driven with real clicks and keys.

#include "app/control_panel_dlg.h"
#include "display/popup_info_dlg.h"
#include "res/resource_ids.h"
#include "tests/app/main_window.h"

#include <QApplication>

#include <algorithm>
#include <vector>

namespace marvolen {
namespace {

class ControlPanel : public test::MainWindow {
protected:
    ControlPanel() {
        WithoutHosts();
        Open();
    }

    QString Page() { return PageText(IDC_PAGE_TEXT); }

    void ClickPane(int k) { QTest::mouseClick(&window->Pane(k), Qt::LeftButton); }
    static void Key(int key) {
        QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key));
        QCoreApplication::processEvents();
    }

    long RecordingPanes() {
        long count = 0;
        for (int k = 0; k < kChannelCount; ++k) count += IsRecording(k);
        return count;
    }

    std::vector<CPopupInfoDlg*> VisiblePopups() {
        std::vector<CPopupInfoDlg*> visible;
        for (CPopupInfoDlg* popup : window->findChildren<CPopupInfoDlg*>()) {
            if (popup->isVisible()) visible.push_back(popup);
        }
        return visible;
    }
};

TEST_F(ControlPanel, ViewsShowThePageOfTheSelectedChannel) {
    EXPECT_EQ(window->CurrentChannel(), 0);
    EXPECT_EQ(Page(), QStringLiteral("1/1"));
    EXPECT_FALSE(Control(IDC_NEXT_PAGE)->isEnabled() || Control(IDC_PREVIOUS_PAGE)->isEnabled());
    ClickPane(9);
    for (int k = 0; k < kChannelCount; ++k) {
        EXPECT_EQ(Status(k) & PANE_SELECTED, k == 9 ? PANE_SELECTED : 0U) << k;
    }
    Click(IDC_VIEW_4);
    EXPECT_EQ(Page(), QStringLiteral("3/4"));
    EXPECT_EQ(VisiblePanes(), (std::set<int>{8, 9, 10, 11}));
    ClickPane(11);
    Click(IDC_NEXT_PAGE);
    ClickPane(15);
    Click(IDC_VIEW_1);
    EXPECT_EQ(Page(), QStringLiteral("16/16"));
    EXPECT_FALSE(Control(IDC_NEXT_PAGE)->isEnabled());
    Click(IDC_PREVIOUS_PAGE);
    EXPECT_EQ(VisiblePanes(), std::set<int>{14});
    EXPECT_EQ(window->Pane(14).geometry(),
              QRect(0, 0, window->ControlPanel().x(), window->height()));
    EXPECT_EQ(Status(14) & PANE_SELECTED, 0U) << "paging leaves the selection alone";
    Click(IDC_RECORD_TOGGLE);
    EXPECT_TRUE(IsRecording(15));
    EXPECT_FALSE(IsRecording(14));
    Click(IDC_VIEW_16);
    EXPECT_EQ(VisiblePanes().size(), 16U);
    EXPECT_EQ(Page(), QStringLiteral("1/1"));
}

TEST_F(ControlPanel, RecordingCommandsFollowTheSelectedPane) {
    const auto expectButton = [&](const char* text) {
        EXPECT_EQ(Text(IDC_RECORD_TOGGLE), QLatin1String(text));
        EXPECT_TRUE(Control(IDC_RECORD_TOGGLE)->accessibleName().startsWith(QLatin1String(text)));
    };
    expectButton("Start");
    Click(IDC_RECORD_TOGGLE);
    EXPECT_TRUE(IsRecording(0));
    expectButton("Stop");
    ClickPane(1);
    expectButton("Start");
    Click(IDC_START_ALL);
    EXPECT_EQ(RecordingPanes(), 16);
    expectButton("Stop");
    Click(IDC_RECORD_TOGGLE);
    EXPECT_FALSE(IsRecording(1));
    EXPECT_EQ(RecordingPanes(), 15);
    Click(IDC_STOP_ALL);
    EXPECT_EQ(RecordingPanes(), 0);
    expectButton("Start");
}

// A command given by a click is carried out after it, in order with what is posted.
TEST_F(ControlPanel, CommandsAreQueued) {
    QTest::mouseClick(Control(IDC_START_ALL), Qt::LeftButton);
    EXPECT_EQ(RecordingPanes(), 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(RecordingPanes(), 16);
}

TEST_F(ControlPanel, PopUpsFollowTheMouseOnlyWhenEnabled) {
    const auto moveOver = [&](QWidget* widget) {
        QTest::mouseMove(widget, QPoint(3, 3));
        QTest::mouseMove(widget, QPoint(5, 5));
        QCoreApplication::processEvents();
    };
    moveOver(&window->Pane(2));
    EXPECT_TRUE(VisiblePopups().empty());
    Click(IDC_ENABLE_POPUP);
    moveOver(&window->Pane(2));
    ASSERT_EQ(VisiblePopups().size(), 1U);
    CPopupInfoDlg* const second = VisiblePopups()[0];
    moveOver(&window->Pane(5));
    ASSERT_EQ(VisiblePopups().size(), 1U);
    EXPECT_NE(VisiblePopups()[0], second);
    moveOver(&window->ControlPanel());
    EXPECT_TRUE(VisiblePopups().empty());
    moveOver(&window->Pane(2));
    EXPECT_EQ(VisiblePopups().size(), 1U);
    Click(IDC_ENABLE_POPUP);
    EXPECT_TRUE(VisiblePopups().empty()) << "nothing would hide it any more";
}

TEST_F(ControlPanel, EveryCommandIsReachedByTheTabKey) {
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    Click(IDC_VIEW_4);
    Click(IDC_NEXT_PAGE);  // page 2 of 4: both page buttons are enabled
    std::set<int> reached;
    for (int k = 0; k < 60; ++k) {
        Key(Qt::Key_Tab);
        reached.insert(ControlId(*QApplication::focusWidget()));
    }
    for (const int id :
         {IDC_RECORD_TOGGLE, IDC_STOP_ALL, IDC_START_ALL, IDC_LOGO, IDC_LOG_LIST, IDC_LOG_CLEAN,
          IDC_LOG_SAVE, IDC_PREVIOUS_PAGE, IDC_NEXT_PAGE, IDC_VIEW_4, IDC_ENABLE_POPUP, IDC_EXIT}) {
        EXPECT_TRUE(reached.contains(id)) << id;
        EXPECT_FALSE(Control(id)->accessibleName().isEmpty()) << id;
    }
}

TEST_F(ControlPanel, KeysSelectPanesTurnPagesAndPressButtons) {
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    ClickPane(5);
    Key(Qt::Key_Right);
    Key(Qt::Key_Down);
    EXPECT_EQ(window->CurrentChannel(), 10);
    Click(IDC_VIEW_4);
    window->Pane(10).setFocus();
    Key(Qt::Key_PageDown);
    EXPECT_EQ(Page(), QStringLiteral("4/4"));
    Key(Qt::Key_Space);
    EXPECT_EQ(RecordingPanes(), 0) << "the focus of a hidden pane isn't on \"Start\"";
    Key(Qt::Key_Right);
    EXPECT_EQ(window->CurrentChannel(), 12) << "the first pane in sight";
    Key(Qt::Key_PageUp);
    Key(Qt::Key_PageDown);
    EXPECT_TRUE(window->Pane(12).hasFocus()) << "seen again";
    Control(IDC_PREVIOUS_PAGE)->setFocus();
    for (int press = 0; press < 3; ++press) Key(Qt::Key_Space);
    EXPECT_EQ(Page(), QStringLiteral("1/4"));
    EXPECT_TRUE(Control(IDC_NEXT_PAGE)->hasFocus()) << "the other one is disabled";
    Control(IDC_LOG_LIST)->setFocus();
    Key(Qt::Key_Return);
    EXPECT_EQ(RecordingPanes(), 0) << "Enter in the list starts nothing";
    Control(IDC_START_ALL)->setFocus();
    Key(Qt::Key_Return);
    EXPECT_EQ(RecordingPanes(), 16);
}

}  // namespace
}  // namespace marvolen
