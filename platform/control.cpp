#include "platform/control.h"

#include "platform/dialog.h"

#include <QMouseEvent>

namespace marvolen {

CStatic::CStatic(QWidget* parent) : QWidget(parent) {}

int CStatic::GetDlgCtrlID() const {
    return ControlId(*this);
}

CWnd* CStatic::GetParentWnd() const {
    return dynamic_cast<CWnd*>(parentWidget());
}

void CStatic::NotifyParent(std::uint32_t code) {
    auto* dialog = qobject_cast<CDialog*>(parentWidget());
    if (dialog) dialog->SendCommand(*this, code);
}

void CStatic::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) NotifyParent(STN_CLICKED);
}

void CStatic::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) NotifyParent(STN_DBLCLK);
}

}  // namespace marvolen
