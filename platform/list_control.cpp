#include "platform/list_control.h"

#include "platform/cell_delegate.h"
#include "platform/clipboard.h"

#include <QAbstractTableModel>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOptionFocusRect>
#include <QToolTip>

#include <algorithm>
#include <utility>
#include <vector>

namespace marvolen {

namespace {

// The column that a key clicks, -1 for none.
int ColumnOfKey(const QKeyEvent& event) {
    const bool control = (event.modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier;
    if (!control || event.key() < Qt::Key_1 || event.key() > Qt::Key_9) return -1;
    return event.key() - Qt::Key_1;
}

}  // namespace

// Columns and rows as the toolkit's view asks for them.
class CListCtrl::Model final : public QAbstractTableModel {
public:
    using QAbstractTableModel::QAbstractTableModel;

    struct Column {
        QString heading;
        unsigned format = HDF_LEFT;
    };

    const std::vector<Column>& Columns() const { return columns; }
    const std::vector<std::unique_ptr<Item>>& Items() const { return items; }

    void InsertColumn(int before, Column column) {
        beginInsertColumns({}, before, before);
        columns.insert(columns.begin() + before, std::move(column));
        endInsertColumns();
    }

    void Append(std::unique_ptr<Item> item) {
        const int row = rowCount({});
        beginInsertRows({}, row, row);
        items.push_back(std::move(item));
        endInsertRows();
    }

    void Clear() {
        beginResetModel();
        items.clear();
        items.shrink_to_fit();
        endResetModel();
    }

    void Rearrange(std::span<const std::size_t> order);

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(items.size());
    }
    int columnCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(columns.size());
    }
    Qt::ItemFlags flags(const QModelIndex& index) const override {
        return QAbstractTableModel::flags(index) | Qt::ItemNeverHasChildren;
    }
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    bool setHeaderData(int section, Qt::Orientation orientation, const QVariant& value,
                       int role) override;

private:
    static int Alignment(unsigned format) {
        const unsigned justify = format & HDF_JUSTIFYMASK;
        const Qt::Alignment horizontal = justify == HDF_CENTER  ? Qt::AlignHCenter
                                         : justify == HDF_RIGHT ? Qt::AlignRight
                                                                : Qt::AlignLeft;
        return static_cast<int>(horizontal | Qt::AlignVCenter);
    }

    std::vector<Column> columns;
    std::vector<std::unique_ptr<Item>> items;  // in display order
};

void CListCtrl::Model::Rearrange(std::span<const std::size_t> order) {
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    std::vector<std::unique_ptr<Item>> rearranged(items.size());
    std::vector<int> newRow(items.size());
    for (std::size_t row = 0; row < order.size(); ++row) {
        rearranged[row] = std::move(items[order[row]]);
        newRow[order[row]] = static_cast<int>(row);
    }
    items.swap(rearranged);
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& old : before) {
        after.append(index(newRow[static_cast<std::size_t>(old.row())], old.column()));
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

QVariant CListCtrl::Model::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    if (role == Qt::DisplayRole) {
        return items[static_cast<std::size_t>(index.row())]->Text(index.column());
    }
    if (role == Qt::TextAlignmentRole) {
        return Alignment(columns[static_cast<std::size_t>(index.column())].format);
    }
    return {};
}

QVariant CListCtrl::Model::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount({})) return {};
    const Column& column = columns[static_cast<std::size_t>(section)];
    switch (role) {
        case Qt::DisplayRole:
            return column.heading;
        case Qt::TextAlignmentRole:
            return Alignment(column.format);
        case kHeaderFormatRole:
            return column.format;
        default:
            return {};
    }
}

bool CListCtrl::Model::setHeaderData(int section, Qt::Orientation orientation,
                                     const QVariant& value, int role) {
    if (orientation != Qt::Horizontal || role != kHeaderFormatRole) return false;
    columns[static_cast<std::size_t>(section)].format = value.toUInt();
    Q_EMIT headerDataChanged(orientation, section, section);
    return true;
}

CListCtrl::CListCtrl(QWidget* parent, CHeaderCtrl* header)
    : QTreeView(parent),
      listModel(new Model(this)),
      headerCtrl(header ? header : new CHeaderCtrl),
      cells(new CellDelegate(this)) {
    setHeader(headerCtrl);
    headerCtrl->setSectionsClickable(true);  // setHeader turns it off
    headerCtrl->setStretchLastSection(false);
    headerCtrl->setSectionsMovable(false);
    QTreeView::setModel(listModel);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setSelectionBehavior(SelectRows);
    setHorizontalScrollMode(ScrollPerPixel);
    setItemDelegate(cells);
    // Texts at the edge are cut anew wherever the edge comes to lie.
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, viewport(),
            [this] { viewport()->update(); });
    connect(headerCtrl, &QHeaderView::sectionClicked, this,
            [this](int column) { OnColumnClick(column); });
}

CListCtrl::~CListCtrl() = default;

int CListCtrl::InsertColumn(int column, const QString& heading, unsigned format, int width) {
    if (column < 0 || column > GetColumnCount() || width < 0 || width > kWidestColumn) return -1;
    listModel->InsertColumn(column, {heading, format});
    headerCtrl->resizeSection(column, width);
    return column;
}

int CListCtrl::GetColumnCount() const {
    return listModel->columnCount({});
}

int CListCtrl::InsertItem(std::unique_ptr<Item> item) {
    listModel->Append(std::move(item));
    return GetItemCount() - 1;
}

int CListCtrl::GetItemCount() const {
    return listModel->rowCount({});
}

const CListCtrl::Item* CListCtrl::GetItem(int row) const {
    if (row < 0 || row >= GetItemCount()) return nullptr;
    return listModel->Items()[static_cast<std::size_t>(row)].get();
}

void CListCtrl::DeleteAllItems() {
    listModel->Clear();
}

void CListCtrl::SortItems(std::span<const std::size_t> order) {
    listModel->Rearrange(order);
}

int CListCtrl::GetSelectedItem() const {
    const QModelIndexList selected = selectionModel()->selectedRows();
    return selected.isEmpty() ? -1 : selected.first().row();
}

void CListCtrl::CopySelectedItem() const {
    const int row = GetSelectedItem();
    if (row >= 0) SetClipboardText(RowText(row));
}

void CListCtrl::SetElideMode(int column, Qt::TextElideMode mode) {
    cells->SetElideMode(column, mode);
}

// A row's texts, parted by tabs.
QString CListCtrl::RowText(int row) const {
    QStringList texts;
    for (int column = 0; column < GetColumnCount(); ++column) {
        texts.append(GetItem(row)->Text(column));
    }
    return texts.join(QLatin1Char('\t'));
}

// Whether not all of the row's texts are wholly seen.
bool CListCtrl::IsCut(int row) const {
    for (int column = 0; column < GetColumnCount(); ++column) {
        const QModelIndex index = listModel->index(row, column);
        const int seen = (visualRect(index) & viewport()->rect()).width();
        if (sizeHintForIndex(index).width() > seen) return true;
    }
    return false;
}

void CListCtrl::OnColumnClick(int) {}

void CListCtrl::keyPressEvent(QKeyEvent* event) {
    const int column = ColumnOfKey(*event);
    if (event->matches(QKeySequence::Copy)) {
        CopySelectedItem();
    } else if (column >= 0 && column < GetColumnCount()) {
        if (!event->isAutoRepeat()) OnColumnClick(column);
    } else {
        QTreeView::keyPressEvent(event);
    }
}

// The toolkit shows the focus at a row; where that is out of sight, it wouldn't be seen at all.
void CListCtrl::paintEvent(QPaintEvent* event) {
    QTreeView::paintEvent(event);
    const QRect row = visualRect(currentIndex());
    const bool rowSeen = row.isValid() && row.top() >= 0 && row.bottom() < viewport()->height();
    if (!hasFocus() || rowSeen) return;
    QPainter painter(viewport());
    QStyleOptionFocusRect option;
    option.initFrom(this);
    option.rect = viewport()->rect();
    option.state |= QStyle::State_KeyboardFocusChange | QStyle::State_Item;
    option.backgroundColor = palette().color(QPalette::Base);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

bool CListCtrl::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QTreeView::viewportEvent(event);
    const auto& help = static_cast<const QHelpEvent&>(*event);
    const QModelIndex index = indexAt(help.pos());
    if (index.isValid() && IsCut(index.row())) {
        const QString text =
            RowText(index.row()).replace(QLatin1Char('\t'), QStringLiteral("  ")).toHtmlEscaped();
        QToolTip::showText(help.globalPos(),
                           QStringLiteral("<p style='white-space:pre'>%1</p>").arg(text),
                           viewport(), visualRect(index));
    } else {
        QToolTip::hideText();
    }
    return true;
}

void CListCtrl::updateGeometries() {
    QScrollBar* bar = verticalScrollBar();
    const bool showsLastRow = bar->value() == bar->maximum();
    QTreeView::updateGeometries();
    if (showsLastRow) bar->setValue(bar->maximum());
}

}  // namespace marvolen
