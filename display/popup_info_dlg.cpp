#include "display/popup_info_dlg.h"

#include "display/pane_status.h"
#include "display/video_pane.h"
#include "res/resource_ids.h"
#include "res/resources.h"

#include <QFontMetrics>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QStyle>

namespace marvolen {
namespace {

constexpr int kMargin = 8;
constexpr int kSpacing = 4;
constexpr int kIconColumn = 2;

void SetText(QLineEdit& field, const QString& text) {
    if (field.text() == text) return;
    field.setText(text);
    field.setCursorPosition(0);  // a long name shows its beginning
}

}  // namespace

CPopupInfoDlg::CPopupInfoDlg(const VideoPane& itsPane, QWidget* parent)
    : CDialog(parent), pane(itsPane), marks(StatusMarks::Shared()) {
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus);
    setAttribute(Qt::WA_ShowWithoutActivating);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    grid->setHorizontalSpacing(2 * kSpacing);
    grid->setVerticalSpacing(kSpacing);
    const auto longestTime = QStringLiteral("0000/00/00 00:00:00");
    channel = AddField(0, QStringLiteral("Channel No."), IDC_POPUP_CHANNEL, longestTime);
    name = AddField(1, QStringLiteral("Name"), IDC_POPUP_NAME, longestTime);
    time = AddField(2, QStringLiteral("Time"), IDC_POPUP_TIME, longestTime);
    AddMark(recording, 0, IDC_POPUP_RECORDING, QStringLiteral("Recording"));
    AddMark(connected, 1, IDC_POPUP_CONNECTED, QStringLiteral("Connected"));
    resize(sizeHint());
}

QLineEdit* CPopupInfoDlg::AddField(int row, const QString& label, int id, const QString& longest) {
    auto* field = new QLineEdit(this);
    field->setReadOnly(true);
    field->setFocusPolicy(Qt::NoFocus);
    const int frame = field->sizeHint().height() - field->fontMetrics().height();
    field->setMinimumWidth(field->fontMetrics().horizontalAdvance(longest) + 2 * frame);
    AddControl(field, id, label);
    auto* grid = static_cast<QGridLayout*>(layout());
    grid->addWidget(new QLabel(label, this), row, 0);
    grid->addWidget(field, row, 1);
    return field;
}

void CPopupInfoDlg::AddMark(MarkControl& control, int row, int id, const QString& accessibleName) {
    control.icon = new QLabel(this);
    control.icon->setFixedSize(kStatusMarkSize);
    AddControl(control.icon, id, accessibleName);
    static_cast<QGridLayout*>(layout())->addWidget(control.icon, row, kIconColumn);
}

void CPopupInfoDlg::RefreshPopup() {
    SetText(*channel, QString::number(pane.index + 1));
    SetText(*name, pane.GetName());
    SetText(*time, QString::fromStdString(pane.GetTimeText()));
    ShowMark(recording, StatusMarks::kRecording, (pane.GetStatus() & PANE_RECORDING) != 0);
    ShowMark(connected, StatusMarks::kConnected, (pane.GetStatus() & PANE_CONNECTED) != 0);
}

void CPopupInfoDlg::ShowMark(MarkControl& control, int mark, bool shown) {
    const qreal ratio = shown ? devicePixelRatioF() : 0;
    if (control.ratio == ratio) return;
    control.ratio = ratio;
    control.icon->setPixmap(shown ? marks->Mark(mark, ratio) : QPixmap());
}

// A frameless window needs an outline of its own to stand off from what is below it.
void CPopupInfoDlg::paintEvent(QPaintEvent* event) {
    CDialog::paintEvent(event);
    QPainter painter(this);
    QColor outline = palette().color(QPalette::WindowText);
    outline.setAlphaF(0.35F);
    painter.setPen(outline);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

}  // namespace marvolen
