#pragma once

// CTabCtrl: tabs in as many rows as it takes to show all of them, over the area of their pages.
//
// Rows have the same number of tabs, equally wide, in reading order. Exactly one tab is selected
// once there is one; it alone takes part in the Tab key's round. The arrow keys, Home and End
// select another, as a click does. Assistive tools see a list of page tabs, each a control with its
// text as its name. Interface thread only.

#include "platform/control.h"

#include <QString>

#include <vector>

namespace marvolen {

class CTabCtrl : public CStatic {
    Q_OBJECT

public:
    explicit CTabCtrl(QWidget* parent);

    // Adds a tab behind the others and returns its index. Its data is the page, a child of this
    // control, which isn't shown by this. The first tab becomes the selected one.
    int InsertItem(const QString& text, QWidget* page);

    int GetItemCount() const { return static_cast<int>(tabs.size()); }
    // The selected tab; -1 without any.
    int GetCurSel() const { return selected; }
    // Selects a tab without telling of it; nothing happens for an index there isn't.
    void SetCurSel(int index);
    // The page of a tab; null for an index there isn't, and once the page has gone.
    QWidget* GetItemData(int index) const;

    // The tab at a point of this control, -1 where there is none.
    int HitTest(const QPoint& point) const;
    // Where a tab stands, empty for an index there isn't.
    QRect GetItemRect(int index) const;
    // Where the pages belong, which are kept there when this control's size changes.
    QRect DisplayRect() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    QAccessible::Role AccessibleRole() const override { return QAccessible::PageTabList; }

Q_SIGNALS:
    // The user has selected another tab.
    void selectionChanged(int index);

protected:
    // Selects as the user does.
    void Select(int index);

    void mousePressEvent(QMouseEvent* event) override;        // left button: selects
    void mouseDoubleClickEvent(QMouseEvent* event) override;  // a press like any other
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    class Tab;

    QSize TabSize() const;
    int Columns(int width) const;
    int RowsHeight(int width) const;
    void LayOut();

    std::vector<Tab*> tabs;
    int selected = -1;
};

// How many tabs of so many stand in a row of this width, so that there are no more rows than it
// takes and none is much shorter than the others; 1 at least. Lengths in pixels.
int TabColumns(int count, int width, int tabWidth);

}  // namespace marvolen
