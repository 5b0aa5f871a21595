#pragma once

// A report list that is sorted by clicking a column's header, or with Ctrl and the column's number.
// Interface thread only.
//
// The rows' texts are UTF-8. A click on a column sorts by it, ascending at first, then by turns;
// row_order.h says how two rows compare. Rows added later stand at the end until the next sorting.

#include "app/sort_header_ctrl.h"
#include "platform/list_control.h"

#include <array>
#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace marvolen {

class CSortListCtrl : public CListCtrl {
    Q_OBJECT

public:
    // What the list keeps of a row. texts: one for each column there was when the row was added.
    struct RowData final : Item {
        std::vector<std::string> texts;
        std::uint32_t userValue = 0;

        QString Text(int column) const override;
        // Empty for a column that came after the row.
        std::string_view TextOf(int column) const;
    };

    explicit CSortListCtrl(QWidget* parent = nullptr);

    // Appends columns, described as list_columns.h says: "ID,20;CH,54". False at the first column
    // that the list refuses (wider than kWidestColumn); the ones before it stay.
    bool SetColumns(std::string_view columns);

    // Widens the columns whose samples (a text for each column) or names don't fit in the list's
    // font, now and whenever the font changes, and a column that is sorted by when its name has no
    // room beside the arrow. Never narrows a column.
    void SetColumnSamples(std::vector<std::string> samples);

    // Appends a row with copies of exactly columnCount texts. A NUL ends a text. Returns the row's
    // index; -1, and no row, when the number of texts is another.
    int AddRow(std::span<const std::string_view> texts);
    template <std::convertible_to<std::string_view>... Texts>
    int AddRow(const Texts&... texts) {
        const std::array<std::string_view, sizeof...(Texts)> views{std::string_view(texts)...};
        return AddRow(std::span<const std::string_view>(views));
    }

    // Removes every row and frees what was kept of them. True.
    bool DeleteAllRows();

    // Sorts the rows stably by this column and moves the header's arrow to it. Ignores a column
    // that doesn't exist.
    void SortByColumn(int column, bool ascending);

    // What is kept of the row that is displayed at this place, borrowed; null for none.
    const RowData* GetRowData(int row) const;

    int ColumnCount() const { return columnCount; }
    int SortColumn() const { return sortColumn; }  // -1 before the first sorting
    bool SortAscending() const { return sortAscending; }
    CSortHeaderCtrl& SortHeader() const { return *sortHeader; }

protected:
    void OnColumnClick(int column) override;
    void changeEvent(QEvent* event) override;

private:
    void WidenColumns();

    CSortHeaderCtrl* const sortHeader;  // the list's own header
    int columnCount = 0;
    int sortColumn = -1;
    bool sortAscending = true;
    std::vector<std::string> columnSamples;
};

}  // namespace marvolen
