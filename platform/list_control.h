#pragma once

// A report list: rows of texts below a header, with at most one row selected. Interface thread
// only.
//
// The list owns its rows as objects that tell their texts when they are painted, so a row's texts
// exist once, and what isn't on screen costs nothing but its object. Adding to a list that shows
// its last row keeps the last row in sight; otherwise the position stays.

#include "platform/header_control.h"
#include "platform/window.h"

#include <QTreeView>

#include <cstddef>
#include <memory>
#include <span>

namespace marvolen {

class CellDelegate;

class CListCtrl : public QTreeView, public CWnd {
    Q_OBJECT

public:
    // A row.
    class Item {
    public:
        virtual ~Item() = default;
        // What the row shows in this column; empty where it has nothing to show.
        virtual QString Text(int column) const = 0;
    };

    // Pixels; a wider column is refused.
    static constexpr int kWidestColumn = 0x7FFF;

    // The parent owns the control. Header: the control takes it over; null gives a plain one.
    explicit CListCtrl(QWidget* parent = nullptr, CHeaderCtrl* header = nullptr);
    ~CListCtrl() override;

    // Inserts a column before this one, with a format of HDF_... bits and a width in
    // device-independent pixels. Returns its index, -1 when the index or the width is out of range.
    int InsertColumn(int column, const QString& heading, unsigned format, int width);
    int GetColumnCount() const;

    // Appends a row and returns its index.
    int InsertItem(std::unique_ptr<Item> item);
    int GetItemCount() const;

    // The row's object, borrowed; null for a row that doesn't exist.
    const Item* GetItem(int row) const;

    // Deletes every row.
    void DeleteAllItems();

    // Rearranges the rows: row k becomes what was row order[k]. The selection stays with its row.
    // order is a permutation of all rows.
    void SortItems(std::span<const std::size_t> order);

    // The selected row, -1 for none.
    int GetSelectedItem() const;

    CHeaderCtrl* GetHeaderCtrl() const { return headerCtrl; }

    // Where texts of this column are cut that have no room: at their end unless set.
    void SetElideMode(int column, Qt::TextElideMode mode);

    // Copies the selected row's texts, parted by tabs, to the clipboard.
    void CopySelectedItem() const;

protected:
    // A click on a column's header item. The base does nothing.
    virtual void OnColumnClick(int column);

    // The copy keys copy the selected row; Ctrl+1 to Ctrl+9 click the header item of that column,
    // counted from 1.
    void keyPressEvent(QKeyEvent* event) override;
    bool viewportEvent(QEvent* event) override;    // a row with a cut text is shown as a tool tip
    void paintEvent(QPaintEvent* event) override;  // shows the focus that no row in sight shows
    void updateGeometries() override;              // keeps the last row in sight

private:
    class Model;

    QString RowText(int row) const;
    bool IsCut(int row) const;

    Model* const listModel;         // child of this
    CHeaderCtrl* const headerCtrl;  // child of this
    CellDelegate* const cells;      // child of this
};

}  // namespace marvolen
