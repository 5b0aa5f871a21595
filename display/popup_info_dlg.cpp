#include "display/popup_info_dlg.h"

#include "display/pane_status.h"
#include "display/video_pane.h"
#include "res/resource_ids.h"
#include "res/resources.h"

#include <QEvent>
#include <QFontMetrics>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QStyle>

namespace marvolen {
namespace {

constexpr QSize kTemplateSize(194, 47);  // dialog units
constexpr int kMargin = 8;
constexpr int kSpacing = 4;
constexpr int kIconColumn = 2;

void SetText(QLineEdit& field, const QString& text) {
    if (field.text() == text) return;
    field.setText(text);
    field.setCursorPosition(0);  // a long name shows its beginning
}

// Makes room for the longest time, and for as much of a name, in the field's font.
void WidenField(QLineEdit& field) {
    const QFontMetrics metrics = field.fontMetrics();
    const int frame = field.sizeHint().height() - metrics.height();
    const int text = metrics.horizontalAdvance(QStringLiteral("0000/00/00 00:00:00"));
    field.setMinimumWidth(text + 2 * frame);
}

}  // namespace

CPopupInfoDlg::CPopupInfoDlg(const VideoPane& itsPane, QWidget* parent)
    : CDialog(parent), pane(itsPane), marks(StatusMarks::Shared()) {
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus |
                   Qt::WindowTransparentForInput);
    setAttribute(Qt::WA_ShowWithoutActivating);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    grid->setHorizontalSpacing(2 * kSpacing);
    grid->setVerticalSpacing(kSpacing);
    channel = AddField(0, QStringLiteral("Channel No."), IDC_POPUP_CHANNEL);
    name = AddField(1, QStringLiteral("Name"), IDC_POPUP_NAME);
    time = AddField(2, QStringLiteral("Time"), IDC_POPUP_TIME);
    AddMark(recording, 0, IDC_POPUP_RECORDING, QStringLiteral("Recording"));
    AddMark(connected, 1, IDC_POPUP_CONNECTED, QStringLiteral("Connected"));
    resize(sizeHint());
    connect(&pane, &PicturePane::titleChanged, this, [this] {
        if (isVisible()) RefreshPopup();
    });
}

QLineEdit* CPopupInfoDlg::AddField(int row, const QString& label, int id) {
    auto* field = new QLineEdit(this);
    field->setReadOnly(true);
    field->setFocusPolicy(Qt::NoFocus);
    WidenField(*field);
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

QSize CPopupInfoDlg::sizeHint() const {
    return MapDialogUnits(kTemplateSize).expandedTo(CDialog::sizeHint());
}

void CPopupInfoDlg::changeEvent(QEvent* event) {
    CDialog::changeEvent(event);
    if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
    for (QLineEdit* field : findChildren<QLineEdit*>()) WidenField(*field);
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
