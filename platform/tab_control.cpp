#include "platform/tab_control.h"

#include "platform/ui_activity.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QStyleOptionTab>
#include <QStylePainter>

#include <algorithm>
#include <utility>

namespace marvolen {
namespace {

constexpr int kPageMargin = 4;  // between the frame around the pages and a page

}  // namespace

// One tab. The mouse belongs to the control, which knows all of them.
class CTabCtrl::Tab final : public CStatic {
public:
    Tab(CTabCtrl* owner, const QString& itsText, QWidget* itsPage, int itsIndex)
        : CStatic(owner), page(itsPage), control(*owner), text(itsText), index(itsIndex) {
        setAccessibleName(text);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        connect(this, &CStatic::clicked, owner, [this] { control.Select(index); });
        show();
    }

    bool IsSelected() const { return control.GetCurSel() == index; }
    void ShowSelection() {
        setFocusPolicy(IsSelected() ? Qt::StrongFocus : Qt::NoFocus);
        RequestPaint(*this, rect());
        QAccessible::State changed;
        changed.selected = true;
        NotifyAccessibleState(changed);
    }
    QStyleOptionTab Option() const {
        QStyleOptionTab option;
        option.initFrom(this);
        option.text = text;
        option.shape = QTabBar::RoundedNorth;
        option.position = QStyleOptionTab::OnlyOneTab;
        if (IsSelected()) option.state |= QStyle::State_Selected;
        return option;
    }
    QSize sizeHint() const override {
        const QStyleOptionTab option = Option();
        const int space = style()->pixelMetric(QStyle::PM_TabBarTabHSpace, &option, this);
        const int above = style()->pixelMetric(QStyle::PM_TabBarTabVSpace, &option, this);
        const QSize label = QFontMetrics(SelectedFont()).size(Qt::TextShowMnemonic, text);
        return style()->sizeFromContents(QStyle::CT_TabBarTab, &option, label + QSize(space, above),
                                         this);
    }

    QAccessible::Role AccessibleRole() const override { return QAccessible::PageTab; }
    void AddAccessibleState(QAccessible::State& state) const override {
        state.selectable = true;
        state.selected = IsSelected();
        state.focusable = true;
    }

    const QPointer<QWidget> page;

protected:
    void paintEvent(QPaintEvent*) override {
        QStylePainter painter(this);
        if (IsSelected()) painter.setFont(SelectedFont());
        painter.drawControl(QStyle::CE_TabBarTab, Option());
    }

private:
    // A tab of another row than the last doesn't reach its page, and styles set it off faintly.
    QFont SelectedFont() const {
        QFont bold = font();
        bold.setBold(true);
        return bold;
    }

    CTabCtrl& control;
    const QString text;
    const int index;
};

int TabColumns(int count, int width, int tabWidth) {
    const int most = std::max(1, width / std::max(1, tabWidth));
    const int rows = std::max(1, (count + most - 1) / most);
    return std::max(1, (count + rows - 1) / rows);
}

CTabCtrl::CTabCtrl(QWidget* parent) : CStatic(parent) {}

int CTabCtrl::InsertItem(const QString& text, QWidget* page) {
    tabs.push_back(new Tab(this, text, page, GetItemCount()));
    if (selected < 0) SetCurSel(0);
    LayOut();
    updateGeometry();
    return GetItemCount() - 1;
}

void CTabCtrl::SetCurSel(int index) {
    if (index < 0 || index >= GetItemCount()) return;
    const int former = std::exchange(selected, index);
    const bool hadFocus = former >= 0 && tabs[static_cast<std::size_t>(former)]->hasFocus();
    for (Tab* tab : tabs) {
        if (tab->IsSelected() && hadFocus) tab->setFocus();
        tab->ShowSelection();
    }
}

QWidget* CTabCtrl::GetItemData(int index) const {
    const bool exists = index >= 0 && index < GetItemCount();
    return exists ? tabs[static_cast<std::size_t>(index)]->page.data() : nullptr;
}

int CTabCtrl::HitTest(const QPoint& point) const {
    const auto hit =
        std::ranges::find_if(tabs, [&](const Tab* tab) { return tab->geometry().contains(point); });
    return hit == tabs.end() ? -1 : static_cast<int>(hit - tabs.begin());
}

QRect CTabCtrl::GetItemRect(int index) const {
    const bool exists = index >= 0 && index < GetItemCount();
    return exists ? tabs[static_cast<std::size_t>(index)]->geometry() : QRect();
}

QRect CTabCtrl::DisplayRect() const {
    return rect().adjusted(kPageMargin, RowsHeight(width()) + kPageMargin, -kPageMargin,
                           -kPageMargin);
}

QSize CTabCtrl::sizeHint() const {
    QSize page;
    for (const Tab* tab : tabs) {
        if (tab->page) page = page.expandedTo(tab->page->sizeHint());
    }
    const int width = page.width() + 2 * kPageMargin;
    return {width, RowsHeight(width) + page.height() + 2 * kPageMargin};
}

void CTabCtrl::Select(int index) {
    if (index < 0 || index >= GetItemCount() || index == selected) return;
    SetCurSel(index);
    Q_EMIT selectionChanged(index);
}

void CTabCtrl::mousePressEvent(QMouseEvent* event) {
    const int hit = HitTest(event->position().toPoint());
    if (event->button() != Qt::LeftButton || hit < 0) return;
    Select(hit);
    tabs[static_cast<std::size_t>(hit)]->setFocus(Qt::MouseFocusReason);
}

// Quick clicks may be on two tabs, and the second may begin a drag.
void CTabCtrl::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event);
}

void CTabCtrl::keyPressEvent(QKeyEvent* event) {
    // Keys that a page's control has no use for come here, too.
    if (selected < 0 || !tabs[static_cast<std::size_t>(selected)]->hasFocus()) {
        return CStatic::keyPressEvent(event);
    }
    const int columns = Columns(width());
    switch (event->key()) {
        case Qt::Key_Left:
            return Select(selected - 1);
        case Qt::Key_Right:
            return Select(selected + 1);
        case Qt::Key_Up:
            return Select(selected - columns);
        case Qt::Key_Down:
            return Select(selected + columns);
        case Qt::Key_Home:
            return Select(0);
        case Qt::Key_End:
            return Select(GetItemCount() - 1);
        default:
            return CStatic::keyPressEvent(event);
    }
}

void CTabCtrl::paintEvent(QPaintEvent*) {
    QStyleOptionTabWidgetFrame frame;
    frame.initFrom(this);
    frame.shape = QTabBar::RoundedNorth;
    frame.rect.setTop(RowsHeight(width()) - 1);
    frame.lineWidth = style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this);
    QStylePainter(this).drawPrimitive(QStyle::PE_FrameTabWidget, frame);
}

void CTabCtrl::resizeEvent(QResizeEvent*) {
    LayOut();
}

void CTabCtrl::changeEvent(QEvent* event) {
    CStatic::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) LayOut();
}

QSize CTabCtrl::TabSize() const {
    QSize size;
    for (const Tab* tab : tabs) size = size.expandedTo(tab->sizeHint());
    return size;
}

int CTabCtrl::Columns(int width) const {
    return TabColumns(GetItemCount(), width, TabSize().width());
}

int CTabCtrl::RowsHeight(int width) const {
    const int columns = Columns(width);
    return (GetItemCount() + columns - 1) / columns * TabSize().height();
}

void CTabCtrl::LayOut() {
    const int columns = Columns(width());
    const int tabHeight = TabSize().height();
    for (int k = 0; k < GetItemCount(); ++k) {
        const int left = width() * (k % columns) / columns;
        const int right = width() * (k % columns + 1) / columns;
        Tab* const tab = tabs[static_cast<std::size_t>(k)];
        tab->setGeometry(left, k / columns * tabHeight, right - left, tabHeight);
        if (tab->page) tab->page->setGeometry(DisplayRect());
    }
    RequestPaint(*this, rect());
}

}  // namespace marvolen
