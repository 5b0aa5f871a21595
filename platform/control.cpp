#include "platform/control.h"

#include "platform/accessible_control.h"
#include "platform/dialog.h"

#include <QMetaMethod>
#include <QMouseEvent>

namespace marvolen {

CStatic::CStatic(QWidget* parent) : QWidget(parent) {
    DescribeControlsToAssistiveTools();
}

int CStatic::GetDlgCtrlID() const {
    return ControlId(*this);
}

CWnd* CStatic::GetParentWnd() const {
    return FindDialog();
}

// Group boxes may stand between a control and its dialog.
CDialog* CStatic::FindDialog() const {
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

void CStatic::NotifyParent(std::uint32_t code) {
    if (CDialog* dialog = FindDialog()) dialog->SendCommand(*this, code);
}

void CStatic::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    Press();
    NotifyParent(STN_CLICKED);
}

void CStatic::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    Q_EMIT doubleClicked();
    NotifyParent(STN_DBLCLK);
}

}  // namespace marvolen
