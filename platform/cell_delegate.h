#pragma once

// How a report list paints its texts: close to their column's edges, and where a text has no room,
// cut at the side that tells less. A column that reaches beyond the list's edge is as wide as what
// is seen of it. Interface thread only.

#include <QStyledItemDelegate>

#include <vector>

namespace marvolen {

// Between a column's edge and its texts, in device-independent pixels; its name keeps it, too.
inline constexpr int kCellPadding = 2;

class CellDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    // Where texts of this column are cut: Qt::ElideRight, its beginning stays, unless set.
    void SetElideMode(int column, Qt::TextElideMode mode);

    // The width a text needs in the view's font, padding included.
    static int WidthOf(const QFontMetrics& metrics, const QString& text);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    Qt::TextElideMode ElideMode(int column) const;

    std::vector<Qt::TextElideMode> modes;  // of the first columns
};

}  // namespace marvolen
