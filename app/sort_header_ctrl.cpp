#include "app/sort_header_ctrl.h"

#include "app/sort_arrow.h"
#include "platform/cell_delegate.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

namespace marvolen {
namespace {

constexpr qsizetype kLongestLabel = 254;
constexpr int kArrowMargins = 3;  // the arrow's width in margins

// A pen's colour as the palette has it, or one between face and text where that would hardly show
// on the face: palettes need not have light and dark shades that differ from it.
QColor VisibleShade(const QColor& shade, const QColor& face, const QColor& text) {
    constexpr int kLeastDifference = 60;
    if (std::abs(qGray(shade.rgb()) - qGray(face.rgb())) >= kLeastDifference) return shade;
    return QColor(std::midpoint(face.red(), text.red()), std::midpoint(face.green(), text.green()),
                  std::midpoint(face.blue(), text.blue()));
}

}  // namespace

CSortHeaderCtrl::CSortHeaderCtrl(QWidget* parent) : CHeaderCtrl(parent) {}

void CSortHeaderCtrl::SetSortArrow(int column, bool ascending) {
    sortColumn = column;
    sortAscending = ascending;
    SetItemFormat(column, GetItemFormat(column) | HDF_OWNERDRAW);
    viewport()->update();
}

int CSortHeaderCtrl::WidthOfName(int column) const {
    const QString name = GetItemText(column);
    const int alone = CellDelegate::WidthOf(fontMetrics(), name);
    if (column != sortColumn) return alone;
    const int margins = (kArrowMargins + 2) * HeaderMargin(height());
    return std::max(alone, fontMetrics().horizontalAdvance(name) + margins);
}

void CSortHeaderCtrl::DrawItem(const DrawItemInfo& draw) const {
    draw.painter.fillRect(draw.rect, palette().color(QPalette::Button));
    DrawLabel(draw, HeaderMargin(draw.rect.height()));
    if (draw.item == sortColumn) DrawArrow(draw);
}

void CSortHeaderCtrl::DrawLabel(const DrawItemInfo& draw, int off) const {
    QRect rect = draw.rect;
    if (draw.pressed) rect.adjust(1, 2, 1, 0);
    if (draw.item == sortColumn) rect.setRight(rect.right() - kArrowMargins * off);
    rect.adjust(off, 0, -off, 0);
    if (rect.isEmpty()) return;
    const unsigned justify = GetItemFormat(draw.item) & HDF_JUSTIFYMASK;
    const int flags = Qt::TextSingleLine | Qt::TextDontClip | Qt::AlignVCenter |
                      (justify == HDF_CENTER  ? Qt::AlignHCenter
                       : justify == HDF_RIGHT ? Qt::AlignRight
                                              : Qt::AlignLeft);
    const QString text = GetItemText(draw.item).left(kLongestLabel);
    draw.painter.setPen(palette().color(QPalette::ButtonText));
    draw.painter.drawText(
        rect, flags, draw.painter.fontMetrics().elidedText(text, Qt::ElideRight, rect.width()));
}

void CSortHeaderCtrl::DrawArrow(const DrawItemInfo& draw) const {
    const QColor face = palette().color(QPalette::Button);
    const QColor text = palette().color(QPalette::ButtonText);
    const QColor light = VisibleShade(palette().color(QPalette::Light), face, text);
    const QColor dark = VisibleShade(palette().color(QPalette::Dark), face, text);
    // Drawn in the screen's own pixels, so that the sides are smooth at every scaling.
    QPainter& painter = draw.painter;
    const qreal scale = painter.device()->devicePixelRatioF();
    const int pen = std::max(1, static_cast<int>(scale));
    painter.translate(draw.rect.topLeft());
    painter.scale(1 / scale, 1 / scale);
    const int width = static_cast<int>(std::lround(draw.rect.width() * scale));
    const int height = static_cast<int>(std::lround(draw.rect.height() * scale));
    for (const ArrowPixel& pixel : SortArrow(width, height, sortAscending)) {
        painter.fillRect(pixel.x, pixel.y, pen, pen, pixel.light ? light : dark);
    }
}

}  // namespace marvolen
