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

    // Its fields and the names of the marks it shows.
    std::string Texts() {
        std::string texts;
        for (const int id : {IDC_POPUP_CHANNEL, IDC_POPUP_NAME, IDC_POPUP_TIME}) {
            texts += popup->GetDlgItem<QLineEdit>(id)->text().toStdString() + '|';
        }
        for (const int id : {IDC_POPUP_RECORDING, IDC_POPUP_CONNECTED}) {
            const auto* mark = popup->GetDlgItem<QLabel>(id);
            texts += mark->pixmap().isNull() ? "" : mark->accessibleName().toStdString();
        }
        return texts;
    }

    CPopupInfoDlg* popup = nullptr;  // the pane's
};

TEST_F(PopupTest, ShowsWhatItsPaneShowsAndFollowsItWhileVisible) {
    ASSERT_TRUE(pane->Open("Gate", 0));
    pane->SetStatus(PANE_RECORDING, 0);
    EXPECT_FALSE(popup->isVisible());
    pane->ShowPopup();
    EXPECT_EQ(Texts(), "3|Gate||Recording");
    pane->SetStatus(PANE_CONNECTED, PANE_RECORDING);
    EXPECT_EQ(Texts(), "3|Gate||Connected");
    ASSERT_TRUE(Show(Qt::red, &kQuarterPast));
    EXPECT_EQ(Texts(), "3|Gate|2004/02/29 08:15:00|Connected");
    pane->HidePopup();
    EXPECT_FALSE(popup->isVisible());
    pane->SetStatus(0, PANE_CONNECTED);
    EXPECT_EQ(Texts(), "3|Gate|2004/02/29 08:15:00|Connected");
    pane->ShowPopup();
    EXPECT_EQ(Texts(), "3|Gate|2004/02/29 08:15:00|");
}

TEST_F(PopupTest, GoesBesideItsPaneWithRoomForTheLongestTexts) {
    ASSERT_TRUE(pane->Open(std::string(259, 'W'), 0));
    dialog->move(10, 20);
    pane->ShowPopup();
    EXPECT_EQ(popup->pos(), pane->mapToGlobal(QPoint(kSize.width(), 0)) + QPoint(5, 5));
    const auto* time = popup->GetDlgItem<QLineEdit>(IDC_POPUP_TIME);
    for (const int points : {8, 12, 24}) {
        popup->setFont(QFont(popup->font().family(), points));
        dialog->move(10, 20);
        pane->ShowPopup();
        const QSize natural = popup->size();
        EXPECT_EQ(natural, natural.expandedTo(popup->MapDialogUnits({194, 47})));
        const int longest =
            time->fontMetrics().horizontalAdvance(QStringLiteral("2004/02/29 08:15:00"));
        EXPECT_GT(time->contentsRect().width(), longest + 4);
        dialog->move(10, pane->screen()->geometry().bottom() - 30);
        for (int showing = 0; showing < 3; ++showing) pane->ShowPopup();
        EXPECT_EQ(popup->size(), natural + QSize(0, 5));
        EXPECT_EQ(popup->geometry().bottom(), pane->screen()->geometry().bottom());
    }
    EXPECT_EQ(popup->GetDlgItem<QLineEdit>(IDC_POPUP_NAME)->cursorPosition(), 0);
}

TEST_F(PopupTest, EitherMayGoBeforeTheOther) {
    const QPointer<CPopupInfoDlg> watched(popup);
    std::unique_ptr<VideoPane>(pane).reset();
    EXPECT_TRUE(watched.isNull());
    pane = new VideoPane(dialog.get());
    pane->CreatePopup();
    pane->raise();  // last in the order in which the dialog lets its children go
    dialog.reset();
}

}  // namespace
}  // namespace marvolen
