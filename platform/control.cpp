#include "platform/control.h"

#include "platform/accessible_control.h"
#include "platform/dialog.h"

#include <QMetaMethod>
#include <QMouseEvent>

namespace marvolen {

CStatic::CStatic(QWidget* parent) : QWidget(parent) {
    DescribeControlsToAssistiveTools();
}

// Group boxes may stand between a control and its dialog.
CWnd* CStatic::GetParentWnd() const {
    for (QWidget* ancestor = parentWidget(); ancestor; ancestor = ancestor->parentWidget()) {
        if (auto* dialog = qobject_cast<CDialog*>(ancestor)) return dialog;
    }
    return nullptr;
}

void CStatic::Press() {
    Q_EMIT clicked();
}

bool CStatic::IsPressable() const {
    return isSignalConnected(QMetaMethod::fromSignal(&CStatic::clicked));
}

QAccessible::Role CStatic::AccessibleRole() const {
    return QAccessible::Graphic;
}

void CStatic::AddAccessibleState(QAccessible::State&) const {}

void CStatic::NotifyAccessibleState(QAccessible::State changed) {
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

void CStatic::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) Press();
}

void CStatic::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) Q_EMIT doubleClicked();
}

}  // namespace marvolen
