#include "display/popup_info_dlg.h"

#include "res/resource_ids.h"
#include "tests/display/pane_fixture.h"

#include <QLabel>
#include <QLineEdit>
#include <QScreen>

namespace marvolen {
namespace {

using namespace test;

class PopupTest : public PaneTest {
protected:
    void SetUp() override {
        PaneTest::SetUp();
        pane->CreatePopup();
        popup = dialog->findChild<CPopupInfoDlg*>();
        ASSERT_TRUE(popup);
    }

    QString Text(int id) { return popup->GetDlgItem<QLineEdit>(id)->text(); }
    QPixmap Mark(int id) { return popup->GetDlgItem<QLabel>(id)->pixmap(); }

    CPopupInfoDlg* popup = nullptr;  // the pane's
};

TEST_F(PopupTest, ShowsWhatItsPaneShowsAndFollowsIt) {
    ASSERT_TRUE(pane->Open("Gate", 0));
    pane->SetStatus(PANE_RECORDING, 0);
    pane->ShowPopup();
    EXPECT_TRUE(popup->isVisible());
    EXPECT_EQ(Text(IDC_POPUP_CHANNEL), QStringLiteral("3"));
    EXPECT_EQ(Text(IDC_POPUP_NAME), QStringLiteral("Gate"));
    EXPECT_EQ(Text(IDC_POPUP_TIME), QString());
    EXPECT_FALSE(Mark(IDC_POPUP_RECORDING).isNull());
    EXPECT_TRUE(Mark(IDC_POPUP_CONNECTED).isNull());

    pane->SetStatus(PANE_CONNECTED, PANE_RECORDING);
    SYSTEMTIME time{2004, 2, 0, 29, 8, 15, 0, 0};
    EXPECT_TRUE(WaitUntil([&] {
        Deliver(red, &time);
        return Text(IDC_POPUP_TIME) == QStringLiteral("2004/02/29 08:15:00");
    }));
    EXPECT_TRUE(Mark(IDC_POPUP_RECORDING).isNull());
    EXPECT_FALSE(Mark(IDC_POPUP_CONNECTED).isNull());

    pane->HidePopup();
    EXPECT_FALSE(popup->isVisible());
    time.second = 1;
    EXPECT_TRUE(WaitUntil([&] {
        Deliver(red, &time);
        return pane->GetTimeText() == "2004/02/29 08:15:01";
    }));
    EXPECT_EQ(Text(IDC_POPUP_TIME), QStringLiteral("2004/02/29 08:15:00"));
    pane->ShowPopup();
    EXPECT_EQ(Text(IDC_POPUP_TIME), QStringLiteral("2004/02/29 08:15:01"));
}

TEST_F(PopupTest, GoesBesideItsPaneAndKeepsItsSize) {
    const QRect desktop = pane->screen()->geometry();
    dialog->move(10, 20);
    pane->ShowPopup();
    const QSize natural = popup->size();
    const QPoint corner = pane->mapToGlobal(QPoint(kWidth, 0));
    EXPECT_EQ(popup->pos(), corner + QPoint(5, 5));
    for (int time = 0; time < 3; ++time) {
        dialog->move(10, desktop.bottom() - 30);
        pane->ShowPopup();
        EXPECT_EQ(popup->geometry().bottom(), desktop.bottom());
        EXPECT_EQ(popup->height(), natural.height() + 5);
    }
    dialog->move(10, 20);
    pane->ShowPopup();
    EXPECT_EQ(popup->size(), natural);
}

TEST_F(PopupTest, HasRoomForTheLongestTexts) {
    ASSERT_TRUE(pane->Open(std::string(259, 'W'), 0));
    pane->ShowPopup();
    const QLineEdit* name = popup->GetDlgItem<QLineEdit>(IDC_POPUP_NAME);
    EXPECT_EQ(name->cursorPosition(), 0);
    const QLineEdit* time = popup->GetDlgItem<QLineEdit>(IDC_POPUP_TIME);
    const QString longest = QStringLiteral("2004/02/29 08:15:00");
    for (const int points : {8, 12, 24}) {
        QFont font = popup->font();
        font.setPointSize(points);
        popup->setFont(font);
        pane->ShowPopup();
        const QSize natural = popup->MapDialogUnits({194, 47});
        EXPECT_GE(popup->width(), natural.width());
        EXPECT_GE(popup->height(), natural.height());
        EXPECT_GT(time->contentsRect().width(), time->fontMetrics().horizontalAdvance(longest) + 4);
    }
}

TEST_F(PopupTest, GoesWithItsPane) {
    const QPointer<CPopupInfoDlg> watched(popup);
    std::unique_ptr<VideoPane>(pane).reset();
    EXPECT_TRUE(watched.isNull());
}

TEST_F(PopupTest, MayGoBeforeItsPane) {
    const QPointer<CPopupInfoDlg> watched(popup);
    pane->raise();  // last in the order in which the dialog lets its children go
    dialog.reset();
    EXPECT_TRUE(watched.isNull());
}

}  // namespace
}  // namespace marvolen
