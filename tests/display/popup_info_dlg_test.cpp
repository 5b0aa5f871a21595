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
    }

    QLineEdit& Field(int id) { return *popup->GetDlgItem<QLineEdit>(id); }

    // Its fields and the names of the marks it shows.
    std::string Texts() {
        QString texts = Field(IDC_POPUP_CHANNEL).text() + Field(IDC_POPUP_NAME).text() +
                        Field(IDC_POPUP_TIME).text();
        for (const int id : {IDC_POPUP_RECORDING, IDC_POPUP_CONNECTED}) {
            const auto* mark = popup->GetDlgItem<QLabel>(id);
            if (!mark->pixmap().isNull()) texts += mark->accessibleName();
        }
        return texts.toStdString();
    }

    QPointer<CPopupInfoDlg> popup;  // the pane's
};

TEST_F(PopupTest, ShowsWhatItsPaneShowsAndFollowsItWhileVisible) {
    ASSERT_TRUE(pane->Open("Gate", 0));
    pane->SetStatus(PANE_RECORDING, 0);
    EXPECT_FALSE(popup->isVisible());
    pane->ShowPopup();
    EXPECT_EQ(Texts(), "3GateRecording");
    pane->SetStatus(PANE_CONNECTED, PANE_RECORDING);
    EXPECT_EQ(Texts(), "3GateConnected");
    ASSERT_TRUE(Show(Qt::red, &kQuarterPast));
    EXPECT_EQ(Texts(), "3Gate2004/02/29 08:15:00Connected");
    pane->HidePopup();
    EXPECT_FALSE(popup->isVisible());
    pane->SetStatus(0, PANE_CONNECTED);
    EXPECT_EQ(Texts(), "3Gate2004/02/29 08:15:00Connected");
    pane->ShowPopup();
    EXPECT_EQ(Texts(), "3Gate2004/02/29 08:15:00");
}

TEST_F(PopupTest, StaysInsideTheDesktopWithRoomForTheLongestTexts) {
    ASSERT_TRUE(pane->Open(std::string(259, 'W'), 0));
    popup->setFont(QFont(popup->font().family(), 24));
    dialog->move(10, pane->screen()->geometry().bottom() - 30);
    for (int showing = 0; showing < 3; ++showing) pane->ShowPopup();
    const QSize least = popup->MapDialogUnits({194, 47});
    EXPECT_EQ(popup->size(), popup->sizeHint().expandedTo(least) + QSize(0, 5));
    EXPECT_EQ(popup->geometry().bottom(), pane->screen()->geometry().bottom());
    const QLineEdit& time = Field(IDC_POPUP_TIME);
    const QRect text = time.fontMetrics().boundingRect(QStringLiteral("2004/02/29 08:15:00"));
    EXPECT_GT(time.contentsRect().width(), text.width() + 4);
    EXPECT_EQ(Field(IDC_POPUP_NAME).cursorPosition(), 0);
}

TEST_F(PopupTest, EitherMayGoBeforeTheOther) {
    std::unique_ptr<VideoPane>(pane).reset();
    EXPECT_FALSE(popup);
    pane = new VideoPane(dialog.get());
    pane->CreatePopup();
    pane->raise();  // last in the order in which the dialog lets its children go
    dialog.reset();
}

}  // namespace
}  // namespace marvolen
