#include "platform/header_control.h"

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
    if ((GetItemFormat(logicalIndex) & HDF_OWNERDRAW) == 0) {
        QHeaderView::paintSection(painter, rect, logicalIndex);
        return;
    }
    if (!rect.isValid()) return;
    QStyleOptionHeaderV2 option;
    initStyleOption(&option);
    option.rect = rect;
    initStyleOptionForIndex(&option, logicalIndex);
    // The style's own section lies below, so that the lines between the items stay the same.
    painter->save();
    style()->drawControl(QStyle::CE_HeaderSection, &option, painter, this);
    painter->restore();

    painter->save();
    painter->setClipRect(rect.adjusted(0, 0, -1, -1), Qt::IntersectClip);
    DrawItem({*painter, logicalIndex, rect, (option.state & QStyle::State_Sunken) != 0});
    painter->restore();
}

}  // namespace marvolen
