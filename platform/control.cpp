#include "platform/control.h"

#include "platform/dialog.h"

#include <QMouseEvent>

namespace marvolen {

CStatic::CStatic(QWidget* parent) : QWidget(parent) {}

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

void CStatic::NotifyParent(std::uint32_t code) {
    if (CDialog* dialog = FindDialog()) dialog->SendCommand(*this, code);
}

void CStatic::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) NotifyParent(STN_CLICKED);
}

void CStatic::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) NotifyParent(STN_DBLCLK);
}

}  // namespace marvolen
