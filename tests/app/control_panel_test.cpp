// The control panel's commands, driven with real clicks and keys.

#include "app/control_panel_dlg.h"
#include "display/popup_info_dlg.h"
#include "tests/app/main_window.h"

#include <QAccessible>
#include <QApplication>

namespace marvolen {
namespace {

class ControlPanel : public test::MainWindow {
protected:
    ControlPanel() {
        WithoutHosts();
        Open();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    void ClickPane(int k) { QTest::mouseClick(&window->Pane(k), Qt::LeftButton); }
    static void Key(int key) {
        QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key));
        QCoreApplication::processEvents();
    }
    void ExpectToggle(const QString& text) {
        EXPECT_EQ(Text(IDC_RECORD_TOGGLE), text);
        EXPECT_TRUE(Control(IDC_RECORD_TOGGLE)->accessibleName().startsWith(text));
    }
};

TEST_F(ControlPanel, ViewsShowThePageOfTheSelectedChannel) {
    EXPECT_EQ(Page(), QStringLiteral("1/1"));
    EXPECT_FALSE(Control(IDC_NEXT_PAGE)->isEnabled() || Control(IDC_PREVIOUS_PAGE)->isEnabled());
    ClickPane(9);
    for (int k = 0; k < kChannelCount; ++k) EXPECT_EQ(Has(k, PANE_SELECTED), k == 9) << k;
    Click(IDC_VIEW_4);
    EXPECT_EQ(Page(), QStringLiteral("3/4"));
    EXPECT_EQ(Visible(), (std::set<int>{8, 9, 10, 11}));
    Click(IDC_NEXT_PAGE);
    ClickPane(15);
    Click(IDC_VIEW_1);
    EXPECT_EQ(Page(), QStringLiteral("16/16"));
    EXPECT_FALSE(Control(IDC_NEXT_PAGE)->isEnabled());
    Click(IDC_PREVIOUS_PAGE);
    EXPECT_EQ(Visible(), std::set<int>{14});
    EXPECT_EQ(window->Pane(14).geometry(),
              QRect(0, 0, window->ControlPanel().x(), window->height()));
    Click(IDC_RECORD_TOGGLE);
    EXPECT_EQ(Recording(), std::set<int>{15}) << "paging leaves the selection alone";
    Click(IDC_VIEW_16);
    EXPECT_EQ(Visible().size(), 16U);
    auto* page = QAccessible::queryAccessibleInterface(Control(IDC_PAGE_TEXT));
    EXPECT_EQ(page->text(QAccessible::Name), QStringLiteral("Page 1/1"));
}

// They follow the selected pane, each when the click that gave it is over.
TEST_F(ControlPanel, RecordingCommandsAreQueued) {
    ExpectToggle(QStringLiteral("Start"));
    Click(IDC_RECORD_TOGGLE);
    EXPECT_EQ(Recording(), std::set<int>{0});
    ExpectToggle(QStringLiteral("Stop"));
    ClickPane(1);
    ExpectToggle(QStringLiteral("Start"));
    QTest::mouseClick(Control(IDC_START_ALL), Qt::LeftButton);
    EXPECT_EQ(Recording(), std::set<int>{0});
    QCoreApplication::processEvents();
    EXPECT_EQ(Recording().size(), 16U);
    ExpectToggle(QStringLiteral("Stop"));
    Click(IDC_RECORD_TOGGLE);
    EXPECT_EQ(Recording().size(), 15U);
    EXPECT_FALSE(Has(1, PANE_RECORDING));
    ClickPane(2);
    Click(IDC_STOP_ALL);
    EXPECT_TRUE(Recording().empty());
    ExpectToggle(QStringLiteral("Start"));
}

TEST_F(ControlPanel, PopUpsFollowTheMouseOnlyWhenEnabled) {
    const auto popups = window->findChildren<CPopupInfoDlg*>();  // in their panes' order
    const auto popupsOver = [&](QWidget* widget) {
        QTest::mouseMove(widget, QPoint(3, 3));
        QTest::mouseMove(widget, QPoint(5, 5));
        QCoreApplication::processEvents();
        return PanesThat([&](int k) { return popups[k]->isVisible(); });
    };
    EXPECT_EQ(popupsOver(&window->Pane(2)), std::set<int>{});
    Click(IDC_ENABLE_POPUP);
    EXPECT_EQ(popupsOver(&window->Pane(2)), std::set{2});
    EXPECT_EQ(popupsOver(&window->Pane(5)), std::set{5});
    EXPECT_EQ(popupsOver(&window->ControlPanel()), std::set<int>{});
    EXPECT_EQ(popupsOver(&window->Pane(2)), std::set{2});
    Click(IDC_ENABLE_POPUP);
    EXPECT_FALSE(popups[2]->isVisible()) << "nothing would hide it any more";
}

TEST_F(ControlPanel, EveryCommandIsReachedByTheTabKey) {
    ClickPane(5);
    Click(IDC_VIEW_4);  // page 2 of 4: both page buttons are enabled
    std::set<int> reached;
    for (int k = 0; k < 60; ++k) {
        Key(Qt::Key_Tab);
        reached.insert(ControlId(*QApplication::focusWidget()));
    }
    for (const int id : {IDC_RECORD_TOGGLE, IDC_STOP_ALL, IDC_START_ALL, IDC_LOGO, IDC_PLAYBACK,
                         IDC_LOG_LIST, IDC_LOG_CLEAN, IDC_LOG_SAVE, IDC_PREVIOUS_PAGE,
                         IDC_NEXT_PAGE, IDC_VIEW_4, IDC_ENABLE_POPUP, IDC_EXIT}) {
        EXPECT_TRUE(reached.contains(id)) << id;
        EXPECT_FALSE(Control(id)->accessibleName().isEmpty()) << id;
    }
    for (const QAbstractButton* button : window->ControlPanel().findChildren<QAbstractButton*>()) {
        EXPECT_TRUE(button->accessibleName().contains(button->text())) << ControlId(*button);
    }
}

TEST_F(ControlPanel, KeysSelectPanesTurnPagesAndPressButtons) {
    ClickPane(5);
    Key(Qt::Key_Right);
    Key(Qt::Key_Down);
    EXPECT_EQ(window->CurrentChannel(), 10);
    Click(IDC_VIEW_4);
    window->Pane(10).setFocus();
    Key(Qt::Key_PageDown);
    EXPECT_EQ(Page(), QStringLiteral("4/4"));
    Key(Qt::Key_Space);
    EXPECT_TRUE(Recording().empty()) << "the focus of a hidden pane isn't on \"Start\"";
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
    EXPECT_TRUE(Recording().empty()) << "Enter in the list starts nothing";
    Control(IDC_START_ALL)->setFocus();
    Key(Qt::Key_Return);
    EXPECT_EQ(Recording().size(), 16U);
}

}  // namespace
}  // namespace marvolen
