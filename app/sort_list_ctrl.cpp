#include "app/sort_list_ctrl.h"

#include "app/list_columns.h"
#include "app/row_order.h"
#include "platform/cell_delegate.h"

#include <QEvent>

#include <algorithm>
#include <memory>
#include <utility>

namespace marvolen {

QString CSortListCtrl::RowData::Text(int column) const {
    const std::string_view text = TextOf(column);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string_view CSortListCtrl::RowData::TextOf(int column) const {
    const auto index = static_cast<std::size_t>(column);
    return index < texts.size() ? std::string_view(texts[index]) : std::string_view();
}

CSortListCtrl::CSortListCtrl(QWidget* parent)
    : CListCtrl(parent, new CSortHeaderCtrl),
      sortHeader(static_cast<CSortHeaderCtrl*>(GetHeaderCtrl())) {}

bool CSortListCtrl::SetColumns(std::string_view columns) {
    for (const ListColumn& column : ParseColumns(columns)) {
        const QString name = QString::fromStdString(column.name);
        if (InsertColumn(columnCount, name, HDF_LEFT, column.width) < 0) return false;
        ++columnCount;
    }
    return true;
}

void CSortListCtrl::SetColumnSamples(std::vector<std::string> samples) {
    columnSamples = std::move(samples);
    WidenColumns();
}

void CSortListCtrl::WidenColumns() {
    const int count = std::min(columnCount, static_cast<int>(columnSamples.size()));
    for (int column = 0; column < count; ++column) {
        const auto sample = QString::fromStdString(columnSamples[static_cast<std::size_t>(column)]);
        const int needed =
            std::max(CellDelegate::WidthOf(fontMetrics(), sample), sortHeader->WidthOfName(column));
        if (needed > columnWidth(column)) setColumnWidth(column, needed);
    }
}

void CSortListCtrl::changeEvent(QEvent* event) {
    CListCtrl::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        WidenColumns();
    }
}

int CSortListCtrl::AddRow(std::span<const std::string_view> texts) {
    if (texts.size() != static_cast<std::size_t>(columnCount)) return -1;
    auto row = std::make_unique<RowData>();
    row->texts.reserve(texts.size());
    for (const std::string_view text : texts)
        row->texts.emplace_back(text.substr(0, text.find('\0')));
    return InsertItem(std::move(row));
}

bool CSortListCtrl::DeleteAllRows() {
    DeleteAllItems();
    return true;
}

void CSortListCtrl::SortByColumn(int column, bool ascending) {
    if (column < 0 || column >= columnCount) return;
    sortColumn = column;
    sortAscending = ascending;
    sortHeader->SetSortArrow(column, ascending);
    WidenColumns();
    std::vector<SortText> texts;
    texts.reserve(static_cast<std::size_t>(GetItemCount()));
    for (int row = 0; row < GetItemCount(); ++row) {
        texts.emplace_back(GetRowData(row)->TextOf(column));
    }
    SortItems(SortedOrder(texts, ascending));
}

const CSortListCtrl::RowData* CSortListCtrl::GetRowData(int row) const {
    return static_cast<const RowData*>(GetItem(row));
}

void CSortListCtrl::OnColumnClick(int column) {
    SortByColumn(column, column == sortColumn ? !sortAscending : true);
}

}  // namespace marvolen
