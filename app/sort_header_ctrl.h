#pragma once

// The header of a sortable list. It marks the column the rows were last sorted by with an arrow.

#include "platform/header_control.h"

namespace marvolen {

class CSortHeaderCtrl final : public CHeaderCtrl {
    Q_OBJECT

public:
    explicit CSortHeaderCtrl(QWidget* parent = nullptr);

    // Moves the arrow to this column, pointing up for ascending. From now on this header paints the
    // column's item itself. A column that doesn't exist takes the arrow away.
    void SetSortArrow(int column, bool ascending);

    // The width at which this column's name is seen whole, beside the arrow where it has that.
    int WidthOfName(int column) const;

    int SortColumn() const { return sortColumn; }  // -1 before the first SetSortArrow
    bool SortAscending() const { return sortAscending; }

protected:
    void DrawItem(const DrawItemInfo& draw) const override;

private:
    void DrawLabel(const DrawItemInfo& draw, int off) const;
    void DrawArrow(const DrawItemInfo& draw) const;

    int sortColumn = -1;
    bool sortAscending = true;
};

}  // namespace marvolen
