#pragma once

// The header of a report list: one item a column. Interface thread only.

#include "platform/window.h"

#include <QHeaderView>
#include <QStyleOptionHeaderV2>

namespace marvolen {

// Format bits of a column and of its header item.
inline constexpr unsigned HDF_LEFT = 0;
inline constexpr unsigned HDF_RIGHT = 1;
inline constexpr unsigned HDF_CENTER = 2;
inline constexpr unsigned HDF_JUSTIFYMASK = 3;
inline constexpr unsigned HDF_OWNERDRAW = 0x8000;  // DrawItem paints the item

// Where the list's model keeps the format bits among the header's data.
inline constexpr int kHeaderFormatRole = Qt::UserRole;

class CHeaderCtrl : public QHeaderView, public CWnd {
    Q_OBJECT

public:
    // The parent owns the header. CListCtrl makes it known to its model.
    explicit CHeaderCtrl(QWidget* parent = nullptr);

    // The HDF_... bits of an item; HDF_LEFT for an item that doesn't exist.
    unsigned GetItemFormat(int item) const;

    // Replaces the bits and repaints. False when the item doesn't exist.
    bool SetItemFormat(int item, unsigned format);

    // The column's name.
    QString GetItemText(int item) const;

protected:
    struct DrawItemInfo {
        QPainter& painter;  // clipped to rect but for the lines that part it from its neighbours;
                            // saved and restored around DrawItem
        int item;
        QRect rect;
        bool pressed;  // the mouse button is down on it
    };

    // Paints an item whose format has HDF_OWNERDRAW. The base leaves it as the style made it.
    virtual void DrawItem(const DrawItemInfo& draw) const;

    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;

private:
    void DrawStyledLabel(QPainter& painter, QStyleOptionHeaderV2 option) const;
};

}  // namespace marvolen
