#include "display/title_strip.h"

#include "display/pane_geometry.h"
#include "display/pane_status.h"
#include "display/qt_rect.h"

#include <QFontMetrics>

namespace marvolen {
namespace {

constexpr QColor kGround(0, 0, 0);
constexpr QColor kText(255, 255, 255);
constexpr QColor kSelectedFrame(255, 0, 0);

QRegion FrameRegion(QSize pane) {
    return QRegion(QRect(QPoint(0, 0), pane)) - ToQRect(InsideFrame(pane.width(), pane.height()));
}

void PaintText(QPainter& painter, QSize pane, const PixelRect& rect, const QString& text) {
    const PixelRect visible = Intersect(rect, InsideFrame(pane.width(), pane.height()));
    if (visible.Empty()) return;
    painter.setClipRect(ToQRect(visible));
    painter.drawText(ToQRect(rect), Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine, text);
    painter.setClipping(false);
}

}  // namespace

QFont StripFont(const QFont& desktopFont) {
    QFont font(desktopFont.family());
    font.setStyleStrategy(QFont::PreferAntialias);
    const QString widest = QStringLiteral("0000/00/00 00:00:00");
    for (int size = kTimeRect.Height(); size > 1; --size) {
        font.setPixelSize(size);
        const QFontMetrics metrics(font);
        if (metrics.height() <= kTimeRect.Height() &&
            metrics.horizontalAdvance(widest) <= kTimeRect.Width()) {
            break;
        }
    }
    return font;
}

void PaintTitleStrip(QPainter& painter, QSize pane, const QFont& font, const TitleStrip& strip,
                     StatusMarks& marks) {
    painter.fillRect(0, 0, pane.width(), kStripHeight, kGround);
    painter.setFont(font);
    painter.setPen(kText);
    PaintText(painter, pane, kNameRect, strip.name);
    const QColor frame = (strip.status & PANE_SELECTED) != 0 ? kSelectedFrame : kGround;
    for (const QRect& side : FrameRegion(pane)) painter.fillRect(side, frame);
    const qreal ratio = painter.device()->devicePixelRatioF();
    if ((strip.status & PANE_CONNECTED) != 0) {
        painter.drawPixmap(kConnectedMarkLeft, kMarkTop,
                           marks.Mark(StatusMarks::kConnected, ratio));
    }
    if ((strip.status & PANE_RECORDING) != 0) {
        painter.drawPixmap(kRecordingMarkLeft, kMarkTop,
                           marks.Mark(StatusMarks::kRecording, ratio));
    }
    if (strip.timeText) {
        PaintText(painter, pane, kTimeRect, QString::fromStdString(*strip.timeText));
    }
}

QRegion TitleStripRegion(QSize pane) {
    return FrameRegion(pane) + QRect(0, 0, pane.width(), kStripHeight);
}

}  // namespace marvolen
