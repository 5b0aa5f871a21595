#include "platform/cell_delegate.h"

#include <QAbstractItemView>
#include <QPainter>
#include <QStyle>

#include <utility>

namespace marvolen {
namespace {

QPalette::ColorGroup ColorGroupOf(QStyle::State state) {
    if (!state.testFlag(QStyle::State_Enabled)) return QPalette::Disabled;
    return state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
}

}  // namespace

void CellDelegate::SetElideMode(int column, Qt::TextElideMode mode) {
    const auto index = static_cast<std::size_t>(column);
    if (index >= modes.size()) modes.resize(index + 1, Qt::ElideRight);
    modes[index] = mode;
}

Qt::TextElideMode CellDelegate::ElideMode(int column) const {
    const auto index = static_cast<std::size_t>(column);
    return index < modes.size() ? modes[index] : Qt::ElideRight;
}

int CellDelegate::WidthOf(const QFontMetrics& metrics, const QString& text) {
    return metrics.horizontalAdvance(text) + 2 * kCellPadding + 1;
}

QSize CellDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const int height = QStyledItemDelegate::sizeHint(option, index).height();
    return {WidthOf(option.fontMetrics, index.data().toString()), height};
}

void CellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const auto* view = qobject_cast<const QAbstractItemView*>(option.widget);
    if (!view) return QStyledItemDelegate::paint(painter, option, index);
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QString text = std::exchange(cell.text, QString());
    view->style()->drawControl(QStyle::CE_ItemViewItem, &cell, painter, view);
    const QRect seen = option.rect & view->viewport()->rect();
    const QRect room = seen.adjusted(kCellPadding, 0, -kCellPadding, 0);
    if (room.width() <= 0) return;
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setFont(cell.font);
    painter->setPen(cell.palette.color(ColorGroupOf(option.state),
                                       selected ? QPalette::HighlightedText : QPalette::Text));
    painter->drawText(room, Qt::TextSingleLine | static_cast<int>(cell.displayAlignment),
                      cell.fontMetrics.elidedText(text, ElideMode(index.column()), room.width()));
    painter->restore();
}

}  // namespace marvolen
