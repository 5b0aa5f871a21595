#include "platform/header_control.h"

#include "platform/cell_delegate.h"

#include <QPainter>
#include <QStyleOptionHeaderV2>

namespace marvolen {

CHeaderCtrl::CHeaderCtrl(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
    setMinimumSectionSize(0);
}

unsigned CHeaderCtrl::GetItemFormat(int item) const {
    if (item < 0 || item >= count()) return HDF_LEFT;
    return model()->headerData(item, Qt::Horizontal, kHeaderFormatRole).toUInt();
}

bool CHeaderCtrl::SetItemFormat(int item, unsigned format) {
    if (item < 0 || item >= count()) return false;
    return model()->setHeaderData(item, Qt::Horizontal, format, kHeaderFormatRole);
}

QString CHeaderCtrl::GetItemText(int item) const {
    if (item < 0 || item >= count()) return {};
    return model()->headerData(item, Qt::Horizontal).toString();
}

void CHeaderCtrl::DrawItem(const DrawItemInfo&) const {}

void CHeaderCtrl::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const {
    if (!rect.isValid()) return;
    QStyleOptionHeaderV2 option;
    initStyleOption(&option);
    option.rect = rect;
    initStyleOptionForIndex(&option, logicalIndex);
    // The style's own section lies below an item that paints itself, too, so that the lines between
    // the items stay the same.
    painter->save();
    style()->drawControl(QStyle::CE_HeaderSection, &option, painter, this);
    painter->restore();

    painter->save();
    if ((GetItemFormat(logicalIndex) & HDF_OWNERDRAW) == 0) {
        painter->setClipRect(rect, Qt::IntersectClip);
        DrawStyledLabel(*painter, option);
    } else {
        painter->setClipRect(rect.adjusted(0, 0, -1, -1), Qt::IntersectClip);
        DrawItem({*painter, logicalIndex, rect, (option.state & QStyle::State_Sunken) != 0});
    }
    painter->restore();
}

// Styles inset names and cells by margins of their own; here a name begins and ends where its
// column's texts do.
void CHeaderCtrl::DrawStyledLabel(QPainter& painter, QStyleOptionHeaderV2 option) const {
    const QRect section = option.rect;
    option.rect = style()->subElementRect(QStyle::SE_HeaderLabel, &option, this);
    option.rect.setLeft(section.left() + kCellPadding);
    option.rect.setRight(section.right() - kCellPadding);
    if (option.rect.isValid())
        style()->drawControl(QStyle::CE_HeaderLabel, &option, &painter, this);
}

}  // namespace marvolen
