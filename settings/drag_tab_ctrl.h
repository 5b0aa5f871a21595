#pragma once

// CDragTabCtrl: tabs that are dragged onto one another, or away. It knows the gestures only; what
// they do is said by who overrides the operations.
//
// A press of the left button begins a drag and selects the tab. Dropped on another tab, a menu asks
// what is to become of the two; dropped on no tab, the tab is dropped outside; dropped where it
// began, nothing happens. Escape, or whatever takes the mouse away, ends a drag without effect. The
// operations run when the click that led to them is over. Interface thread only.

#include "platform/tab_control.h"

namespace marvolen {

class CDragTabCtrl : public CTabCtrl {
    Q_OBJECT

public:
    using CTabCtrl::CTabCtrl;

    // What the commands 1171 to 1174 do; the menu and a drop outside of the tabs give them. A drag
    // that didn't begin on a tab leads to none.
    void OnCommand(int command);

protected:
    // Tabs by index. Nothing happens in this class.
    virtual void OnTabDropOutside(int from);
    virtual void OnTabSwap(int from, int to);
    virtual void OnTabCopy(int from, int to);
    virtual void OnTabMove(int from, int to);

    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void EndCapture();
    void CancelDrag();
    void ShowMenu(const QPoint& globalPosition);

    bool captured = false;  // the left button is down
    int dragFrom = -1;      // both -1 while no drag is pending
    int dragTo = -1;
};

}  // namespace marvolen
