#include "settings/drag_tab_ctrl.h"

#include "platform/ui_activity.h"
#include "res/resource_ids.h"
#include "res/resources.h"

#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>

#include <utility>

namespace marvolen {

void CDragTabCtrl::OnCommand(int command) {
    const int from = std::exchange(dragFrom, -1);
    const int to = std::exchange(dragTo, -1);
    if (from < 0) return;
    if (command == IDM_TAB_DROP_OUTSIDE) return OnTabDropOutside(from);
    if (to < 0) return;
    if (command == IDM_TAB_MOVE) OnTabMove(from, to);
    if (command == IDM_TAB_COPY) OnTabCopy(from, to);
    if (command == IDM_TAB_SWAP) OnTabSwap(from, to);
}

void CDragTabCtrl::OnTabDropOutside(int) {}
void CDragTabCtrl::OnTabSwap(int, int) {}
void CDragTabCtrl::OnTabCopy(int, int) {}
void CDragTabCtrl::OnTabMove(int, int) {}

bool CDragTabCtrl::event(QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::UngrabMouse || type == QEvent::WindowDeactivate) CancelDrag();
    return CTabCtrl::event(event);
}

void CDragTabCtrl::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        dragFrom = HitTest(event->position().toPoint());
        dragTo = -1;
        captured = true;
    }
    CTabCtrl::mousePressEvent(event);
}

void CDragTabCtrl::mouseMoveEvent(QMouseEvent* event) {
    if (!captured || dragFrom < 0) return;
    const int over = HitTest(event->position().toPoint());
    if (over == dragFrom) {
        setCursor(Qt::ArrowCursor);
    } else {
        setCursor(LoadCursor(over < 0 ? IDC_CLEAR_CURSOR : IDC_DROP_CURSOR));
    }
}

void CDragTabCtrl::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !captured) return;
    EndCapture();
    dragTo = HitTest(event->position().toPoint());
    if (dragFrom < 0 || dragTo == dragFrom) return;
    if (dragTo >= 0) return ShowMenu(event->globalPosition().toPoint());
    PostCommand(*this, [this] { OnCommand(IDM_TAB_DROP_OUTSIDE); });
}

void CDragTabCtrl::keyPressEvent(QKeyEvent* event) {
    if (captured && event->key() == Qt::Key_Escape) return CancelDrag();
    CTabCtrl::keyPressEvent(event);
}

// A command that is still to come does nothing either: the pages may be gone by then.
void CDragTabCtrl::hideEvent(QHideEvent* event) {
    EndCapture();
    dragFrom = dragTo = -1;
    CTabCtrl::hideEvent(event);
}

void CDragTabCtrl::EndCapture() {
    captured = false;
    unsetCursor();
}

void CDragTabCtrl::CancelDrag() {
    if (!captured) return;
    EndCapture();
    dragFrom = dragTo = -1;
}

// No loop of its own: the menu goes with this control, whatever ends it.
void CDragTabCtrl::ShowMenu(const QPoint& globalPosition) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](int command, const QString& text) {
        QAction* const action = menu->addAction(text);
        action->setObjectName(QString::number(command));
        connect(
            action, &QAction::triggered, this, [this, command] { OnCommand(command); },
            Qt::QueuedConnection);
    };
    add(IDM_TAB_MOVE, QStringLiteral("Move"));
    add(IDM_TAB_COPY, QStringLiteral("Copy"));
    add(IDM_TAB_SWAP, QStringLiteral("Swap"));
    menu->addSeparator();
    menu->addAction(QStringLiteral("Cancel"))->setObjectName(QString::number(IDM_TAB_CANCEL));
    menu->popup(globalPosition);
}

}  // namespace marvolen
